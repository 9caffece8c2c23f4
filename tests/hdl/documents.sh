#!/usr/bin/env bash
# The sources in docs/memories.md run unchanged in three simulators.
#
# usage: documents.sh BUILD-FOLDER
source "$(dirname "$0")/common.sh"
# A block belongs to the file that is named at the beginning of a line before it.
awk '/^`[a-z_]+\.[a-z]+`/ { split($0, part, "`"); name = part[2] }
     /^```/ { inside = !inside; if (!inside) name = ""; next }
     inside && name != "" { print > name }' "$root/docs/memories.md"
for byte in {0..63}; do printf '%02x ' "$byte"; done > bytes.hex
"$build/marlune-image" convert bytes.hex program.vexon --space ram --width 8 --from readmemh

result="word 0 is 03[Bb][Bb]0100"
iverilog -g2012 -o byte_memory.vvp byte_memory_tb.sv byte_memory.v "$root/hdl/marlune_memory.v"
expect 0 "$result" vvp "-M$build" -mmarlune_fli byte_memory.vvp

verilate byte_memory_tb --binary --timing byte_memory.v byte_memory_tb.sv
expect 0 "$result" byte_memory_tb/Vbyte_memory_tb

ghdl -i --std=08 "$root"/hdl/ghdl/*.vhd byte_memory.vhd byte_memory_tb.vhd
ghdl -m --std=08 byte_memory_tb
expect 0 "$result" env LD_LIBRARY_PATH="$build" ghdl -r --std=08 byte_memory_tb
