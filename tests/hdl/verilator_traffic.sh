#!/usr/bin/env bash
# Verilator: the same random traffic through direct calls and through a model.
#
# usage: verilator_traffic.sh BUILD-FOLDER
source "$(dirname "$0")/common.sh"
copy_memory marlune_memory.sv
verilate traffic --binary --timing "$here/verilator/traffic.sv" all_ports.sv
expect 0 PASSED traffic/Vtraffic
