#!/usr/bin/env bash
# GHDL: the same random traffic through VPI and through direct calls, in one simulation.
#
# usage: ghdl_traffic.sh BUILD-FOLDER
source "$(dirname "$0")/common.sh"
export LD_LIBRARY_PATH=$build
ghdl -a --std=08 "$root"/hdl/marlune_fli.vhd "$root"/hdl/ghdl/marlune_direct.vhd "$here"/ghdl/{all_ports,traffic}.vhd
expect 0 'CLK rises at * fs, one or more delta cycles after CLK or an input has changed*PASSED' \
    ghdl -r --std=08 traffic --vpi="$build/libmarlune_fli_vpi.so"
