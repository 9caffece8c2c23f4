// The library's entry points: what a simulator calls.
#ifndef MARLUNE_FLIMEMORY_FLIMEMORY_H
#define MARLUNE_FLIMEMORY_FLIMEMORY_H

#include "marlune_dpi.h" // the functions of the test bench
#include "mti.h"
#include "svdpi.h"

// The entry points of the library, called by the simulator on its one thread. An error in any of them leaves its text
// in the simulator's Tcl variable MTI_ERROR_MSG and stops the simulation; nothing is thrown to the caller.

extern "C" {

/// Initialisation function of the foreign architecture: makes the instance a memory. `parameters` is
/// "<read_is_synchronous> <byte_bit_width> <size_in_bytes>", the width in bits and the size in cells. `generics` is not
/// used.
[[gnu::visibility("default")]] void marlune_fli_memory_init(mtiRegionIdT region, char* parameters,
                                                            mtiInterfaceListT* generics, mtiInterfaceListT* ports);

/// The process of a memory instance; `param` is its CProcessInfo.
[[gnu::visibility("default")]] void marlune_fli_memory_process(void* param);

/// Quit and restart callback of a memory instance: releases it and all loaded program images. `param` is its
/// CProcessInfo, which is destroyed.
[[gnu::visibility("default")]] void CleanCallback(void* param);

} // extern "C"

#endif
