// The values of ports that are served by direct calls: places in bit vectors.
#ifndef MARLUNE_FLIMEMORY_VECTORVALUES_H
#define MARLUNE_FLIMEMORY_VECTORVALUES_H

#include <algorithm>
#include <cstdint>

#include "marlune_int"
#include "mti.h"
#include "src/flimemory/direct.h"
#include "src/flimemory/ports.h"
#include "src/flimemory/storage.h"

namespace marlune::foreign::fli {

/// Reads and writes port values in two vectors, the inputs' and the outputs', at the places that BindPorts copied.
class CVectorValues {
public:
    static constexpr bool IS_FREE = true;

    CVectorValues(const std::uint64_t* inputs, std::uint64_t* outputs) : m_Inputs(inputs), m_Outputs(outputs) {}

    std::uint32_t Address(const CPortSignal& signal) const {
        return static_cast<std::uint32_t>(GetNumber(signal.m_Place));
    }

    bool IsActive(const CPortSignal& signal) const {
        return signal.m_Place.width <= WORD_BITS ? GetNumber(signal.m_Place) == 1 : IsOneWord(signal);
    }

    void Get(const CPortSignal& signal, std::uint64_t& value) const { value = GetNumber(signal.m_Place); }

    void Get(const CPortSignal& signal, CStorage::CWord& value) const {
        const marlune_direct_signal& place = signal.m_Place;
        value = CStorage::CWord();
        for (std::uint32_t word = 0; word < WORDS && word * WORD_BITS < place.width; ++word) {
            const std::uint64_t bits = GetWord(place, word);
            value.SetLimb(2 * word, static_cast<std::uint32_t>(bits));
            value.SetLimb(2 * word + 1, static_cast<std::uint32_t>(bits >> CStorage::CWord::LIMB_BITS));
        }
    }

    void Drive(const CPortSignal& signal, mtiDriverIdTag* /*driver*/, std::uint64_t value) {
        const marlune_direct_signal& place = signal.m_Place;
        MarkDriven(signal);
        PutNumber(place, place.is_scalar != 0 && value != 1 ? 0 : value);
        if (place.width > WORD_BITS) {
            ClearHighWords(place);
        }
    }

    void Drive(const CPortSignal& signal, mtiDriverIdTag* /*driver*/, const CStorage::CWord& value) {
        const marlune_direct_signal& place = signal.m_Place;
        MarkDriven(signal);
        if (place.is_scalar != 0) {
            PutNumber(place, value.IsOne() ? 1 : 0);
            return;
        }
        const std::uint64_t sign = value.IsNegative() ? ~std::uint64_t{0} : 0;
        for (std::uint32_t word = 0; word * WORD_BITS < place.width; ++word) {
            PutWord(place, word,
                    word < WORDS
                        ? std::uint64_t{value.Limb(2 * word + 1)} << CStorage::CWord::LIMB_BITS | value.Limb(2 * word)
                        : sign);
        }
    }

    /// Whether an output has changed.
    bool HasChanged() const { return m_Changed != 0; }

private:
    static constexpr std::uint32_t WORD_BITS = 64;
    static constexpr std::uint32_t WORDS = CStorage::CWord::LIMB_COUNT / 2; // of a wide value

    static void MarkDriven(const CPortSignal& signal) {
        reinterpret_cast<marlune_direct_signal*>(signal.m_Handle)->is_driven = 1;
    }

    // Rare, and kept out of the short paths.
    [[gnu::noinline]] bool IsOneWord(const CPortSignal& signal) const {
        CStorage::CWord value;
        Get(signal, value);
        return value.IsOne();
    }
    [[gnu::noinline]] void ClearHighWords(const marlune_direct_signal& place) {
        for (std::uint32_t word = 1; word * WORD_BITS < place.width; ++word) {
            PutWord(place, word, 0);
        }
    }

    /// The low `width` bits of a word, or all of them.
    static std::uint64_t MaskOf(std::uint32_t width) {
        return width >= WORD_BITS ? ~std::uint64_t{0} : (std::uint64_t{1} << width) - 1;
    }

    /// Whether the value's 64 bits from its word `word` on reach into another word of the vector.
    static bool IsSplit(const marlune_direct_signal& place, std::uint32_t word) {
        return place.shift + std::min(place.width - word * WORD_BITS, WORD_BITS) > WORD_BITS;
    }

    /// A value, or its lowest 64 bits.
    std::uint64_t GetNumber(const marlune_direct_signal& place) const {
        const std::uint64_t* const from = m_Inputs + place.word;
        std::uint64_t bits = from[0] >> place.shift;
        if (place.is_split != 0) {
            bits |= from[1] << (WORD_BITS - place.shift);
        }
        return bits & place.mask;
    }

    void PutNumber(const marlune_direct_signal& place, std::uint64_t bits) {
        std::uint64_t* const to = m_Outputs + place.word;
        Put(to[0], place.mask << place.shift, bits << place.shift);
        if (place.is_split != 0) {
            Put(to[1], place.mask >> (WORD_BITS - place.shift), bits >> (WORD_BITS - place.shift));
        }
    }

    /// 64 bits of a value, or its last ones.
    std::uint64_t GetWord(const marlune_direct_signal& place, std::uint32_t word) const {
        const std::uint64_t* const from = m_Inputs + place.word + word;
        std::uint64_t bits = from[0] >> place.shift;
        if (IsSplit(place, word)) {
            bits |= from[1] << (WORD_BITS - place.shift);
        }
        return bits & MaskOf(place.width - word * WORD_BITS);
    }

    void PutWord(const marlune_direct_signal& place, std::uint32_t word, std::uint64_t bits) {
        std::uint64_t* const to = m_Outputs + place.word + word;
        const std::uint64_t mask = MaskOf(place.width - word * WORD_BITS);
        Put(to[0], mask << place.shift, bits << place.shift);
        if (IsSplit(place, word)) {
            Put(to[1], mask >> (WORD_BITS - place.shift), bits >> (WORD_BITS - place.shift));
        }
    }

    void Put(std::uint64_t& target, std::uint64_t mask, std::uint64_t bits) {
        const std::uint64_t difference = (target ^ bits) & mask;
        target ^= difference;
        m_Changed |= difference;
    }

    const std::uint64_t* m_Inputs;
    std::uint64_t* m_Outputs;
    std::uint64_t m_Changed = 0;
};

} // namespace marlune::foreign::fli

#endif
