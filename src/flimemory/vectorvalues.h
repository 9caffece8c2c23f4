// The values of ports that are served by direct calls: places in vectors of bits.
#ifndef MARLUNE_FLIMEMORY_VECTORVALUES_H
#define MARLUNE_FLIMEMORY_VECTORVALUES_H

#include <algorithm>
#include <cstdint>

#include "marlune_int"
#include "mti.h"
#include "src/flimemory/direct.h"
#include "src/flimemory/storage.h"

namespace marlune::foreign::fli {

/// Reads and writes port values in two vectors, the inputs' and the outputs'. The least significant bit of a vector is
/// bit 0 of its first word. Each vector has a word more than its bits need. A signal handle is the address of the
/// port's marlune_direct_signal.
class CVectorValues {
public:
    CVectorValues(const std::uint32_t* inputs, std::uint32_t* outputs) : m_Inputs(inputs), m_Outputs(outputs) {}

    std::uint32_t Address(mtiSignalIdTag* signal) const {
        const marlune_direct_signal& place = PlaceOf(signal);
        return Bits(place.offset, std::min(place.width, WORD_BITS));
    }

    bool IsActive(mtiSignalIdTag* signal) const {
        const marlune_direct_signal& place = PlaceOf(signal);
        if (place.width <= WORD_BITS) {
            return Bits(place.offset, place.width) == 1;
        }
        CStorage::CWord value;
        Get(signal, value);
        return value.IsOne();
    }

    void Get(mtiSignalIdTag* signal, std::uint64_t& value) const {
        const marlune_direct_signal& place = PlaceOf(signal);
        value = Bits(place.offset, std::min(place.width, WORD_BITS));
        if (place.width > WORD_BITS) {
            const std::uint32_t high = Bits(place.offset + WORD_BITS, std::min(place.width - WORD_BITS, WORD_BITS));
            value |= std::uint64_t{high} << WORD_BITS;
        }
    }

    void Get(mtiSignalIdTag* signal, CStorage::CWord& value) const {
        const marlune_direct_signal& place = PlaceOf(signal);
        value = CStorage::CWord();
        for (std::uint32_t limb = 0; limb < CStorage::CWord::LIMB_COUNT && limb * WORD_BITS < place.width; ++limb) {
            const std::uint32_t at = limb * WORD_BITS;
            value.SetLimb(limb, Bits(place.offset + at, std::min(place.width - at, WORD_BITS)));
        }
    }

    void Drive(mtiSignalIdTag* signal, mtiDriverIdTag* /*driver*/, std::uint64_t value) {
        marlune_direct_signal& place = PlaceOf(signal);
        if (place.is_scalar != 0) {
            value = value == 1 ? 1 : 0;
        }
        SetBits(place.offset, std::min(place.width, WORD_BITS), static_cast<std::uint32_t>(value));
        for (std::uint32_t at = WORD_BITS; at < place.width; at += WORD_BITS) {
            value = at == WORD_BITS ? value >> WORD_BITS : 0;
            SetBits(place.offset + at, std::min(place.width - at, WORD_BITS), static_cast<std::uint32_t>(value));
        }
        place.is_driven = 1;
    }

    void Drive(mtiSignalIdTag* signal, mtiDriverIdTag* /*driver*/, const CStorage::CWord& value) {
        marlune_direct_signal& place = PlaceOf(signal);
        if (place.is_scalar != 0) {
            SetBits(place.offset, 1, value.IsOne() ? 1 : 0);
        } else {
            const std::uint32_t sign = value.IsNegative() ? ~std::uint32_t{0} : 0;
            for (std::uint32_t at = 0; at < place.width; at += WORD_BITS) {
                const std::uint32_t limb = at / WORD_BITS;
                SetBits(place.offset + at, std::min(place.width - at, WORD_BITS),
                        limb < CStorage::CWord::LIMB_COUNT ? value.Limb(limb) : sign);
            }
        }
        place.is_driven = 1;
    }

    /// Whether an output got another value than it had.
    bool HasChanged() const { return m_Changed != 0; }

private:
    static constexpr std::uint32_t WORD_BITS = 32;

    static marlune_direct_signal& PlaceOf(mtiSignalIdTag* signal) {
        return *reinterpret_cast<marlune_direct_signal*>(signal);
    }

    static std::uint64_t MaskOf(std::uint32_t width) { return (std::uint64_t{1} << width) - 1; }

    /// The bits from the offset on, at most 32.
    std::uint32_t Bits(std::uint32_t offset, std::uint32_t width) const {
        const std::uint32_t* const words = m_Inputs + offset / WORD_BITS;
        const std::uint64_t pair = std::uint64_t{words[1]} << WORD_BITS | words[0];
        return static_cast<std::uint32_t>(pair >> offset % WORD_BITS & MaskOf(width));
    }

    void SetBits(std::uint32_t offset, std::uint32_t width, std::uint32_t bits) {
        std::uint32_t* const words = m_Outputs + offset / WORD_BITS;
        const std::uint64_t pair = std::uint64_t{words[1]} << WORD_BITS | words[0];
        const std::uint64_t difference = ((pair >> offset % WORD_BITS ^ bits) & MaskOf(width)) << offset % WORD_BITS;
        words[0] ^= static_cast<std::uint32_t>(difference);
        words[1] ^= static_cast<std::uint32_t>(difference >> WORD_BITS);
        m_Changed |= difference;
    }

    const std::uint32_t* m_Inputs;
    std::uint32_t* m_Outputs;
    std::uint64_t m_Changed = 0;
};

} // namespace marlune::foreign::fli

#endif
