#!/usr/bin/env bash
# No file makes the tool crash, hang or print anything but a report (status 0) or a message (status 1): the sample with
# each of its lines replaced or cut away, and every file that the tests keep as data.
#
# usage: broken_files.sh TOOL SAMPLE FOLDER...
set -euo pipefail
tool=$1 sample=$2
shift 2
broken=$(mktemp)
trap 'rm -f "$broken"' EXIT
failures=0

# A number that a file merely claims must not ask for memory. Sanitizers need address space to run.
grep -q __asan_init "$tool" || ulimit -v 1000000

try() {
    local what=$1 file=$2 status=0 message
    shift 2
    message=$(timeout 20 "$tool" "$@" "$file" 2>&1 > /dev/null) || status=$?
    if ((status > 1)) || { ((status == 1)) && [[ $1 != check && $message != *"marlune-image: "* ]]; }; then
        echo "$what: $* ends with status $status: $message"
        ((++failures))
    fi
}

lines=$(wc -l < "$sample")
for ((line = 1; line <= lines; ++line)); do
    for text in -1 2147483647 ''; do
        sed "${line}s/.*/$text/" "$sample" > "$broken"
        try "line $line is '$text'" "$broken" check
        try "line $line is '$text'" "$broken" dump --space ram --width 8 --size 4294967295
    done
    head -n $((line - 1)) "$sample" > "$broken"
    try "only $((line - 1)) lines" "$broken" info
done
while IFS= read -r -d '' file; do
    try "$file" "$file" check
    try "$file" "$file" map
done < <(find "$@" -path '*/data/*' -type f -print0)
exit $((failures > 0))
