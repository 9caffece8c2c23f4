// Conversion between binary digits as text and packed bits, eight characters at a time.
#ifndef MARLUNE_OBJECTFILE_BITDIGITS_H
#define MARLUNE_OBJECTFILE_BITDIGITS_H

#include <cstdint>
#include <string_view>

#include "byte_group"

namespace ObjectFile {

/// The characters "00000000" as LoadGroup reads them.
constexpr std::uint64_t ZERO_DIGITS = '0' * marlune::EACH_BYTE;

/// Packs `count` (at most 64) characters '0' or '1' into `bits`, right-aligned, the first the most significant. False
/// if there is any other character.
inline bool PackDigits(const char* text, unsigned count, std::uint64_t& bits) {
    std::uint64_t packed = 0;
    std::uint64_t wrong = 0;
    for (; count >= marlune::GROUP_BYTES; count -= marlune::GROUP_BYTES, text += marlune::GROUP_BYTES) {
        const std::uint64_t digits = marlune::LoadGroup(text) ^ ZERO_DIGITS;
        wrong |= digits & ~marlune::EACH_BYTE;
        packed = packed << 8 | marlune::GatherBits(digits);
    }
    for (; count > 0; --count, ++text) {
        const auto digit = static_cast<unsigned>(static_cast<unsigned char>(*text)) ^ '0';
        wrong |= digit & ~1U;
        packed = packed << 1 | digit;
    }
    bits = packed;
    return wrong == 0;
}

/// True if all characters are '0' or '1'.
inline bool IsBinary(std::string_view text) {
    bool binary = true;
    std::uint64_t bits = 0;
    for (; binary && !text.empty(); text.remove_prefix(text.size() < 64 ? text.size() : 64)) {
        binary = PackDigits(text.data(), text.size() < 64 ? static_cast<unsigned>(text.size()) : 64, bits);
    }
    return binary;
}

/// Writes the low `count` (at most 64) bits as characters, the most significant first.
inline void UnpackDigits(std::uint64_t bits, unsigned count, char* text) {
    for (; count >= marlune::GROUP_BYTES; count -= marlune::GROUP_BYTES, text += marlune::GROUP_BYTES) {
        const auto byte = static_cast<std::uint32_t>(bits >> (count - marlune::GROUP_BYTES));
        marlune::StoreGroup(text, ZERO_DIGITS | marlune::SpreadBits(byte));
    }
    for (; count > 0; --count, ++text) {
        *text = (bits >> (count - 1) & 1) != 0 ? '1' : '0';
    }
}

/// The 64 bits in reverse order.
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
