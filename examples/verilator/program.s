; The running sums of a table: sums[i] = table[0] + ... + table[i].
;
;   HALT                stop
;   LI   rd, number     rd = number, 16 bits without sign
;   ADD  rd, rs         rd = rd + rs
;   ADDI rd, number     rd = rd + number, 16 bits with sign
;   LW   rd, rs, number rd = the word at address rs + number
;   SW   rd, rs, number the word at address rs + number = rd
;   BNE  rd, rs, number when rd and rs differ, go to the instruction at this one's place + number

.section .text program 32 1 0        ; name, address space, bits of a word, units of a word, address

        LI   r1, 0x1000               ; address in the table
        LI   r2, 0x1040               ; its end; the sums begin there
        LI   r3, 0                    ; sum
loop:   LW   r4, r1, 0
        ADD  r3, r4
        SW   r3, r1, 0x40
        ADDI r1, 4
        BNE  r1, r2, -4               ; to loop
        HALT

.section .data data 32 4 0x1000

        .word 1 2 3 5 8 13 21 34
        .word 0x10000 0x7fffffff 0x80000000 0xffffffff
        .word 0x00c0ffee 0x12345678 0x89abcdef 1000000000
