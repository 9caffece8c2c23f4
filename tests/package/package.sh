#!/usr/bin/env bash
# Installs into an empty prefix, builds a consumer against it and runs the processor from what is there.
#
# usage: package.sh BUILD-FOLDER WORK-FOLDER CMAKE GENERATOR COMPILER FLAGS
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
build=$1 cmake=$3
mkdir -p "$2/example" # stays, for building the model takes long
work=$(cd "$2" && pwd)
rm -rf "$work/prefix" "$work/consumer"

fail() {
    echo "$*" >&2
    exit 1
}

"$cmake" --install "$build" --prefix "$work/prefix" > "$work/install.log"
"$cmake" -S "$here/consumer" -B "$work/consumer" -G "$4" -DCMAKE_CXX_COMPILER="$5" -DCMAKE_CXX_FLAGS="$6" \
    -DCMAKE_PREFIX_PATH="$work/prefix" > "$work/consumer.log" || fail "$(cat "$work/consumer.log")"
"$cmake" --build "$work/consumer" >> "$work/consumer.log" 2>&1 || fail "$(cat "$work/consumer.log")"
output=$(cd "$work" && consumer/consumer)
[[ $output == ".data 42" ]] || fail "the consumer printed: $output"
while read -r path; do
    [[ -f $path ]] || fail "the package names $path, which is not there"
done < "$work/consumer/paths.txt"
if compgen -G "$work/prefix/bin/marlune-image" > /dev/null; then
    "$work/prefix/bin/marlune-image" info "$work/image.vexon" | grep -q '\.data' || fail "the image tool shows no section"
fi

# The model is built anew for every installation; one that holds what it held when the example last passed needs no other.
contents=$(cd "$work/prefix" && find . -type f -print0 | sort -z | xargs -0 sha256sum | sha256sum)
[[ -f $work/passed && $(< "$work/passed") == "$contents" ]] && exit 0
command -v verilator > /dev/null && [[ $6 != *-m32* ]] || { echo "no verilator: the example is left out"; exit 0; }
simulators=(verilator)
command -v vvp > /dev/null && simulators+=(icarus)
libraries=$(dirname "$(head -n 1 "$work/consumer/paths.txt")")
PATH=$work/prefix/bin:$PATH "$work/prefix/share/marlune_fli_memory/examples/riscv/run.sh" "$libraries" \
    "${simulators[@]}" --into "$work/example"
echo "$contents" > "$work/passed"
