#!/bin/sh
# What the shared library offers and what it needs. usage: library_symbols.sh LIBRARY NM READELF
set -eu
offered=$("$2" -D --defined-only "$1" | awk '{print $3}' | LC_ALL=C sort | tr '\n' ' ')
expected="CleanCallback marlune_direct_bind marlune_direct_commit marlune_direct_load_warning marlune_direct_only_space marlune_direct_visit_cells marlune_direct_wake marlune_dpi_memory_init marlune_dpi_memory_read marlune_dpi_memory_write \
marlune_fli_memory_init marlune_fli_memory_process "
needed=$("$2" -D --undefined-only "$1" | awk '$1 == "U" {print $2}' |
         grep -vE '^(mti_[A-Za-z]+|sv(Get|Put)BitselLogic|.*@.*GLIBC.*)$' || true)
libraries=$("$3" -d "$1" | sed -n 's/.*(NEEDED).*\[\(.*\)\].*/\1/p' | grep -vE '^(libc|libm|ld-linux.*)\.so' || true)
binding=$("$3" -d "$1" | grep -cE 'BIND_NOW|NOW' || true)
status=0
[ "$offered" = "$expected" ] || { echo "offers $offered instead of $expected"; status=1; }
[ -z "$needed" ] || { echo "needs $needed"; status=1; }
[ -z "$libraries" ] || { echo "needs the libraries $libraries"; status=1; }
[ "$binding" = 0 ] || { echo "does not bind lazily"; status=1; }
exit $status
