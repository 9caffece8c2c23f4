#!/usr/bin/env bash
# The SystemVerilog example, then once more with an image that is not there: the library's error ends the run.
#
# usage: verilator.sh BUILD-FOLDER
set -euo pipefail
run=$(dirname "$0")/../../examples/verilator/run.sh
"$run" "$1"
status=0
output=$("$run" "$1" ./missing.vexon 2>&1) || status=$?
if ((status != 1)) || [[ $output != *"fatal error: File './missing.vexon' could not be opened."* ]]; then
    printf 'exit status %s\n%s\n' "$status" "$output"
    exit 1
fi
