// The library's entry points: what a simulator calls.
#ifndef MARLUNE_FLIMEMORY_FLIMEMORY_H
#define MARLUNE_FLIMEMORY_FLIMEMORY_H

#include "mti.h"
#include "svdpi.h"

// The entry points of the library, called by the simulator on its one thread. An error in any of them leaves its text
// in the simulator's Tcl variable MTI_ERROR_MSG and stops the simulation; nothing is thrown to the caller.

extern "C" {

/// Initialisation function of the foreign architecture: makes the instance a memory. The parameters are
/// "<read_is_synchronous> <byte_bit_width> <size_in_bytes>", width in bits and size in cells; the generics are not
/// used.
[[gnu::visibility("default")]] void marlune_fli_memory_init(mtiRegionIdT region, char* parameters,
                                                            mtiInterfaceListT* generics, mtiInterfaceListT* ports);

/// The process of a memory instance; param is its CProcessInfo.
[[gnu::visibility("default")]] void marlune_fli_memory_process(void* param);

/// Quit and restart callback of a memory instance: releases it and all loaded program images. param is its
/// CProcessInfo, which is destroyed.
[[gnu::visibility("default")]] void CleanCallback(void* param);

/// Loads the program image in the file into a memory: those sections of the address space (null: of the one without a
/// name) that fall into LAU addresses lowAddress to highAddress, every stride-th LAU from phase on, into the cells from
/// cellBase / stride on. The memory's name is normalised, and cut before its last "RAM" and the character before that.
/// A file is read once and kept until restart or quit.
[[gnu::visibility("default")]] void marlune_dpi_memory_init(char const* name, char const* fileName,
                                                            char const* addressSpace, unsigned int cellBase,
                                                            unsigned int lowAddress, unsigned int highAddress,
                                                            unsigned int phase, unsigned int stride);

/// Stores the vector's low bits, as many as the memory's LAU is wide (the vector must have them), into the cell at the
/// address; X and Z are 0. The name must be the normalised one.
[[gnu::visibility("default")]] void marlune_dpi_memory_write(char const* name, unsigned int address,
                                                             t_vpi_vecval const* data);

/// Reads the cell at the address into the vector's low bits, as many as the memory's LAU is wide; the bits above stay
/// as they are. The name must be the normalised one.
[[gnu::visibility("default")]] void marlune_dpi_memory_read(char const* name, unsigned int address, t_vpi_vecval* data);

} // extern "C"

#endif
