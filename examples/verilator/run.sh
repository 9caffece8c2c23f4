#!/usr/bin/env bash
# Assembles the program image in both its forms, builds the processor's model with Verilator and runs it with each.
#
# usage: run.sh BUILD-FOLDER [IMAGE]
#
# IMAGE is loaded in place of the assembled ones; its contents must be the same.
#
# The build folder holds the library and the bridge; what comes into being goes to its folder examples/verilator, or, when
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
if ! verilator --cc --exe --build -j 2 --timing --vpi --prefix Vtop --top-module processor_tb --Mdir model \
    -CFLAGS -std=c++20 -LDFLAGS "-rdynamic -L../lib -lmarlune_fli_memory -lmarlune_fli_vpi" \
    source/hdl/marlune_memory.vlt source/hdl/marlune_dpi.sv source/hdl/marlune_memory.v \
    source/examples/verilator/processor.sv source/examples/verilator/processor_tb.sv \
    source/hdl/marlune_verilator_main.cpp > "$log" 2>&1; then
    cat "$log" >&2
    exit 1
fi
images=(program.vexon program.elf)
[[ -z ${2-} ]] || images=("$2")
for image in "${images[@]}"; do
    echo "  $image"
    LD_LIBRARY_PATH=lib${LD_LIBRARY_PATH:+:$LD_LIBRARY_PATH} model/Vtop +image="$image" +text=program.vexon
done
