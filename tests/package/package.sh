#!/usr/bin/env bash
# Makes the Debian packages, installs into an empty prefix, and uses what is there in each of the ways that the documents
# name.
#
# usage: package.sh BUILD-FOLDER WORK-FOLDER CMAKE GENERATOR COMPILER FLAGS
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
root=$(cd "$here/../.." && pwd)
build=$1 cmake=$3 generator=$4 compiler=$5 flags=$6
mkdir -p "$2" # stays, so that nothing is built twice
work=$(cd "$2" && pwd)
rm -rf "$work"/{prefix,packages,results,package}
mkdir "$work"/{packages,results}
cd "$work"
plain=$(mktemp -d) # make and Verilator take no blanks in paths
lintian=
trap 'rm -rf "$plain"; [[ -z $lintian ]] || kill "$lintian" 2> /dev/null || true' EXIT

fail() {
    echo "$*" >&2
    exit 1
}

# quietly COMMAND...: what it prints is worth showing only when it fails
quietly() { "$@" > "$work/log" 2>&1 || fail "$* fails: $(tail -n 60 "$work/log")"; }

# expect TEXT COMMAND...: the text is in what the command prints
expect() {
    local output
    output=$("${@:2}" 2>&1) || fail "${*:2} fails: $output"
    [[ $output == *"$1"* ]] || fail "${*:2} prints '$output' instead of '$1'"
}

has() { command -v "$1" > /dev/null && [[ $flags != *-m32* ]]; }

# consumer FROM CMAKE-ARGUMENT...: configures the consumer
consumer() {
    quietly "$cmake" -S "$here/consumer" -B "$1" -G "$generator" -DFROM="$1" -DMARLUNE_SOURCE="$root" \
        -DCMAKE_CXX_COMPILER="$compiler" -DCMAKE_CXX_FLAGS="$flags -O0" "${@:2}"
}

if has dpkg-deb && has cpack; then
    quietly cpack --config "$build/CPackConfig.cmake" -B "$work/packages"
    if has lintian; then # which takes long
        lintian --allow-root --no-user-dirs --fail-on error,warning packages/*.deb > packages/lintian.log 2>&1 &
        lintian=$!
    fi
fi

quietly "$cmake" --install "$build" --prefix "$work/prefix"
verilator=OFF
has verilator && verilator=ON
consumer package -DCMAKE_PREFIX_PATH="$work/prefix" -DWITH_VERILATOR=$verilator
quietly "$cmake" --build package --parallel 2
expect ".data 42" package/consumer
while read -r path; do
    [[ -f $path ]] || fail "the package names $path, which is not there"
done < package/paths.txt
[[ ! -e prefix/include/marlune_fli_memory/objectfile/bitdigits.h ]] || fail "an internal header is installed"
libraries=$(dirname "$(head -n 1 package/paths.txt)")
expect "libmarlune_direct $(sed -n 's/^project(.* VERSION \([0-9.]*\).*/\1/p' "$root/CMakeLists.txt")" \
    strings -a "$libraries/libmarlune_direct.so"

# As a folder of another project. One of the two is built.
consumer subdirectory -DWITH_VERILATOR=OFF
consumer fetch -DWITH_VERILATOR=OFF
quietly "$cmake" --build fetch --target consumer --parallel 2
expect ".data 42" fetch/consumer

# pkg-config, C++, Python and make
PKG_CONFIG_PATH=$(dirname "$libraries")/pkgconfig
export PKG_CONFIG_PATH
if has pkg-config; then
    flags_of() { eval "used=($(pkg-config --cflags --libs "$1"))"; } # it quotes as for a shell
    flags_of marlune
    quietly "$compiler" $flags "$root/examples/dpi/peek.cpp" "${used[@]}" -o results/peek
    expect 42 results/peek image.vexon ram
    flags_of marlune-objectfile
    quietly "$compiler" -std=c++17 $flags "$here/consumer/consumer.cpp" "${used[@]}" -o results/consumer
    expect ".data 42" results/consumer
fi
has python3 && expect 42 env LD_LIBRARY_PATH="$(dirname "$libraries")" python3 "$root/examples/dpi/peek.py" image.vexon ram
if has verilator && has pkg-config && has make; then
    expect "first byte: 42, read: 42" package/tb
    ln -s "$work/prefix" "$here/consumer" "$plain"
    PKG_CONFIG_PATH=${PKG_CONFIG_PATH/#"$work"/"$plain"} \
        quietly make -C "$plain" -f consumer/Makefile SOURCE=consumer tb
    expect "first byte: 42, read: 42" "$plain/tb"
fi

# The examples write where the user says, and simulators find the libraries.
examples=prefix/share/marlune_fli_memory/examples
if has ghdl; then
    quietly "$examples/vhdl/run.sh" "$libraries" --into "results/a folder" CYCLES=100
    [[ -f results/a\ folder/memory_tb.ghw ]] || fail "the VHDL example writes elsewhere"
fi
if has vvp; then
    (cd results && PATH=$work/prefix/bin:$PATH quietly "$work/$examples/riscv/run.sh" "$libraries" icarus)
    quietly vvp -M"$(dirname "$libraries")/ivl" -mmarlune_fli results/marlune-riscv/processor_tb.vvp +marlune_list \
        +program=results/marlune-riscv/program.vexon +data=results/marlune-riscv/data.vexon
fi
while read -r file; do
    [[ -f $root/hdl/$file ]] || fail "marlune.core names hdl/$file, which is not there"
done < <(sed -n 's/^ *files: \[\(.*\)\]/\1/p' "$root/hdl/marlune.core" | tr -d ' ' | tr , '\n')
[[ -z $lintian ]] || wait "$lintian" || fail "$(cat packages/lintian.log)"
