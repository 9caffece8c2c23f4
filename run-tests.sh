#!/usr/bin/env bash
# Builds everything and runs all tests.
#
# usage: run-tests.sh         the ordinary build
#        run-tests.sh --all   also under AddressSanitizer and UndefinedBehaviorSanitizer, with clang, for 32 bits, and the
#                             style checks
set -euo pipefail
cd "$(dirname "$0")"
source cmake/install-packages.sh

jobs=$(nproc)

need_packages "the build" g++ g++
need_packages "the build" cmake cmake
need_packages "the build" ninja ninja-build
need_packages "the tests" /usr/include/gtest/gtest.h libgtest-dev
need_packages "the tests in simulators" ghdl ghdl
need_packages "the tests in simulators" iverilog iverilog
need_packages "the tests in simulators" verilator verilator
need_packages "the tests in simulators" make make
need_packages "the tests in simulators" awk mawk
need_packages "the test of the packages" pkg-config pkg-config
need_packages "the test of the packages" lintian lintian
need_packages "the image tool" /usr/include/CLI/CLI.hpp libcli11-dev
need_packages "the image tool" /usr/include/nlohmann/json.hpp nlohmann-json3-dev
need_packages "the image tool" /usr/include/gelf.h libelf-dev
need_packages "the image tool" /usr/include/srecord/input.h libsrecord-dev
need_packages "the image tool, for the headers of libsrecord" /usr/include/boost/shared_ptr.hpp libboost-dev
need_packages "the tests of the image tool" riscv64-unknown-elf-ld binutils-riscv64-unknown-elf
if [[ ${1-} == --all ]]; then
    need_packages "the benchmarks" /usr/include/benchmark/benchmark.h libbenchmark-dev
    need_packages "the 32-bit build" "/usr/lib/gcc/x86_64-linux-gnu/*/32/libgcc.a" g++-multilib
    need_packages "the second compiler and the fuzz targets" clang++ clang
    need_packages "the fuzz targets" "/usr/lib/llvm-*/lib/clang/*/lib/linux/libclang_rt.fuzzer-x86_64.a" libclang-rt-dev
    need_packages "the style checks" clang-format clang-format
    need_packages "the style checks" clang-tidy clang-tidy
fi
install_packages

# Builds and tests one preset. The compiler's output is shown only if it fails.
check() {
    local preset=$1 log
    log=$(mktemp)
    echo "== $preset: build"
    if ! { cmake --preset "$preset" && cmake --build --preset "$preset" -j "$jobs"; } > "$log" 2>&1; then
        tail -n 60 "$log"
        rm -f "$log"
        return 1
    fi
    rm -f "$log"
    echo "== $preset: tests"
    ctest --preset "$preset" -j "$jobs" --output-on-failure | tail -n 40
}

check dev
if [[ ${1-} == --all ]]; then
    check asan
    check clang
    check m32
    cmake/check-style.sh build/clang --product
fi
