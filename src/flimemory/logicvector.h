// Conversion between the logic vectors of the test bench interface and numbers.
#ifndef MARLUNE_FLIMEMORY_LOGICVECTOR_H
#define MARLUNE_FLIMEMORY_LOGICVECTOR_H

#include <cstdint>

#include "marlune_int"
#include "svdpi.h"

namespace marlune::dpi {

/// Sets `target` to the low `width` bits of the vector. Bit i of the vector is bit i of the value, Z and X read as 0,
/// and bits from 1024 on are lost. A width below 1 gives 0.
void SVLV2CI(marlune_int<1024, true>& target, const t_vpi_vecval* vector, int width);

/// Writes the value's low `width` bits to the vector as 0 and 1. The vector's other bits keep their values.
void CI2SVLV(t_vpi_vecval* vector, const marlune_int<1024, true>& value, int width);

/// The same for `count` (at most 64) bits of the vector from bit `first` on.
std::uint64_t GetBits(const t_vpi_vecval* vector, int first, int count);
void PutBits(t_vpi_vecval* vector, int first, int count, std::uint64_t bits);

} // namespace marlune::dpi

#endif
