// The values of the simulator's signals as numbers.
#ifndef MARLUNE_FLIMEMORY_SIGNALVALUE_H
#define MARLUNE_FLIMEMORY_SIGNALVALUE_H

#include <cstdint>

#include "marlune_int"
#include "mti.h"

namespace marlune::fli {

/// The signal's current value. The signal is of an enumeration type or a one-dimensional array of one; position 3 ('1'
/// of std_logic) reads as 1 and any other as 0. The first element of an array is the most significant bit; the elements
/// before the last 1024 are ignored. A null signal reads as 0. So does one of another type, which is reported on the
/// standard error stream.
marlune_int<1024, true> GetValue(mtiSignalIdTag* signal);

/// The low 64 bits of GetValue.
std::uint64_t GetLow64(mtiSignalIdTag* signal);

/// Whether GetValue, all 1024 bits of it, equals 1.
bool IsOne(mtiSignalIdTag* signal);

/// Drives the value onto the signal: position 3 for a 1, position 2 for a 0. An array takes its low bits; a single
/// enumeration value is driven to 1 only if the whole value equals 1. `delay` and `mode` are passed to the simulator.
/// Without a driver the signal is set directly, with a line on the standard error stream. A null signal is ignored. So
/// is one of another type, which is reported there.
void SetValue(mtiSignalIdTag* signal, const marlune_int<1024, true>& value, mtiDriverIdTag* driver, int delay,
              mtiDriverModeEnum_ mode);

/// The same for a value of at most 64 bits.
void SetValue(mtiSignalIdTag* signal, std::uint64_t value, mtiDriverIdTag* driver, int delay, mtiDriverModeEnum_ mode);

} // namespace marlune::fli

#endif
