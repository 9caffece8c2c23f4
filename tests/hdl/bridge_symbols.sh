#!/usr/bin/env bash
# The library for direct calls and VPI has each function of the foreign language interface that the memory library
# needs. It needs only functions of the memory library, the C library and the loader. Those of VPI are weak: a program
# that calls it directly has none.
#
# usage: bridge_symbols.sh DIRECT-LIBRARY MEMORY-LIBRARY NM
set -euo pipefail

symbols() {
    "$nm" -D "$1" | awk -v type="$2" '$(NF - 1) ~ type && $NF !~ /@/ { print $NF }' | sort
}

nm=$3
missing=$(comm -13 <(symbols "$1" T) <(symbols "$2" U | grep '^mti_'))
others=$(comm -23 <(symbols "$1" U) <(symbols "$2" T))
[[ $missing$others == "" ]] || { printf 'not served: %s\nneeded: %s\n' "$missing" "$others"; exit 1; }
