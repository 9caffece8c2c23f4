#!/usr/bin/env bash
# What cannot be elaborated ends with its message, the instance's path in it, and exit status 1, before time begins.
#
# usage: bad_inputs.sh BUILD-FOLDER WORK-FOLDER UNSERVED-LIBRARY
source "$(dirname "$0")/common.sh"
good="marlune_fli_memory_init libmarlune_fli_memory.so"

# expect MESSAGE COMMAND...: the command fails with the message
expect() {
    local message="fatal error: 'bad_tb${separator-.}memory': $1" output status=0
    shift
    output=$("$@" 2>&1) || status=$?
    if ((status != 1)) || [[ $output != *"$message"* || $output == *"has started"* ]]; then
        printf 'exit status %s, expected 1 and: %s\n%s\n' "$status" "$message" "$output"
        failed=1
    fi
}

icarus() {
    iverilog -g2012 -o bad.vvp "$@" "$here/bad_tb.v" && vvp -M"$build" -mmarlune_fli bad.vvp
}

foreign() {
    expect "$1" icarus "-Pbad_tb.FOREIGN=\"$2\""
}

foreign "The foreign attribute '$good 0 8 16' is not of the form 'init_function library; parameters'." "$good 0 8 16"
foreign "The foreign attribute 'library.so; 0 8 16' is not of the form" "library.so; 0 8 16"
foreign "Cannot load library './missing.so': ./missing.so: cannot open shared object" "init ./missing.so; 0 8 16"
foreign "Library 'libmarlune_fli_memory.so' has no function 'other_init'." "other_init libmarlune_fli_memory.so; 0 8 16"
foreign "Cannot load library '$3': $3: undefined symbol: mti_GetTopRegion (this bridge does not have the function)." \
    "unserved_init $3; 0 8 16"
foreign "General error: At least 3 arguments are needed: <read_is_synchronous> <byte_bit_width> <size_in_bytes>" "$good; 0 8"
expect "Port 'a_RA0' is neither a std_logic nor a vector of it." icarus -DREAL_PORT

if command -v ghdl > /dev/null; then
    ghdl -a --std=08 "$root/hdl/marlune_fli.vhd" "$here/bad_tb.vhd"
    ghdl -e --std=08 bad_tb
    separator=/ expect "Port 'a_ra0' is neither a std_logic nor a vector of it." \
        ghdl -r --std=08 bad_tb --vpi="$build/libmarlune_fli_vpi.so"
fi
exit "${failed-0}"
