/* The functions with which C or C++ code accesses the memories of a simulation in its process. Link with
 * libmarlune_direct.so and libmarlune_fli_memory.so. SystemVerilog imports the same functions in marlune_dpi.sv. An
 * error ends the simulation with a message. */
#ifndef MARLUNE_DPI_H
#define MARLUNE_DPI_H

#include <stdint.h> // NOLINT(modernize-deprecated-headers): a C header

#ifdef __cplusplus
extern "C" {
#endif
#pragma GCC visibility push(default)

/* 32 bits of a four-state vector, as svdpi.h defines them: two uint32_t. aval has the value; a bit of bval is 1 where
 * the bit is X or Z. */
struct t_vpi_vecval;

/* Loads a program image into a memory: those sections of the address space (null: the one without a name) that fall
 * into LAU addresses `lowAddress` to `highAddress`. Every `stride`-th LAU from `phase` on goes into the cells from
 * `cellBase` / `stride` on. The memory's name is normalised; its last "RAM", the character before it and all that
 * follows are dropped. A file is read once and kept until restart or quit. */
void marlune_dpi_memory_init(char const* name, char const* fileName, char const* addressSpace, unsigned int cellBase,
                             unsigned int lowAddress, unsigned int highAddress, unsigned int phase,
                             unsigned int stride);

/* Stores the vector's low bits, as many as the memory's LAU is wide (the vector must have them), into the cell at the
 * address; X and Z become 0. The name must be normalised: that of the instance, with "_" in place of each of
 * - = / * + % . : , blank ( ) [ ] { } > < @ # & \ */
void marlune_dpi_memory_write(char const* name, unsigned int address, struct t_vpi_vecval const* data);

/* Reads the cell at the address into the vector's low bits, as many as the memory's LAU is wide; the bits above keep
 * their values. The name must be normalised. */
void marlune_dpi_memory_read(char const* name, unsigned int address, struct t_vpi_vecval* data);

/* Creates a memory in a program without a simulator; in a simulation the SystemVerilog module does. The path of the
 * instance is the part of `scope` before its last '.'. `parameters` is "mode width cells", or "" to derive them from
 * the next three arguments. `ports` has the names of all ports but CLK, each followed by a blank. `widths` has their
 * widths in bits, the last one first, and then 0. Returns a handle that is valid until the end of the program. */
void* marlune_sv_open(const char* scope, const char* parameters, unsigned int mode, unsigned int dataBits,
                      unsigned int addressBits, const char* ports, const uint32_t* widths);

#pragma GCC visibility pop
#ifdef __cplusplus
} // extern "C"
#endif

#endif
