; An image of 8 bytes, and one of two words at a high address.

.section .data data 32 4 0x1000
        .word 0x11223344 0x55667788
.section .high high 32 1 0x80000004
        .word 0x80000001 2
