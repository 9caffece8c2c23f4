#!/usr/bin/env bash
# Icarus Verilog: traffic, system tasks, and what a user gets wrong.
#
# usage: icarus.sh BUILD-FOLDER
source "$(dirname "$0")/common.sh"
copy_memory marlune_memory.v
iverilog -g2012 -o icarus_tb.vvp "$here/icarus_tb.v" "$root/hdl/marlune_memory.v"
iverilog -g2012 -o modes_tb.vvp "$here/modes_tb.v" all_ports.v "$root/hdl/marlune_memory.v"

run() {
    vvp -M"$build" -mmarlune_fli "$@"
}

expect 0 PASSED run icarus_tb.vvp "+marlune_dump=icarus_tb.odd.name+[3],sparse"
[[ $(< sparse) == $'@00000000 00\n@fffffffe a1' ]] || fail "$(< sparse)"
check_options icarus_tb.rows[1] run icarus_tb.vvp
expect 0 "warning: 'modes_tb.*.memory': port 'c_WE0' has 2 bits and is active only if its whole value is 1.*PASSED" \
    run modes_tb.vvp
check_waveform
expect 1 "modes_tb.*.memory: no library serves this memory. Run vvp with -M\$LIB -mmarlune_fli." vvp modes_tb.vvp

# refuse MESSAGE CALL: the call of a system task is refused when the design is read
refuse() {
    echo "module calls_tb; integer i; reg [7:0] v; real r; initial $2; endmodule" > calls_tb.v
    iverilog -g2012 -o calls_tb.vvp calls_tb.v
    expect 1 "fatal error: calls_tb.v:1: \$marlune_$1" run calls_tb.vvp
}

# shellcheck disable=SC2016 # the dollar signs are Verilog's
{
    refuse "poke takes (path, address, value)." '$marlune_poke("calls_tb.m", 1)'
    refuse "load_image takes (path, file, space *" '$marlune_load_image("m", "file", "space", 0, 1)'
    refuse "load_bank takes (path, file, space, bank, banks *" '$marlune_load_bank("m", "file", "space", 1)'
    refuse "poke argument 2 must not be real" '$marlune_poke("m", r, 1)'
    refuse "poke argument 2 must be a number of 32 bits without X and Z" '$marlune_poke("m", 4'"'"'bx, 1)'
    refuse "poke argument 2 must be a number of 32 bits" '$marlune_poke("m", 33'"'"'h100000000, 1)'
    refuse "peek argument 3 must be a whole variable" '$marlune_peek("m", 1, v[i +: 4])'
    refuse "peek argument 3 must be a whole variable" '$marlune_peek("m", 1, v + 1)'
    refuse "peek argument 1 must be a text" '$marlune_peek(calls_tb, 1, v)'
}

iverilog -g2012 -o names_tb.vvp "$here/names_tb.v" "$root/hdl/marlune_memory.v"
names() { run names_tb.vvp "$@"; }
expect 0 "a5a5" names "+marlune_dump=names_tb.CORE,last,3,3"
[[ $(< last) == "@00000003 77" ]] || fail "$(< last)" # written at the last edge
expect 0 "'names_tb.r_0__ram': 'names_tb.r?0?.ram' has the same name for test bench access, 'names_tb_r_0__ram'" names
expect 0 "'names_tb.renamed': port 'r_Q0' is not used: it is not a net or a variable of its own name." names
expect 1 "There is no memory 'names_tb.core'" names +marlune_dump=names_tb.core,last # Core or CORE?
expect 1 "There is no bank 4 of 4." names +bank
