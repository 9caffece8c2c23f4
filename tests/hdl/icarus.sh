#!/usr/bin/env bash
# usage: icarus.sh BUILD-FOLDER WORK-FOLDER
source "$(dirname "$0")/common.sh"
iverilog -g2012 -o icarus_tb.vvp "$here/icarus_tb.v" "$root/hdl/marlune_memory.v"
vvp -M"$build" -mmarlune_fli icarus_tb.vvp | tee log
grep -qx PASSED log # vvp exits with status 0 whatever a test bench finds
