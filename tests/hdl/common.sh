# shellcheck shell=bash
# shellcheck disable=SC2034,SC2016 # for the scripts that source this file
# For the scripts of this folder, which take BUILD-FOLDER first: changes to an empty folder. The paths have no blanks,
# which Verilator and make do not take.
set -euo pipefail
sources=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
libraries=$(cd "$1" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"
ln -s "$sources" source
ln -s "$libraries" libraries
ln -s source/tests/data/two_memories.vexon image.vexon
root=source here=source/tests/hdl build=libraries

fail() {
    printf '%s\n' "$@" >&2
    exit 1
}

# expect STATUS PATTERN COMMAND...: the exit status and what the command prints match the patterns
expect() {
    local status=0
    output=$("${@:3}" 2>&1) || status=$?
    # shellcheck disable=SC2053 # patterns
    [[ $status == $1 && $output == *$2* ]] || fail "$output" "exit status $status; expected $1 and: $2"
}

# check_options PATH COMMAND...: what the simulation in the command does with options for the memory, which has 8 bits
check_options() {
    local path=$1 pattern=${1//[\[\]]/?} cells="@00000002 77|@00000003 55|@00000004 00|"
    expect 0 "$pattern: name *, mode 0, width 8, size 16, read port r, write port w" "${@:2}" +marlune_list \
        "+marlune_load=$path,image.vexon,data,0x1000,1/2" "+marlune_dump=$path,cells,2,4"
    [[ $(tr '\n' '|' < cells) == "$cells" ]] || fail "$(< cells)"
    expect 0 "warning: '$pattern': Nothing was loaded from 'image.vexon': *It has address spaces 'data', 'high'." \
        "${@:2}" "+marlune_load=$path,image.vexon,dta"
    expect 0 "warning: '$pattern': The last 4 LAUs of section '.data' in 'image.vexon' were not loaded: the memory" \
        "${@:2}" "+marlune_load=$path,image.vexon,data,0xff4"

    expect 1 "'+marlune_lod=x': there is no such option. The options are +marlune_load=PATH," "${@:2}" +marlune_lod=x
    expect 1 "Option '+marlune_load=$pattern': a path and a file are needed" "${@:2}" "+marlune_load=$path"
    expect 1 "': '1k' is not a number of 32 bits." "${@:2}" "+marlune_load=$path,image.vexon,data,1k"
    expect 1 "': '3' is not of the form BANK/BANKS." "${@:2}" "+marlune_load=$path,image.vexon,data,0,3"
    expect 1 "': the bank must be below the number of banks." "${@:2}" "+marlune_load=$path,image.vexon,data,0,2/2"
    expect 1 "a first address only with a last one" "${@:2}" "+marlune_dump=$path,cells,1"
    expect 1 "the first address must not be above the last one" "${@:2}" "+marlune_dump=$path,cells,2,1"
    expect 1 "There is no memory 'nowhere', which the command line names. The memories are: '" "${@:2}" \
        +marlune_dump=nowhere,cells
    expect 1 "fatal error: '$pattern': File 'missing' could not be opened." "${@:2}" "+marlune_load=$path,missing,data"
    expect 1 "fatal error: '$pattern': File 'no/cells' could not be written." "${@:2}" "+marlune_dump=$path,no/cells"
    expect 1 "std::exception*'marlune-image check FILE' finds" "${@:2}" "+marlune_load=$path,$here/common.sh,data"
    expect 1 "Incorrect architecture*'marlune-image convert FILE" "${@:2}" "+marlune_load=$path,/bin/true,data"
    expect 1 "'image.vexon' does not have just one address space to load" "${@:2}" "+marlune_load=$path,image.vexon"
}

# check_waveform: the memories' outputs in modes.vcd change when the clock rises, and at no other time
check_waveform() {
    awk '$1 == "$scope" { scope = $3 }
        $1 == "$var" && scope == "rtl_at_edge" && $5 == "clk" { clock = $4 }
        $1 == "$var" && scope == "rtl_at_edge" && $5 == "q" { q = $4 }
        /^#/ { late += changed && !risen; changes += changed; changed = risen = 0; started = $0 != "#0" }
        $0 == "1" clock { risen = 1 }
        $2 == q && started { changed = 1 }
        END { exit !(changes > 100 && late == 0) }' modes.vcd || fail "the outputs in modes.vcd"
}

# copy_memory TEMPLATE: a Verilog module of all_ports.sv's ports, with that part of the template that all copies have
copy_memory() {
    case $1 in
        *.sv) cat "$here/all_ports.sv" && sed '1,/From here on/d' "$root/hdl/$1" ;;
        *.v)
            sed '/^`define/,$d; s/output/output reg/; s/parameter string/parameter/' "$here/all_ports.sv"
            sed '1,/^);/d' "$root/hdl/$1"
            ;;
    esac > "all_ports.${1##*.}"
}

# verilate TOP FILE-OR-OPTION...: builds a model as README.md says, except that the C++ is one file and not optimized
verilate() {
    verilator --top-module "$1" --Mdir "$1" \
        "$root/hdl/marlune_dpi.sv" "$root/hdl/marlune_memory.sv" "${@:2}" \
        -LDFLAGS "-L$work/libraries -Wl,-rpath,$work/libraries -lmarlune_direct -lmarlune_fli_memory" \
        -MAKEFLAGS "VM_PARALLEL_BUILDS=0 OPT_FAST=-O0 OPT_SLOW=-O0 OPT_GLOBAL=-O0" > "$1.log" 2>&1 ||
        fail "$(grep -A 3 -E '^%|error' "$1.log")"
}
