// For simulators without DPI, those of the tests and benchmarks among them: a library with DPI functions needs these to
// load. The simulator's own functions take precedence.
#include "svdpi.h"

namespace {

constexpr int BITS = 32; // of a record

} // namespace

extern "C" {

__attribute__((weak)) svLogic svGetBitselLogic(const svLogicVecVal* vector, int bit) {
    const svLogicVecVal& record = vector[bit / BITS];
    const int at = bit % BITS;
    return static_cast<svLogic>(((record.aval >> at) & 1U) + 2 * ((record.bval >> at) & 1U));
}

__attribute__((weak)) void svPutBitselLogic(svLogicVecVal* vector, int bit, svLogic value) {
    svLogicVecVal& record = vector[bit / BITS];
    const int at = bit % BITS;
    record.aval = (record.aval & ~(1U << at)) | ((value & 1U) << at);
    record.bval = (record.bval & ~(1U << at)) | (((value >> 1U) & 1U) << at);
}
}
