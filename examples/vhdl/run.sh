#!/usr/bin/env bash
# Runs the VHDL example in GHDL.
#
# usage: run.sh BUILD-FOLDER [GENERIC=VALUE ...]
#
# The build folder holds the library and the bridge; what comes into being, memory_tb.ghw among it (the waveform), goes to
# its folder examples/vhdl.
set -euo pipefail
root=$(cd "$(dirname "$0")/../.." && pwd)
build=$(cd "$1" && pwd)
shift
work=$build/examples/vhdl
mkdir -p "$work"
cd "$work"
ln -sfn "$root" source

ghdl -a --std=08 source/hdl/marlune_fli.vhd source/hdl/marlune_memory.vhd source/examples/vhdl/memories.vhd \
    source/examples/vhdl/reference_memory.vhd source/examples/vhdl/memory_tb.vhd
ghdl -e --std=08 memory_tb
ghdl -r --std=08 memory_tb "${@/#/-g}" --vpi="$build/libmarlune_fli_vpi.so" --wave=memory_tb.ghw 2>&1 |
    sed '/VPI module/d'
echo "Waveform: $work/memory_tb.ghw"
