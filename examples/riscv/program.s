# Works on numbers and text with all instructions of RV32I but ebreak: loads and stores of each size at each offset in a
# word, a sort and a search that call themselves, CRC-32 by a table that the program makes itself, and arithmetic.
# processor_tb.sv computes the same in its own way and compares. The environment call at the end stops the processor.
#
# The test bench knows where the parameters and the results lie: they keep their places at the beginning of the data.

        .option norelax
        .equ    COUNT, 32               # words to sort
        .equ    ROUNDS, 32              # of arithmetic

# ---- What the test bench reads and writes ----

        .data
seed:           .word   0x2545f491      # of the random numbers, not 0
board:          .word   6               # rows and columns of a chess board, at most 16
text:           .asciz  "A cell holds what was last written to it: no more, no less."

        .org    0x80
text_length:    .word   0
text_crc:       .word   0
table_crc:      .word   0
signed_bytes:   .word   0
bytes:          .word   0
signed_halves:  .word   0
halves:         .word   0
arithmetic:     .word   0
placements:     .word   0               # ways to place as many queens as the board has rows
        .org    0xc1                    # at an odd address
shouted:        .zero   63              # the text from its end, in capitals
        .org    0x100
table:          .zero   4 * COUNT       # random numbers, sorted
swapped:        .zero   4 * COUNT       # the same, the halves of each exchanged

        .bss
crc_table:      .zero   4 * 16

# ---- The program ----

        .section .text.start, "ax"
        .globl  _start
_start: la      sp, stack_top
        call    make_crc_table

        la      a0, text
        call    length
        sw      a0, text_length, t0
        mv      a1, a0
        la      a0, text
        call    crc32
        sw      a0, text_crc, t0
        la      a0, text
        la      a1, shouted
        call    shout_backwards

        la      a0, table
        li      a1, COUNT
        lw      a2, seed
        call    fill
        la      a0, table
        addi    a1, a0, 4 * (COUNT - 1)
        call    sort
        la      a0, table
        li      a1, 4 * COUNT
        call    crc32
        sw      a0, table_crc, t0
        la      a0, table
        la      a1, swapped
        call    swap_halves
        call    fold_table

        lw      a0, seed
        li      a1, ROUNDS
        call    calculate
        sw      a0, arithmetic, t0

        lw      t0, board
        li      s0, 1
        sll     s0, s0, t0
        addi    s0, s0, -1              # a bit for each column
        li      a0, 0
        li      a1, 0
        li      a2, 0
        call    queens
        sw      a0, placements, t0
        fence
        ecall

# ---- CRC-32, of the reflected polynomial 0xEDB88320, four bits at a time ----

        .text
make_crc_table:
        la      a0, crc_table
        li      a1, 0                   # the four bits
        li      a2, 0xEDB88320
        li      a3, 16
1:      mv      t0, a1
        li      t1, 4
2:      andi    t2, t0, 1
        srli    t0, t0, 1
        beqz    t2, 3f
        xor     t0, t0, a2
3:      addi    t1, t1, -1
        bnez    t1, 2b
        sw      t0, 0(a0)
        addi    a0, a0, 4
        addi    a1, a1, 1
        bne     a1, a3, 1b
        ret

        .macro  take_four_bits
        andi    t1, t0, 15
        slli    t1, t1, 2
        add     t1, t1, a2
        lw      t1, 0(t1)
        srli    t0, t0, 4
        xor     t0, t0, t1
        .endm

# a0: the bytes, a1: how many; returns the CRC in a0
crc32:  la      a2, crc_table
        add     a1, a1, a0              # their end
        li      t0, -1
1:      bgeu    a0, a1, 2f
        lbu     t1, 0(a0)
        xor     t0, t0, t1
        take_four_bits
        take_four_bits
        addi    a0, a0, 1
        j       1b
2:      not     a0, t0
        ret

# ---- Text ----

# a0: a text that ends with a zero; returns its length in a0
length: mv      t0, a0
1:      lbu     t1, 0(t0)
        beqz    t1, 2f
        addi    t0, t0, 1
        j       1b
2:      sub     a0, t0, a0
        ret

# a0: a text, a1: where its characters go, the last one first and small letters as capitals
shout_backwards:
        addi    sp, sp, -16
        sw      ra, 12(sp)
        sw      a0, 8(sp)
        call    length
        lw      a2, 8(sp)
        add     a0, a0, a2              # the zero at the end
1:      bleu    a0, a2, 3f
        lb      t0, -1(a0)
        addi    t1, t0, -'a'
        sltiu   t1, t1, 26
        beqz    t1, 2f
        addi    t0, t0, 'A' - 'a'
2:      sb      t0, 0(a1)
        addi    a0, a0, -1
        addi    a1, a1, 1
        j       1b
3:      sb      zero, 0(a1)
        lw      ra, 12(sp)
        addi    sp, sp, 16
        ret

# ---- The table ----

