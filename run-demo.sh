#!/usr/bin/env bash
# Builds the libraries, and runs the two examples in their simulators. It fails when any value that a memory
# delivers differs from what it must be. A second run builds nothing.
#
# usage: run-demo.sh
set -euo pipefail
cd "$(dirname "$0")"
source cmake/install-packages.sh

need_packages "the build" g++ g++
need_packages "the build" cmake cmake
need_packages "the build" ninja ninja-build
need_packages "the VHDL example" ghdl ghdl
need_packages "the SystemVerilog example" verilator verilator
need_packages "the SystemVerilog example" make make
need_packages "the SystemVerilog example" awk mawk
install_packages

build=build/demo
mkdir -p "$build"
echo "== Build: libmarlune_fli_memory.so and libmarlune_direct.so in $build"
if ! { cmake --preset release -B "$build" -DMARLUNE_BUILD_TESTS=OFF -DMARLUNE_BUILD_BENCH=OFF -DMARLUNE_WERROR=OFF &&
    cmake --build "$build" -j "$(nproc)" --target marlune_fli_memory marlune_direct; } > "$build/build.log" 2>&1; then
    cat "$build/build.log" >&2
    exit 1
fi

echo
echo "== VHDL in GHDL: five memories of different shapes against a reference model"
examples/vhdl/run.sh "$build"

echo
echo "== SystemVerilog in Verilator: a processor with a program memory and a four-way interleaved data memory"
examples/verilator/run.sh "$build"

echo
echo "Both examples ran, and every value was as it must be."
