"""Loads an image into a memory of 1024 bytes and prints the first one, without a simulator. In a simulator's process one
would use the memories of its design instead.

usage: LD_LIBRARY_PATH=$LIB python3 peek.py IMAGE SPACE
"""
import ctypes
import sys

image, space = map(str.encode, sys.argv[1:])
marlune = ctypes.CDLL("libmarlune_direct.so", ctypes.RTLD_GLOBAL)
marlune.marlune_sv_open(b"ram.", b"0 8 1024", 0, 0, 0, b"", (ctypes.c_uint32 * 1)())
marlune.marlune_dpi_memory_init(b"ram", image, space, 0, 0, 0xFFFFFFFF, 0, 1)
word = (ctypes.c_uint32 * 2)()  # value, and the bits that are X or Z
marlune.marlune_dpi_memory_read(b"ram", 0, word)
print(word[0])
