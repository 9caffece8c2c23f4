#!/usr/bin/env bash
# Verilator: forms of instances and paths in a model with waveforms and threads, command line options, and a user's own
# main program.
#
# usage: verilator_forms.sh BUILD-FOLDER
source "$(dirname "$0")/common.sh"
copy_memory marlune_memory.sv
verilate forms_tb --binary --timing -O3 --trace --threads 2 -Wno-UNOPTTHREADS \
    "$here"/{modes_tb.v,verilator/forms_tb.sv} all_ports.sv &
verilate clocked --cc --exe --build "$here"/verilator/{clocked.sv,own_main.cpp}
wait $!

# Clean as it is, and when a copy has no output.
mkdir written
sed '/^ *output /d; s/`MARLUNE_OUTPUT(r_Q0)//' "$root/hdl/marlune_memory.sv" > written/marlune_memory.sv
for memory in "$root"/hdl/marlune_memory.sv written/marlune_memory.sv; do
    verilator --lint-only --timing -Wall --top-module marlune_memory "$root/hdl/marlune_dpi.sv" "$memory"
done

expect 0 "forms: PASSED*checked?PASSED" forms_tb/Vforms_tb
check_waveform
check_options forms_tb.spare forms_tb/Vforms_tb
expect 1 "Cannot find memory object with name 'forms_tb_unknown'.*The memories are: 'forms_tb." \
    forms_tb/Vforms_tb +unknown +marlune_dump=forms_tb.wide,after_error,7,7
[[ $(< after_error) == "@00000007 abcdabcdabcdabcdabcdabcdabcdabcd" ]] || fail "$(< after_error)"
expect 134 "forms_tb.wide: there is no bank 2 of 2." forms_tb/Vforms_tb +bank
expect 0 "" clocked/Vclocked
expect 1 "fatal error: 'clocked.ram': CLK rises twice at time 0. *timeInc." clocked/Vclocked +still
