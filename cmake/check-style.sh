#!/usr/bin/env bash
# clang-format over all sources, and clang-tidy over those that changed since they were last found clean.
#
# usage: check-style.sh BUILD-FOLDER [--product]   (with its compile_commands.json, made by clang)
#
# --product leaves tests, benchmarks and fuzz targets to those who change them: clang-tidy takes as long for these as for
# all the rest.
set -euo pipefail
build=$(cd "$1" && pwd)
cd "$(dirname "$0")/.."
others='^$'
[[ ${2-} != --product ]] || others="^$PWD/(tests|bench|fuzz)/"

mapfile -t sources < <(git ls-files --cached --others --exclude-standard '*.cpp' '*.h')
mapfile -t headers < <(git ls-files include | grep -v CMakeLists)
echo "== clang-format"
clang-format --dry-run -Werror "${sources[@]}"
for header in "${headers[@]}"; do # no suffix tells their language
    clang-format --assume-filename=header.h < "$header" | diff -u "$header" - || exit 1
done

echo "== clang-tidy"
stamps=$build/tidy-stamps
mkdir -p "$stamps"
# A file is clean as long as it, all headers and the configuration stay the same.
common=$(cat .clang-tidy "${headers[@]}" $(git ls-files --cached --others --exclude-standard '*.h') | sha256sum)
check_one() {
    local file=$1 stamp
    stamp=$stamps/$(echo "$common" "$file" "$(cat "$file")" | sha256sum | cut -c 1-32)
    [[ -e $stamp ]] && return 0
    if clang-tidy --quiet -p "$build" "$file" > "$stamp.log" 2> /dev/null; then
        rm -f "$stamp.log"
        touch "$stamp"
    else
        cat "$stamp.log"
        rm -f "$stamp.log"
        return 1
    fi
}
export -f check_one
export build stamps common
# Only what is compiled: the compilation database tells how.
grep -o '"file": "[^"]*"' "$build/compile_commands.json" | cut -d '"' -f 4 | sort -u | grep -F "$PWD/" |
    grep -vF "$build/" | grep -vE "$others" | tr '\n' '\0' | xargs -0 -n 1 -P "$(nproc)" bash -c 'check_one "$1"' check
echo "clean"
