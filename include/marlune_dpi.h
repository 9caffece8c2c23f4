/* The functions by which a program in C or C++ reaches the memories of a simulation in its process. Link with
 * libmarlune_direct.so and libmarlune_fli_memory.so. SystemVerilog has the same functions from marlune_dpi.sv. An error
 * ends the simulation with a message. */
#ifndef MARLUNE_DPI_H
#define MARLUNE_DPI_H

#include <stdint.h> // NOLINT(modernize-deprecated-headers): a C header

#ifdef __cplusplus
extern "C" {
#endif
#pragma GCC visibility push(default)

/* 32 bits of a four-state vector, as svdpi.h defines them: two uint32_t, aval with the value and bval, whose bits are 1
 * where a bit is X or Z. */
struct t_vpi_vecval;

/* Loads the program image in the file into a memory: those sections of the address space (null: of the one without a
 * name) that fall into LAU addresses lowAddress to highAddress, every stride-th LAU from phase on, into the cells from
 * cellBase / stride on. The memory's name is normalised, and cut before its last "RAM" and the character before that. A
 * file is read once and kept until restart or quit. */
void marlune_dpi_memory_init(char const* name, char const* fileName, char const* addressSpace, unsigned int cellBase,
                             unsigned int lowAddress, unsigned int highAddress, unsigned int phase,
                             unsigned int stride);

/* Stores the vector's low bits, as many as the memory's LAU is wide (the vector must have them), into the cell at the
 * address; X and Z are 0. The name must be the normalised one: that of the instance, with each of
 * - = / * + % . : , blank ( ) [ ] { } > < @ # & \ turned into "_". */
void marlune_dpi_memory_write(char const* name, unsigned int address, struct t_vpi_vecval const* data);

/* Reads the cell at the address into the vector's low bits, as many as the memory's LAU is wide; the bits above stay as
 * they are. The name must be the normalised one. */
void marlune_dpi_memory_read(char const* name, unsigned int address, struct t_vpi_vecval* data);

/* Makes a memory, for a program without a simulator; otherwise a SystemVerilog module does. The path of the instance
 * is the scope without what follows its last '.'. parameters are "mode width cells", or "" to take them from the next
 * three arguments. ports are the names of the ports but CLK, each followed by a blank. widths are their widths in bits,
 * the last one first, and then 0. Returns a handle that is valid to the end of the program. */
void* marlune_sv_open(const char* scope, const char* parameters, unsigned int mode, unsigned int dataBits,
                      unsigned int addressBits, const char* ports, const uint32_t* widths);

#pragma GCC visibility pop
#ifdef __cplusplus
} // extern "C"
#endif

#endif
