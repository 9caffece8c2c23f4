#!/usr/bin/env bash
# Assembles the program, converts it to images, and runs the processor in Verilator (direct calls) and in Icarus Verilog
# (the bridge): each once with memories that the test bench loads, and once with memories loaded from the command line.
#
# usage: run.sh BUILD-FOLDER [verilator | icarus]... [--native] [--into FOLDER] [+ARGUMENT]...
#
#   BUILD-FOLDER  holds the libraries: a build, or lib/<triplet>/marlune of an installation
#   --native      with memories that are plain arrays, to compare the speed
#   --into        where the results go: the images, and the designs as processor_tb (Verilator) and processor_tb.vvp. If
#                 not given, examples/riscv in a build's folder, else marlune-riscv in the folder in which this runs; with
#                 --native these names end in -native
#   +ARGUMENT     for the simulation: those of processor_tb.sv, and the library's
#
# Without a RISC-V assembler, or an image tool that reads its programs, it runs the images beside this file.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
root=$(cd "$here/../.." && pwd)

usage() {
    sed -n 's/^# usage/usage/p' "$0" >&2
    exit 2
}

(($#)) && [[ -d $1 ]] || usage
build=$(cd "$1" && pwd)
shift
simulators=() arguments=() native='' work=''
while (($#)); do
    case $1 in
    verilator | icarus) simulators+=("$1") ;;
    --native) native=-native ;;
    --into)
        (($# > 1)) || usage
        work=$2
        shift
        ;;
    +*) arguments+=("$1") ;;
    *) usage ;;
    esac
    shift
done
((${#simulators[@]})) || simulators=(verilator icarus)
[[ -n $work || -f $build/CMakeCache.txt ]] || work=marlune-riscv$native
[[ -n $work ]] || work=$build/examples/riscv$native
mkdir -p "$work"
work=$(cd "$work" && pwd)
tool=$build/marlune-image
[[ -x $tool ]] || tool=$(command -v marlune-image) || tool=''

# Runs a function in the folder of the results. Its output is shown only if it fails.
quietly() {
    local status
    set +e
    (set -e && cd "$work" && "$@") > "$work/build.log" 2>&1
    status=$?
    set -e
    ((status == 0)) || { cat "$work/build.log" >&2; exit 1; }
}

# The first tool that is missing to make images.
missing_tool() {
    if ! command -v riscv64-unknown-elf-ld > /dev/null; then
        echo "riscv64-unknown-elf-ld (Debian's binutils-riscv64-unknown-elf)"
    elif [[ -z $tool ]] || ! "$tool" convert --help | grep -q '[{,]elf[,}]'; then
        echo "marlune-image that reads ELF files"
    fi
}

# The program in the words of its memory, and in the bytes of the banks. Both hold all of it: a load skips sections below
# its base or beyond the memory.
make_images() {
    local riscv=riscv64-unknown-elf
    $riscv-as -march=rv32i -mabi=ilp32 "$here/program.s" -o program.o
    $riscv-ld -m elf32lriscv -T "$here/program.ld" program.o -o program.elf
    "$tool" convert program.elf program.vexon --space program --width 32
    "$tool" convert program.elf data.vexon --space data --width 8
}

# What loads plain arrays.
make_readmemh_files() {
    "$tool" dump program.vexon --space program --width 32 --size 4096 --format readmemh -o program.mem
    "$tool" dump data.vexon --space data --width 8 --low 0x10000 --size 16384 --format readmemh -o data.mem
}

# Verilator and make refuse blanks and the like in paths, so links stand in for them, in a folder in /tmp if needed.
build_verilator() {
    local memories=(source/hdl/marlune_dpi.sv source/hdl/marlune_memory.sv
        -LDFLAGS "-Llib -lmarlune_direct -lmarlune_fli_memory")
    [[ -z $native ]] || memories=(source/examples/riscv/native_memory.sv -DNATIVE)
    folder=$work/model
    if [[ $folder =~ [^A-Za-z0-9_./+-] ]]; then
        folder=$(mktemp -d /tmp/marlune-example.XXXXXX)
        trap 'rm -rf "$folder"' EXIT
    fi
    mkdir -p "$folder"
    cd "$folder"
    ln -sfn "$root" source
    ln -sfn "$build" lib
    verilator --binary --timing -j 2 --top-module processor_tb --Mdir . -o processor_tb "${memories[@]}" \
        source/examples/riscv/processor.sv source/examples/riscv/processor_tb.sv
    cp processor_tb "$work/processor_tb"
}

build_icarus() {
    local memories=("$root/hdl/marlune_memory.v")
    [[ -z $native ]] || memories=("$here/native_memory.sv" -DNATIVE)
    iverilog -g2012 -o processor_tb.vvp "${memories[@]}" "$here/processor.sv" "$here/processor_tb.sv"
}

run_verilator() { LD_LIBRARY_PATH=$build${LD_LIBRARY_PATH:+:$LD_LIBRARY_PATH} "$work/processor_tb" "$@"; }

run_icarus() {
    local module=(-M"$build" -mmarlune_fli)
    [[ -z $native ]] || module=()
    vvp "${module[@]}" "$work/processor_tb.vvp" "$@"
}

# Runs a command, which prints how many cycles it simulated, and prints how many that is in a second.
measured() {
    local start=${EPOCHREALTIME/[.,]/} cycles microseconds
    "$@" | tee "$work/run.log"
    microseconds=$((${EPOCHREALTIME/[.,]/} - start))
    cycles=$(sed -n 's/.*, cycles: \([0-9]*\),.*/\1/p' "$work/run.log")
    echo "  $((cycles * 1000000 / microseconds)) cycles a second, the simulator's start included"
}

missing=$(missing_tool)
if [[ -z $missing ]]; then
    quietly make_images
else
    echo "  no $missing: running the images beside the source"
    cp "$here/program.vexon" "$here/data.vexon" "$work"
fi
extension=vexon
if [[ -n $native ]]; then
    [[ -n $tool ]] || { echo "--native needs marlune-image, in the build folder or installed" >&2; exit 1; }
    quietly make_readmemh_files
    extension=mem
fi

loads=(+marlune_load="processor_tb.cpu.program_memory,$work/program.vexon,program")
for bank in 0 1 2 3; do
    loads+=(+marlune_load="processor_tb.cpu.banks[$bank].bank,$work/data.vexon,data,0x10000,$bank/4")
done
for simulator in "${simulators[@]}"; do
    echo "  $simulator, loaded by the test bench:"
    quietly "build_$simulator"
    measured "run_$simulator" "${arguments[@]}" +program="$work/program.$extension" +data="$work/data.$extension"
    [[ -z $native && " ${arguments[*]}" != *" +program="* ]] || continue # of one's own, loaded once
    echo "  $simulator, loaded from the command line:"
    measured "run_$simulator" "${arguments[@]}" "${loads[@]}" +runs=1
done
