#!/usr/bin/env bash
# Runs the VHDL example in GHDL.
#
# usage: run.sh BUILD-FOLDER [GENERIC=VALUE ...]
#
# The build folder holds the libraries. The results, the waveform memory_tb.ghw among them, go to its folder
# examples/vhdl.
set -euo pipefail
root=$(cd "$(dirname "$0")/../.." && pwd)
build=$(cd "$1" && pwd)
shift
work=$build/examples/vhdl
mkdir -p "$work"
cd "$work"
ln -sfn "$root" source

rm -f work-obj08.cf # of an earlier run, perhaps with other sources
ghdl -i --std=08 source/hdl/ghdl/*.vhd source/examples/vhdl/*.vhd
ghdl -m --std=08 memory_tb
LD_LIBRARY_PATH=$build${LD_LIBRARY_PATH:+:$LD_LIBRARY_PATH} \
    ghdl -r --std=08 memory_tb "${@/#/-g}" --wave=memory_tb.ghw
echo "Waveform: $work/memory_tb.ghw"
