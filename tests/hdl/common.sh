# For the scripts of this folder, which take BUILD-FOLDER and WORK-FOLDER: changes to the work folder, an empty one.
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
root=$(cd "$here/../.." && pwd)
build=$1
rm -rf "$2"
mkdir -p "$2"
cd "$2"

fail() {
    printf '%s\n' "$@" >&2
    exit 1
}

# expect_error PATTERN COMMAND...: the command ends with exit status 1 and prints what the pattern matches.
expect_error() {
    local status=0
    output=$("${@:2}" 2>&1) || status=$?
    # shellcheck disable=SC2053 # a pattern
    [[ $status == 1 && $output == *$1* ]] || fail "$output" "exit status $status; expected 1 and: $1"
}
