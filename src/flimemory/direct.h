/* Entry points of the library for our own simulator side.
 *
 * To serve an instance whose port values come as bit vectors, it elaborates the instance with marlune_fli_memory_init,
 * binds it with marlune_direct_bind, and then calls marlune_direct_wake instead of the instance's process. The other
 * functions answer questions about loads and contents. */
#ifndef MARLUNE_FLIMEMORY_DIRECT_H
#define MARLUNE_FLIMEMORY_DIRECT_H

#include <stdint.h> // NOLINT(modernize-deprecated-headers): a C header

#ifdef __cplusplus
extern "C" {
#endif

/// Where a port's value is. When such an instance is elaborated, the signal handles in its list of ports are addresses
/// of these.
struct marlune_direct_signal {
    uint32_t word;      ///< the word with its least significant bit, in the vector of the inputs or of the outputs
    uint32_t shift;     ///< the position of that bit in the word, 0 to 63
    uint32_t width;     ///< in bits, at least 1
    uint32_t is_scalar; ///< 1 for a single bit that is not an array: such an output is 1 only for the value 1
    uint64_t mask;      ///< the low `width` bits of a word, or all of them
    uint32_t is_split;  ///< 1 if the value, or its lowest 64 bits, lie in two words of the vector
    uint32_t is_driven; ///< the library sets it to 1 when it drives an output
};

enum marlune_direct_clock {
    MARLUNE_DIRECT_LOW = 0,
    MARLUNE_DIRECT_HIGH = 1,
    MARLUNE_DIRECT_ROSE = 2 ///< high, after it was low since the last call; another call for this time will follow
};

enum marlune_direct_result {
    MARLUNE_DIRECT_NO_EDGE = 0, ///< this is not the time of an edge
    MARLUNE_DIRECT_SERVED = 1,  ///< the ports were served
    MARLUNE_DIRECT_CHANGED = 2  ///< the ports were served, and an output changed
};

/// Prepares an elaborated instance for direct calls. `process` is the argument with which the instance created its
/// process.
[[gnu::visibility("default")]] void marlune_direct_bind(void* process);

/// Does what the process of an instance does when it wakes, with the given values in place of the simulator's.
/// `process` is that of marlune_direct_bind. `now` is the time, or any other number that differs from one time to the
/// next and is 0 at time 0. `clock` is a marlune_direct_clock. A vector consists of words of 64 bits, the least
/// significant first. Returns a marlune_direct_result.
[[gnu::visibility("default")]] int marlune_direct_wake(void* process, uint32_t now, int clock, const uint64_t* inputs,
                                                       uint64_t* outputs);

/// Commits the writes that the instance's ports have recorded, as its next edge would. `process` is that of
/// marlune_direct_bind; the instance need not be bound.
[[gnu::visibility("default")]] void marlune_direct_commit(void* process);

/// A warning if the last load by marlune_dpi_memory_init stored nothing or only a part of a section, else null. The
/// text is valid until the next load.
[[gnu::visibility("default")]] const char* marlune_direct_load_warning(void);

/// The name of the address space in the image if it has just one that can be loaded, else null. The image is read on
/// first use. The text is valid until the next call.
[[gnu::visibility("default")]] const char* marlune_direct_only_space(const char* file);

/// Calls `visit` for each cell from the first to the last address, in order, except for those of a sparse memory that
/// were never accessed. The name is that of marlune_dpi_memory_read. A cell is passed as 32 words of 32 bits, the least
/// significant first.
[[gnu::visibility("default")]] void
marlune_direct_visit_cells(const char* name, uint32_t first, uint32_t last,
                           void (*visit)(void* context, uint32_t address, const uint32_t* limbs), void* context);

#ifdef __cplusplus
}
#endif

#endif
