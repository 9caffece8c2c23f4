#!/usr/bin/env bash
# GHDL: the same random traffic through VPI, through direct calls and through a model, in one simulation.
#
# usage: ghdl_traffic.sh BUILD-FOLDER
source "$(dirname "$0")/common.sh"
export LD_LIBRARY_PATH=$build
ghdl -a --std=08 "$root"/hdl/marlune_fli.vhd "$root"/hdl/ghdl/marlune_direct.vhd "$here"/ghdl/{all_ports,traffic}.vhd
ghdl -r --std=08 traffic --vpi="$build/libmarlune_fli_vpi.so" > log 2>&1 || fail "$(grep -v Access log)"

# Each way accessed cells beyond the end as often.
accesses=$(grep -c '^model: ' log)
for way in fli direct; do
    [[ $(grep -c "^error: '.*/$way/memory': Access outside" log) == "$accesses" ]] || fail "$way: not $accesses accesses"
done
