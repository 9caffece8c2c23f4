#!/usr/bin/env bash
# GHDL: the same random traffic through VPI, through direct calls and through a model, in one simulation.
#
# usage: ghdl_traffic.sh BUILD-FOLDER
source "$(dirname "$0")/common.sh"
export LD_LIBRARY_PATH=$build
ghdl -a --std=08 "$root"/hdl/{marlune_fli,ghdl/marlune_direct}.vhd \
    "$root"/examples/vhdl/{random_numbers,reference_memory}.vhd "$here"/ghdl/{all_ports,traffic}.vhd
expect 0 'CLK rises at * fs, one or more delta cycles after CLK or an input has changed*PASSED' \
    ghdl -r --std=08 traffic --vpi="$build/libmarlune_fli_vpi.so"
