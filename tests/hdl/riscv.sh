#!/usr/bin/env bash
# The processor in two simulators. The images beside its program are those that the tools make from it. What goes wrong
# ends the run with a message and an exit status other than 0.
#
# usage: riscv.sh BUILD-FOLDER
source "$(dirname "$0")/common.sh"
export MAKEFLAGS="OPT_FAST=-O0 OPT_SLOW=-O0 OPT_GLOBAL=-O0" # the model's C++ is not optimized
run() { "$root/examples/riscv/run.sh" "$build" "$@" --into "$PWD"; }

expect 0 "" run verilator icarus
for image in program data; do
    cmp <(sed 2d "$root/examples/riscv/$image.vexon") <(sed 2d $image.vexon) # all but the time stamp
done

expect 0 "loaded by the test bench" run icarus +program="$PWD/program.vexon"
[[ $output != *"from the command line"* ]] || fail "$output" # that run would load the example's own images
expect 1 "File './missing.vexon' could not be opened." run icarus +program=./missing.vexon
expect 1 "The program has not ended after 1000 cycles" run icarus +limit=1000
expect 1 "cannot execute the instruction" run icarus +program="$PWD/data.vexon" # whose address space is another
