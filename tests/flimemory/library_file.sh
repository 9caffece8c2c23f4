#!/bin/sh
# How the libraries that simulators load are built: hardened, nothing looked for in the working directory, and for no newer
# C library than README.md says where Debian 12 builds them.
# usage: library_file.sh README READELF LIBRARY...
set -eu
readme=$1 readelf=$2
shift 2
for library; do
    dynamic=$("$readelf" -Wd "$library")
    case $dynamic in *runpath*\[\]* | *runpath*\[:* | *runpath*:\]* | *runpath*::* | *RPATH*) echo "$library: $dynamic"; exit 1 ;; esac
    "$readelf" -Wl "$library" | grep -q GNU_RELRO || { echo "$library has no read-only relocations"; exit 1; }
    symbols=$("$readelf" -W --dyn-syms "$library")
    echo "$symbols" | grep -q __stack_chk_fail || { echo "$library has no stack protector"; exit 1; }
    ! echo "$symbols" | grep arc4random || exit 1 # a part of the C++ run-time that nothing uses
    newest=$(echo "$symbols" | grep -o 'GLIBC_2\.[0-9]*' | sort -V | tail -n 1)
    ! grep -q '^VERSION_ID="12"' /etc/os-release || grep -qF "$newest" "$readme" || { echo "$library needs $newest"; exit 1; }
done
