// Conversion between arrays of nine-valued logic, a byte per element, and numbers.
#ifndef MARLUNE_FLIMEMORY_LOGICELEMENTS_H
#define MARLUNE_FLIMEMORY_LOGICELEMENTS_H

#include <algorithm>
#include <cstdint>

#include "byte_group"
#include "marlune_int"

// An element is a position in 'U', 'X', '0', '1', 'Z', 'W', 'L', 'H', '-'. Only '1' stands for 1; a number is written
// as '0' and '1'. The first element of an array is its most significant bit. Eight elements are converted at a time.
namespace marlune::fli {

constexpr unsigned char POSITION_0 = 2;
constexpr unsigned char POSITION_1 = 3;

/// The eight bits that eight elements stand for.
inline std::uint32_t BitsOfGroup(std::uint64_t group) {
    constexpr std::uint64_t LOW_7_BITS = 0x7F * EACH_BYTE;
    const std::uint64_t difference = group ^ (POSITION_1 * EACH_BYTE);
    const std::uint64_t nonZero = ((difference & LOW_7_BITS) + LOW_7_BITS) | difference; // in bit 7 of each byte
    return GatherBits((~nonZero >> 7U) & EACH_BYTE);
}

/// The elements that stand for the low eight bits.
inline std::uint64_t GroupOfBits(std::uint32_t bits) {
    return POSITION_0 * EACH_BYTE + SpreadBits(bits);
}

/// The number that the last 64 elements stand for; those before them are ignored.
inline std::uint64_t NumberOfElements(const unsigned char* elements, int count) {
    constexpr int BITS = 64;
    if (count > BITS) {
        elements += count - BITS;
        count = BITS;
    }
    std::uint64_t number = 0;
    for (; count >= static_cast<int>(GROUP_BYTES); count -= static_cast<int>(GROUP_BYTES), elements += GROUP_BYTES) {
        number = number << 8U | BitsOfGroup(LoadGroup(elements));
    }
    for (; count > 0; --count, ++elements) {
        number = number << 1U | (*elements == POSITION_1 ? 1U : 0U);
    }
    return number;
}

/// Writes a number's low bits to the elements. Those before the last 64 become '0'.
inline void ElementsOfNumber(std::uint64_t number, unsigned char* elements, int count) {
    int left = count;
    for (; left >= static_cast<int>(GROUP_BYTES); number >>= 8U) {
        left -= static_cast<int>(GROUP_BYTES);
        StoreGroup(elements + left, GroupOfBits(static_cast<std::uint32_t>(number)));
    }
    for (; left > 0; number >>= 1U) {
        elements[--left] = static_cast<unsigned char>(POSITION_0 + (number & 1U));
    }
}

/// The value of the last 1024 elements; those before them are ignored.
inline marlune_int<1024, true> WordOfElements(const unsigned char* elements, int count) {
    using CWord = marlune_int<1024, true>;
    constexpr int LIMB_BITS = CWord::LIMB_BITS;
    CWord word;
    int left = count; // the elements before those that have been converted
    for (unsigned limb = 0; limb < CWord::LIMB_COUNT && left > 0; ++limb) {
        const int taken = std::min(left, LIMB_BITS);
        left -= taken;
        word.SetLimb(limb, static_cast<std::uint32_t>(NumberOfElements(elements + left, taken)));
    }
    return word;
}

/// Writes a value to the elements. Those before the last 1024 repeat its sign.
inline void ElementsOfWord(const marlune_int<1024, true>& word, unsigned char* elements, int count) {
    using CWord = marlune_int<1024, true>;
    constexpr int LIMB_BITS = CWord::LIMB_BITS;
    const std::uint32_t sign = word.IsNegative() ? 0xFFFFFFFF : 0;
    int left = count;
    for (unsigned limb = 0; left > 0; ++limb) {
        const int written = std::min(left, LIMB_BITS);
        left -= written;
        ElementsOfNumber(limb < CWord::LIMB_COUNT ? word.Limb(limb) : sign, elements + left, written);
    }
}

} // namespace marlune::fli

#endif
