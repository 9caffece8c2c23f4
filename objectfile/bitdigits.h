// Conversion between binary digits as text and packed bits, eight characters at a time.
#ifndef MARLUNE_OBJECTFILE_BITDIGITS_H
#define MARLUNE_OBJECTFILE_BITDIGITS_H

#include <array>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace ObjectFile {

/// Eight characters as a number, the first in the low byte whatever the machine's byte order.
inline std::uint64_t LoadEightCharacters(const char* text) {
    const auto byte = [text](unsigned i) {
        return static_cast<std::uint64_t>(static_cast<unsigned char>(text[i])) << (8 * i);
    };
    return byte(0) | byte(1) | byte(2) | byte(3) | byte(4) | byte(5) | byte(6) | byte(7);
}

/// Packs `count` (at most 64) characters '0' or '1' into `bits`, right-aligned, the first the most significant. False
/// when there is any other character.
inline bool PackDigits(const char* text, unsigned count, std::uint64_t& bits) {
    constexpr std::uint64_t ALL_ZEROS = 0x3030303030303030U; // "00000000"
    constexpr std::uint64_t LOW_BITS = 0x0101010101010101U;
    constexpr std::uint64_t GATHER = 0x8040201008040201U; // moves the low bit of byte i to bit 63 - i
    std::uint64_t packed = 0;
    std::uint64_t wrong = 0;
    for (; count >= 8; count -= 8, text += 8) {
        const std::uint64_t digits = LoadEightCharacters(text) ^ ALL_ZEROS;
        wrong |= digits & ~LOW_BITS;
        packed = packed << 8 | (digits * GATHER) >> 56;
    }
    for (; count > 0; --count, ++text) {
        const auto digit = static_cast<unsigned>(static_cast<unsigned char>(*text)) ^ '0';
        wrong |= digit & ~1U;
        packed = packed << 1 | digit;
    }
    bits = packed;
    return wrong == 0;
}

/// True when all characters are '0' or '1'.
inline bool IsBinary(std::string_view text) {
    bool binary = true;
    std::uint64_t bits = 0;
    for (; binary && !text.empty(); text.remove_prefix(text.size() < 64 ? text.size() : 64)) {
        binary = PackDigits(text.data(), text.size() < 64 ? static_cast<unsigned>(text.size()) : 64, bits);
    }
    return binary;
}

using CByteDigits = std::array<char, 8>;

constexpr std::array<CByteDigits, 256> MakeByteDigits() {
    std::array<CByteDigits, 256> table{};
    for (unsigned value = 0; value < 256; ++value) {
        for (unsigned i = 0; i < 8; ++i) {
            table[value][i] = (value >> (7 - i) & 1) != 0 ? '1' : '0';
        }
    }
    return table;
}

/// The eight digits of each byte value.
inline constexpr std::array<CByteDigits, 256> BYTE_DIGITS = MakeByteDigits();

/// Writes the low `count` (at most 64) bits as characters, the most significant first.
inline void UnpackDigits(std::uint64_t bits, unsigned count, char* text) {
    for (; count >= 8; count -= 8, text += 8) {
        std::memcpy(text, BYTE_DIGITS[bits >> (count - 8) & 0xFF].data(), 8);
    }
    for (; count > 0; --count, ++text) {
        *text = (bits >> (count - 1) & 1) != 0 ? '1' : '0';
    }
}

/// The 64 bits end for end.
inline std::uint64_t ReverseBits(std::uint64_t bits) {
    const auto swap = [](std::uint64_t value, unsigned shift, std::uint64_t mask) {
        return (value >> shift & mask) | (value & mask) << shift;
    };
    bits = swap(bits, 1, 0x5555555555555555U);
    bits = swap(bits, 2, 0x3333333333333333U);
    bits = swap(bits, 4, 0x0F0F0F0F0F0F0F0FU);
    return __builtin_bswap64(bits);
}

} // namespace ObjectFile

#endif