# a0: the words, a1: how many, a2: the seed; fills them with a xorshift generator's numbers
fill:   slli    t0, a2, 13
        xor     a2, a2, t0
        srli    t0, a2, 17
        xor     a2, a2, t0
        slli    t0, a2, 5
        xor     a2, a2, t0
        sw      a2, 0(a0)
        addi    a0, a0, 4
        addi    a1, a1, -1
        bgtz    a1, fill
        ret

# a0: the first word, a1: the last one; sorts them as numbers with a sign (quicksort)
sort:   bgeu    a0, a1, 4f
        lw      t0, 0(a1)               # the pivot
        mv      t1, a0                  # where the next lesser word goes
        mv      t2, a0
1:      beq     t2, a1, 3f
        lw      t3, 0(t2)
        bge     t3, t0, 2f
        lw      t4, 0(t1)
        sw      t3, 0(t1)
        sw      t4, 0(t2)
        addi    t1, t1, 4
2:      addi    t2, t2, 4
        j       1b
3:      lw      t4, 0(t1)
        sw      t0, 0(t1)
        sw      t4, 0(a1)
        addi    sp, sp, -16
        sw      ra, 12(sp)
        sw      a1, 8(sp)
        sw      t1, 4(sp)
        addi    a1, t1, -4
        call    sort
        lw      a0, 4(sp)
        lw      a1, 8(sp)
        addi    a0, a0, 4
        call    sort
        lw      ra, 12(sp)
        addi    sp, sp, 16
4:      ret

# a0: COUNT words, a1: where they go with their halves exchanged
swap_halves:
        li      a2, COUNT
1:      lhu     t0, 0(a0)
        lh      t1, 2(a0)
        sh      t1, 0(a1)
        sh      t0, 2(a1)
        addi    a0, a0, 4
        addi    a1, a1, 4
        addi    a2, a2, -1
        bnez    a2, 1b
        ret

# Reads the table with one kind of load. Each value is added to the sum of those before it, rotated left by one bit.
        .macro  fold load, step, sum
        la      a0, table
        addi    a1, a0, 4 * COUNT
        li      a2, 0
1:      \load   t0, 0(a0)
        srli    t1, a2, 31
        slli    a2, a2, 1
        or      a2, a2, t1
        add     a2, a2, t0
        addi    a0, a0, \step
        bltu    a0, a1, 1b
        sw      a2, \sum, t0
        .endm

fold_table:
        fold    lb, 1, signed_bytes
        fold    lbu, 1, bytes
        fold    lh, 2, signed_halves
        fold    lhu, 2, halves
        ret

# ---- Arithmetic ----

# a0: x, a1: the rounds; a round takes x and y to the next x and this x. Returns the last x in a0.
calculate:
        lui     a2, 0x9e377             # y
        li      a3, 0
1:      add     t0, a0, a2
        slt     t1, a0, a2
        sltu    t2, a0, a2
        slli    t1, t1, 7
        slli    t2, t2, 19
        or      t1, t1, t2
        xor     t0, t0, t1
        sra     t1, a0, a2              # by the low five bits
        srl     t2, a2, a0
        sub     t1, t1, t2
        xor     t0, t0, t1
        sll     t1, a2, a0
        and     t1, t1, a0
        add     t0, t0, t1
        slti    t1, a0, -100
        sltiu   t2, a2, -2000
        srai    t3, a2, 5
        xori    t3, t3, 0x555
        ori     t3, t3, 0x123
        andi    t3, t3, -1000
        sub     t3, t3, t1
        add     t3, t3, t2
        xor     t0, t0, t3
        mv      a2, a0
        mv      a0, t0
        addi    a3, a3, 1
        blt     a3, a1, 1b
        ret

# ---- Queens on a chess board ----

# a0, a1, a2: the columns taken in the next row by queens above it, straight, from the right and from the left
# s0: all columns; returns in a0 in how many ways the rows can be filled
queens: bne     a0, s0, 1f
        li      a0, 1
        ret
1:      addi    sp, sp, -32
        sw      ra, 28(sp)
        sw      s1, 24(sp)
        sw      s2, 20(sp)
        sw      s3, 16(sp)
        sw      s4, 12(sp)
        sw      s5, 8(sp)
        mv      s1, a0
        mv      s2, a1
        mv      s3, a2
        li      s5, 0                   # the ways
        or      t0, a0, a1
        or      t0, t0, a2
        not     t0, t0
        and     s4, t0, s0              # the columns that are left
2:      beqz    s4, 3f
        neg     t0, s4
        and     t0, t0, s4              # one of them
        xor     s4, s4, t0
        or      a0, s1, t0
        or      a1, s2, t0
        slli    a1, a1, 1
        or      a2, s3, t0
        srli    a2, a2, 1
        call    queens
        add     s5, s5, a0
        j       2b
3:      mv      a0, s5
        lw      ra, 28(sp)
        lw      s1, 24(sp)
        lw      s2, 20(sp)
        lw      s3, 16(sp)
        lw      s4, 12(sp)
        lw      s5, 8(sp)
        addi    sp, sp, 32
        ret
