#!/usr/bin/env bash
# What cannot be elaborated ends with its message, the instance's path in it, and exit status 1, before time begins.
#
# usage: bad_inputs.sh BUILD-FOLDER UNSERVED-LIBRARY QUITTING-LIBRARY
source "$(dirname "$0")/common.sh"
good="marlune_fli_memory_init libmarlune_fli_memory.so"

# refuse MESSAGE COMMAND...: the command fails with the message
refuse() {
    expect 1 "fatal error: 'bad_tb?memory': $1" "${@:2}"
    [[ $output != *"has started"* ]] || fail "$output"
}

icarus() {
    iverilog -g2012 -o bad.vvp "$@" "$here/bad_tb.v" && vvp -M"$build" -mmarlune_fli bad.vvp
}

foreign() {
    refuse "$1" icarus "-Pbad_tb.FOREIGN=\"$2\""
}

foreign "The foreign attribute '$good 0 8 16' is not of the form 'init_function library; parameters'." "$good 0 8 16"
foreign "The foreign attribute 'library.so; 0 8 16' is not of the form" "library.so; 0 8 16"
foreign "Cannot load library './missing.so': ./missing.so: cannot open shared object" "init ./missing.so; 0 8 16"
foreign "Library 'libmarlune_fli_memory.so' has no function 'other_init'." "other_init libmarlune_fli_memory.so; 0 8 16"
foreign "Cannot load library '$2': $2: undefined symbol: mti_GetTopRegion (this bridge does not have the function)." \
    "unserved_init $2; 0 8 16"
foreign "General error: At least 3 arguments are needed: <read_is_synchronous> <byte_bit_width> <size_in_bytes>" \
    "${good/ /$'\t'};"$'\t0 8' # blanks may be tabs
refuse "Port 'a_RA0' is neither a std_logic nor a vector of it." icarus -DREAL_PORT
foreign "*Parameter 2, <byte_bit_width>, is '1k'; all are '0 1k 16'." "$good; 0 1k 16"
foreign "A width of 1025 bits is not possible: a test bench's words have 1024, and so has a cell." "$good; 0 1025 16"
expect 0 "the library quits" icarus "-Pbad_tb.FOREIGN=\"quitting_init $3; \""
expect 0 "warning: 'bad_tb.memory': port 'p_CS' is not used: the name ends in no role." icarus

sed 's/\(r_RA0 : in *\)std_logic_vector(.*)/\1integer/' "$root/hdl/marlune_memory.vhd" > port.vhd
ghdl -a --std=08 "$root/hdl/marlune_fli.vhd" port.vhd
expect 1 "fatal error: 'marlune_memory': Port 'r_ra0' is neither a std_logic nor a vector of it." \
    ghdl -r --std=08 marlune_memory --vpi="$build/libmarlune_fli_vpi.so"
