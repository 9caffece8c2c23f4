# Data alone, so that any GNU assembler takes it.
    .section .marlune_as, "", @0x70000000
    .2byte 1
    .asciz "ram"
    .2byte 0, 32, 8, 0
    .text
    .globl _start
_start:
    .set i, 0
    .rept 1500
    .byte (i * 37) & 255
    .set i, i + 1
    .endr
    .data
    .quad 0x0123456789abcdef
    .ascii "read-write data"
    .bss
    .skip 64
