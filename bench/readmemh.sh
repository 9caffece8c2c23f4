#!/usr/bin/env bash
# Compares the load of a 16 MiB text image with Verilator's $readmemh of as many bytes.
#
# usage: readmemh.sh BUILD-FOLDER   (of the release preset)
set -euo pipefail
build=$(cd "$1" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"

head -c 16777216 /dev/urandom | od -An -v -tx1 -w1 | tr -d ' ' > bytes.hex
cat > load.sv << 'SV'
module load;
  logic [7:0] cells[16777216];
  initial begin
    if (!$test$plusargs("empty")) $readmemh("bytes.hex", cells);
    $display("%h", cells[16777215]);
    $finish;
  end
endmodule
SV
verilator --binary -O3 --top-module load --Mdir model load.sv > build.log 2>&1 || { cat build.log; exit 1; }

seconds() { # of the fastest of five runs
    local best=999 TIMEFORMAT=%R
    for _ in 1 2 3 4 5; do
        best=$({ time "$@" > /dev/null 2>&1; } 2>&1 | awk -v best="$best" '{print ($1 < best) ? $1 : best}')
    done
    echo "$best"
}
whole=$(seconds model/Vload)
empty=$(seconds model/Vload +empty)
"$build/bench/flimemory/load_bench" --benchmark_filter='BM_LoadSize/16$' --benchmark_repetitions=5 \
    --benchmark_out=load.csv --benchmark_out_format=csv > /dev/null 2>&1
awk -F, -v whole="$whole" -v empty="$empty" '
    $1 == "\"BM_LoadSize/16\"" && (best == "" || $3 < best) { best = $3 }
    END { printf "$readmemh: %.3f s; load of a text image: %.3f s; ratio %.1f\n", whole - empty, best / 1000,
                 (whole - empty) / (best / 1000) }' load.csv
