#!/usr/bin/env bash
# Runs the commands of a transcript (the lines that begin with "$ ") in an empty folder that holds only sample.vexon, and
# compares everything that they print, and "[status]" where that is not 0, with the transcript.
#
# usage: run_transcript.sh TOOL SAMPLE TRANSCRIPT   (with UPDATE=1 it rewrites the transcript instead)
set -euo pipefail
tool=$(realpath "$1") sample=$(realpath "$2") transcript=$(realpath "$3")
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cd "$folder"
mkdir bin empty
ln -s "$tool" bin/marlune-image
cp "$sample" sample.vexon
export PATH="$folder/bin:$PATH" LC_ALL=C

while IFS= read -r line; do
    case $line in
    '$ '*)
        echo "$line"
        status=0
        bash -c "${line#\$ }" 2>&1 < /dev/null | cat || status=$? # a limit on files does not touch the transcript
        ((status == 0)) || echo "[$status]"
        ;;
    '#'*) echo "$line" ;;
    esac
done < "$transcript" > actual
if [[ ${UPDATE-} ]]; then
    cp actual "$transcript"
else
    diff -u --label expected --label actual "$transcript" actual
fi
