#!/usr/bin/env bash
# GHDL: the test bench package with memories of foreign architectures, direct ones, and both, and a user's errors.
#
# usage: ghdl_testbench.sh BUILD-FOLDER
source "$(dirname "$0")/common.sh"

# A copy of the template's architecture that is sized by generics.
{
    echo "use work.marlune_fli.all;"
    sed -n "/^architecture fli/,\$s/fli'foreign/\"marlune_fli_memory_init libmarlune_fli_memory.so; \" \& PARAMETERS/;
            /^architecture fli/,\$p" "$root/hdl/marlune_memory.vhd"
} > foreign.vhd
ghdl -i --std=08 "$root"/hdl/marlune_fli.vhd "$root"/hdl/ghdl/*.vhd foreign.vhd "$here/ghdl/testbench_tb.vhd"
ghdl -m --std=08 testbench_tb

# run WAY OPTION...
run() {
    local vpi=(--vpi="$build/libmarlune_fli_vpi.so")
    [[ $1 != direct ]] || vpi=()
    LD_LIBRARY_PATH=$build ghdl -r --std=08 testbench_tb "-gWAY=$1" "${@:2}" ${vpi[@]+"${vpi[@]}"}
}

known="fatal error: 'testbench_tb/memories(?)/served/*': "
for way in foreign direct mixed; do
    expect 0 "error: 'testbench_tb/memories(9)/*Access outside of memory, address: -1*PASSED" run "$way"
    expect 1 "Cannot find memory object with name 'testbench_tb_memories_1__nothing'.*The memories are: 'testbench_tb" \
        run $way -gFAULT=1
    expect 1 "${known}File 'missing.vexon' could not be opened." run $way -gFAULT=2
    expect 1 "${known}General error: LAU mismatch: * bitwidth (32) than *'image.vexon' (8)." run $way -gFAULT=3
    expect 1 "${known}General error: Stride must be greater than zero." run $way -gFAULT=4
    expect 1 "marlune_testbench: an address has more than 32 bits" run $way -gFAULT=5
    expect 1 "marlune_testbench: an address has elements other than '0' and '1'" run $way -gFAULT=6
done
check_options testbench_tb/untouched/spare run direct
check_options testbench_tb/untouched/spare run mixed

test_bench=(ghdl -r --std=08 testbench_tb)
expect 1 ":marlune_served: no library serves this memory. Run ghdl -r with --vpi=libmarlune_fli_vpi.so." \
    env LD_LIBRARY_PATH="$build" "${test_bench[@]}" -gWAY=foreign -gFAULT=7
expect 1 "cannot load VHPIDIRECT shared library 'libmarlune_direct.so'" \
    env LD_LIBRARY_PATH= "${test_bench[@]}" -gWAY=direct

# memory EXPRESSION [OPTION...]: runs the memory alone, as the expression of sed changes it
memory() {
    sed "$1" "$root/hdl/ghdl/marlune_memory.vhd" > memory.vhd
    ghdl -a --std=08 -Wno-library memory.vhd
    LD_LIBRARY_PATH=$build ghdl -r --std=08 marlune_memory "${@:2}"
}

expect 1 "fatal error: 'marlune_memory': General error: At least 3 arguments" memory '' -gPARAMETERS="0 32"
expect 1 "fatal error: 'marlune_memory': A width of 1025 bits is not possible" memory '' -gDATA_BITS=1025
expect 0 "'marlune_memory': ports 'w_WE', 'w_WA0', 'w_D0' are not used: their group lacks WE0 to be a write port." \
    memory 's/"r_RE0 \(.*\) w_WE0/"r_RE0 \1 w_WE/'
expect 1 "'marlune_memory': basic_string::substr*Port 'Q0' needs a prefix, as in 'a_Q0'." memory 's/ r_Q0:/ Q0:/'
expect 1 "'marlune_memory': The inputs of wake have 22 elements, and the ports that open_memory lists have 54." \
    memory 's/ & w_D0, outputs/, outputs/'
expect 1 "'marlune_memory': The outputs of wake have 30 elements, and the ports that open_memory lists have 32." \
    memory "s/outputs : std_logic_vector(r_Q0'length - 1/outputs : std_logic_vector(r_Q0'length - 3/"
