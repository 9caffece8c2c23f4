#!/usr/bin/env bash
# The processor in one simulator. The images that lie beside its program are those that the tools make of it; and what goes
# wrong ends the run with a message and an exit status that is not 0.
#
# usage: riscv.sh BUILD-FOLDER WORK-FOLDER verilator|icarus
source "$(dirname "$0")/common.sh"
run() { "$root/examples/riscv/run.sh" "$build" "$1" --into "$PWD" "${@:2}" 2>&1; }

run "$3"
for image in program data; do
    cmp <(sed 2d "$root/examples/riscv/$image.vexon") <(sed 2d $image.vexon) # all but the time stamp
done

# expect MESSAGE ARGUMENT...: the run ends with the message
expect() {
    local output status=0
    output=$(run "${@:2}") || status=$?
    if ((status == 0)) || [[ $output != *"$1"* ]]; then
        printf 'exit status %s, expected an error and: %s\n%s\n' "$status" "$1" "$output"
        failed=1
    fi
}
expect "File './missing.vexon' could not be opened." "$3" +program=./missing.vexon
expect "The program has not ended after 1000 cycles" "$3" +limit=1000
expect "cannot execute the instruction" "$3" +program="$PWD/data.vexon" # whose address space is another
exit "${failed-0}"
