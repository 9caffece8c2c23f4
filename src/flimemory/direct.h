/* Entry points of the library for simulators that hand over port values as vectors of bits. A simulator side of this
 * kind elaborates an instance as ever, by marlune_fli_memory_init, and then calls marlune_direct_wake in place of the
 * instance's process. */
#ifndef MARLUNE_FLIMEMORY_DIRECT_H
#define MARLUNE_FLIMEMORY_DIRECT_H

#include <stdint.h> // NOLINT(modernize-deprecated-headers): a C header

#ifdef __cplusplus
extern "C" {
#endif

/// Where a port's value is. The signal handles in the list of ports that such an instance is elaborated with are
/// addresses of these.
struct marlune_direct_signal {
    uint32_t offset;    ///< of its least significant bit, in the vector of the inputs or of the outputs
    uint32_t width;     ///< in bits, at least 1
    uint32_t is_scalar; ///< 1 for a single bit that is no array: such an output is 1 for the value 1 only
    uint32_t is_driven; ///< set to 1 when the library gives an output its value
};

enum marlune_direct_result {
    MARLUNE_DIRECT_NO_EDGE = 0, ///< this is not the time of an edge
    MARLUNE_DIRECT_SERVED = 1,  ///< the ports were served
    MARLUNE_DIRECT_CHANGED = 2  ///< the ports were served, and an output got another value
};

/// What the process of an instance does when it wakes, with the given values in place of the simulator's. process is
/// the argument that the instance created its process with. now is the time, or any other number that differs from one
/// time to the next and is 0 at time 0. The least significant bit of a vector is bit 0 of its first word; each
/// vector has a word more than its bits need. Returns a marlune_direct_result.
[[gnu::visibility("default")]] int marlune_direct_wake(void* process, uint32_t now, int clock_is_one,
                                                       const uint32_t* inputs, uint32_t* outputs);

#ifdef __cplusplus
}
#endif

#endif
