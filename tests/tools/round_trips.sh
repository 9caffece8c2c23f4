#!/usr/bin/env bash
# Programs that toolchains have built come out of the tool as they went in: the bytes of a memory into which the converted
# file is loaded are those that objcopy takes out of the ELF file, at every width, and each format in which the tool
# writes cells makes the same image again.
#
# usage: round_trips.sh TOOL
set -euo pipefail
tool=$(realpath "$1")
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"
failures=0 programs=0

fail() {
    echo "$*" >&2
    ((++failures))
}

# All but the time stamp.
same_image() { cmp <(sed 2d "$1") <(sed 2d "$2"); }

# round_trip ELF LOWEST OBJCOPY: the program's bytes begin at the address LOWEST, a multiple of 8.
round_trip() {
    local elf=$1 base=$2 width size cells format
    "$3" -O binary "$elf" expected
    size=$(stat -c %s expected)
    ((size > 100)) || fail "$elf has only $size bytes"
    for width in 8 16 32 64; do
        cells=$(((size + width / 8 - 1) / (width / 8)))
        "$tool" convert "$elf" image.vexon --space ram --width "$width" --base "$base" 2> warnings ||
            fail "$elf, $width: $(< warnings)"
        "$tool" dump image.vexon --space ram --width "$width" --size "$cells" --format bin -o bytes
        cmp -n "$size" bytes expected || fail "$elf differs at $width bits"
        "$tool" convert expected direct.vexon --from binary --space ram --width "$width" 2> warnings
        for format in bin ihex srec readmemh; do
            "$tool" dump direct.vexon --space ram --width "$width" --size "$cells" --format "$format" -o "cells.$format"
            "$tool" convert "cells.$format" again.vexon --space ram --width "$width" --from "${format/#bin/binary}"
            same_image direct.vexon again.vexon || fail "$elf: $format differs at $width bits"
        done
    done
    ((++programs))
}

# Odd sizes, so that sections meet inside of a LAU; data that is loaded at another address than it has; zeros.
cat > program.s << 'ASM'
    .section .text, "ax"
    .globl _start
_start:
    .rept 37
    .byte 1, 2, 3
    .endr
    .section .rodata, "a"
    .ascii "sections of an odd size"
    .section .data, "aw"
    .byte 0xaa, 0xbb, 0xcc, 0xdd, 0xee
    .section .bss, "aw", %nobits
    .space 70
ASM
cat > program.ld << 'LD'
ENTRY(_start)
MEMORY { rom : ORIGIN = 0x1000, LENGTH = 0x1000
         ram : ORIGIN = 0x8000, LENGTH = 0x1000 }
SECTIONS {
    .text : SUBALIGN(1) { *(.text) } > rom
    .rodata : SUBALIGN(1) { *(.rodata) } > rom
    .data : SUBALIGN(1) { *(.data) } > ram AT > rom
    .bss : SUBALIGN(1) { *(.bss) } > ram
    /DISCARD/ : { *(.note*) *(.eh_frame) *(.riscv.attributes) }
}
LD
# build OBJCOPY ASSEMBLER OPTIONS... -- LINKER OPTIONS...
build() {
    local objcopy=$1 assembler=()
    shift
    while [[ $1 != -- ]]; do
        assembler+=("$1")
        shift
    done
    shift
    command -v "${assembler[0]}" > /dev/null || { echo "no ${assembler[0]}: its programs are left out"; return; }
    "${assembler[@]}" program.s -o program.o
    "$@" -n -T program.ld program.o -o program.elf 2> /dev/null
    round_trip program.elf 0x1000 "$objcopy"
}
riscv=riscv64-unknown-elf
build $riscv-objcopy $riscv-as -march=rv32i -mabi=ilp32 -- $riscv-ld -m elf32lriscv
build $riscv-objcopy $riscv-as -march=rv64i -mabi=lp64 -mbig-endian -- $riscv-ld -m elf64briscv
if [[ $(uname -m) == x86_64 ]]; then
    build objcopy as -- ld
    echo 'int numbers[40] = {1, 2, 3}; int main(void) { return numbers[1]; }' > main.c
    "${CXX:-c++}" -x c -O1 -fno-pic -no-pie -nostdlib -static -Wl,-e,main,-n,-T,program.ld main.c -o main.elf 2> /dev/null
    round_trip main.elf 0x1000 objcopy
fi
echo "$programs programs"
((programs > 0)) || fail "there is no toolchain"
exit $((failures > 0))
