#!/usr/bin/env bash
# The sources in docs/memories.md run as they stand, in three simulators.
# usage: documents.sh BUILD-FOLDER WORK-FOLDER
source "$(dirname "$0")/common.sh"
work=$(mktemp -d) # Verilator and make take no blanks in paths
trap 'rm -rf "$work"' EXIT
cd "$work"
ln -s "$root" source
ln -s "$build" libraries

# A block belongs to the file that is named at the beginning of a line before it.
awk '/^`[a-z_]+\.[a-z]+`/ { split($0, part, "`"); name = part[2] }
     /^```/ { inside = !inside; if (!inside) name = ""; next }
     inside && name != "" { print > name }' "$root/docs/memories.md"
for byte in {0..63}; do printf '%02x ' "$byte"; done > bytes.hex
"$build/marlune-image" convert bytes.hex program.vexon --space ram --width 8 --from readmemh

expect() {
    local output
    output=$("$@" 2>&1)
    [[ $output == *"word 0 is 03BB0100"* || $output == *"word 0 is 03bb0100"* ]] || { echo "$*: $output"; exit 1; }
}

iverilog -g2012 -o byte_memory.vvp byte_memory_tb.sv byte_memory.v "$root/hdl/marlune_memory.v"
expect vvp "-M$build" -mmarlune_fli byte_memory.vvp

verilator --binary --timing --top-module byte_memory_tb source/hdl/marlune_dpi.sv source/hdl/marlune_memory.sv \
    byte_memory.v byte_memory_tb.sv \
    -LDFLAGS "-L$work/libraries -Wl,-rpath,$work/libraries -lmarlune_direct -lmarlune_fli_memory" > verilator.log
expect obj_dir/Vbyte_memory_tb

ghdl -i --std=08 source/hdl/ghdl/*.vhd byte_memory.vhd byte_memory_tb.vhd
ghdl -m --std=08 byte_memory_tb
LD_LIBRARY_PATH=$build expect ghdl -r --std=08 byte_memory_tb
