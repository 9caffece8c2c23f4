#!/usr/bin/env bash
# The bridge has each function of the foreign language interface that the library needs, and itself needs only VPI's and
# those of the C library and the loader.
#
# usage: bridge_symbols.sh BRIDGE LIBRARY NM
set -euo pipefail

symbols() {
    "$nm" -D "$1" | awk -v type="$2" '$(NF - 1) ~ type && $NF !~ /@/ { print $NF }' | sort
}

nm=$3
missing=$(comm -13 <(symbols "$1" T) <(symbols "$2" U | grep '^mti_'))
others=$(symbols "$1" U | grep -v '^vpi_' || true)
[[ $missing$others == "" ]] || { printf 'not served: %s\nneeded: %s\n' "$missing" "$others"; exit 1; }
