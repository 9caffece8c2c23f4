#!/usr/bin/env bash
# Builds the libraries and the image tool, and runs the two examples in their simulators. It fails if any value that a
# memory delivers is wrong. A second run builds nothing.
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
need_packages "the SystemVerilog example" iverilog iverilog
install_packages

need_packages "the SystemVerilog example's program" riscv64-unknown-elf-ld binutils-riscv64-unknown-elf
need_packages "the image tool" /usr/include/CLI/CLI.hpp libcli11-dev
need_packages "the image tool" /usr/include/nlohmann/json.hpp nlohmann-json3-dev
need_packages "the image tool" /usr/include/gelf.h libelf-dev
install_packages || echo "The demo continues with the images beside the example's program."

build=build/demo
mkdir -p "$build"
echo "== Build: libmarlune_fli_memory.so, libmarlune_direct.so and marlune-image in $build"
if ! { cmake --preset release -B "$build" -DMARLUNE_BUILD_TESTS=OFF -DMARLUNE_BUILD_BENCH=OFF -DMARLUNE_WERROR=OFF &&
    cmake --build "$build" -j "$(nproc)"; } > "$build/build.log" 2>&1; then
    cat "$build/build.log" >&2
    exit 1
fi

echo
echo "== VHDL in GHDL: five memories of different shapes against a reference model"
examples/vhdl/run.sh "$build"

echo
echo "== SystemVerilog in Verilator and Icarus Verilog: a processor for RV32I, its program and its data in four banks"
examples/riscv/run.sh "$build"

echo
echo "Both examples ran, and every value was correct."
