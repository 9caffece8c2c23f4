#!/usr/bin/env bash
# Assembles the program image in both its forms, builds the processor's model with Verilator and runs it with each.
#
# usage: run.sh BUILD-FOLDER [IMAGE]
#
# IMAGE is loaded in place of the assembled ones; its contents must be the same.
#
# The build folder holds the libraries; what comes into being goes to its folder examples/verilator, or, when
# blanks and the like are in that path, which Verilator and make refuse, to a folder of its own in /tmp.
set -euo pipefail
root=$(cd "$(dirname "$0")/../.." && pwd)
build=$(cd "$1" && pwd)
work=$build/examples/verilator
if [[ $work =~ [^A-Za-z0-9_./+-] ]]; then
    work=/tmp/marlune-example-$UID-$(cksum <<< "$work" | cut -d ' ' -f 1)
fi
mkdir -p -m 700 "$work"
[[ -O $work ]] || { echo "$work belongs to someone else" >&2; exit 1; }
cd "$work"

# All paths from here are relative, through these links.
ln -sfn "$root" source
ln -sfn "$build" lib

awk -f source/examples/verilator/assemble.awk source/examples/verilator/program.s > program.vexon
# shellcheck disable=SC2059 # the format is the file, as escape sequences
printf "$(awk -v form=elf -f source/examples/verilator/assemble.awk source/examples/verilator/program.s)" > program.elf

log=$work/build.log
if ! verilator --binary --timing -j 2 --top-module processor_tb --Mdir model -o processor_tb \
    source/hdl/marlune_dpi.sv source/hdl/marlune_memory.sv source/examples/verilator/processor.sv \
    source/examples/verilator/processor_tb.sv \
    -LDFLAGS "-L../lib -lmarlune_direct -lmarlune_fli_memory" > "$log" 2>&1; then
    cat "$log" >&2
    exit 1
fi
images=(program.vexon program.elf)
[[ -z ${2-} ]] || images=("$2")
for image in "${images[@]}"; do
    echo "  $image"
    LD_LIBRARY_PATH=lib${LD_LIBRARY_PATH:+:$LD_LIBRARY_PATH} model/processor_tb +image="$image" +text=program.vexon
done
