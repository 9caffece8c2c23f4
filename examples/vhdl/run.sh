#!/usr/bin/env bash
# Runs the VHDL example in GHDL.
#
# usage: run.sh BUILD-FOLDER [--into FOLDER] [GENERIC=VALUE]...
#
#   BUILD-FOLDER  holds the libraries: a build, or lib/<triplet>/marlune of an installation
#   --into        where the results go, the waveform memory_tb.ghw among them. If not given, examples/vhdl in a build's
#                 folder, else marlune-vhdl in the folder in which this runs
set -euo pipefail
root=$(cd "$(dirname "$0")/../.." && pwd)
build=$(cd "$1" && pwd)
shift
work=$build/examples/vhdl
[[ -f $build/CMakeCache.txt ]] || work=marlune-vhdl
if [[ ${1-} == --into ]]; then
    work=$2
    shift 2
fi
mkdir -p "$work"
cd "$work"
work=$PWD
ln -sfn "$root" source

rm -f work-obj08.cf # of an earlier run, perhaps with other sources
ghdl -i --std=08 source/hdl/ghdl/*.vhd source/examples/vhdl/*.vhd
ghdl -m --std=08 memory_tb
LD_LIBRARY_PATH=$build${LD_LIBRARY_PATH:+:$LD_LIBRARY_PATH} \
    ghdl -r --std=08 memory_tb "${@/#/-g}" --wave=memory_tb.ghw
echo "Waveform: $work/memory_tb.ghw"
