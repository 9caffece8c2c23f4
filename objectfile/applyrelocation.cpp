// Writing a value into the bit field that a relocation describes.
#include <climits>
#include <cstdint>
#include <iostream>
#include <stdexcept>

#include "objectfile/objectfile.h"
#include "objectfile/section.h"

namespace ObjectFile {

namespace {

constexpr int MAX_CHECKED_WIDTH = 63;

/// Bits of the field, computed in 32 bits like the positions.
int FieldWidth(const CRelocation& relocation) {
    return static_cast<int>(static_cast<unsigned int>(relocation.m_HighBit) + 1U -
                            static_cast<unsigned int>(relocation.m_LowBit));
}

bool IsChecked(int width) {
    return width >= 0 && width <= MAX_CHECKED_WIDTH;
}

/// Warns that `value` was cut to `cut`. The stream stays in hexadecimal mode, so the address is hexadecimal too.
void Warn(const char* kind, const CRelocation& relocation, long long value, int width, std::uint64_t cut) {
    const CSymbol* const symbol = relocation.m_Symbol;
    if (symbol == nullptr) {
        throw general_error("Relocation has no symbol");
    }
    std::cerr << "Warning: " << kind << " value " << std::dec << value << "(" << std::hex << value << ")"
              << " on address " << relocation.m_Address << " is too big to fit into " << std::dec << width
              << " bits, value was truncated to " << std::hex << cut << ",(symbol name: '" << symbol->GetNameView()
              << "', ";
    const CSection* const section = symbol->HasSection() ? symbol->GetSection() : nullptr;
    if (section == nullptr) {
        std::cerr << "section unknown)\n";
        return;
    }
    const CObjectFile* const owner = section->GetOwner();
    std::cerr << "section name: '" << section->GetName() << "', obj. file name: '"
              << (owner != nullptr ? owner->GetFileName() : std::string()) << "').\n";
}

/// The pattern with only bit width - 1 cleared, less one.
std::uint64_t NegativeMask(unsigned int signBit) {
    return ~(std::uint64_t{1} << signBit) - 1;
}

/// A field has at most 64 bits: a size that a file merely claims must not decide how long texts become.
constexpr unsigned long long MAX_COVERED_BITS = 1U << 20U;

/// The bytes that a relocation covers as one bit string, its first byte first.
std::string CoveredBits(const CSectionData& data, const CRelocation& relocation) {
    const auto count = static_cast<unsigned long long>(data.GetByteCount());
    const auto size = static_cast<unsigned long long>(relocation.m_SizeInBytes);
    if (relocation.m_SizeInBytes < 1) {
        return {}; // in which no bit can be
    }
    if (data.GetByteBitSize() < 1 || size > count || relocation.m_Address > count - size) {
        throw std::out_of_range("Address out of range while reading byte");
    }
    if (size * static_cast<unsigned long long>(data.GetByteBitSize()) > MAX_COVERED_BITS) {
        throw general_error("Relocation covers too many bits");
    }
    std::string bits;
    for (int i = 0; i < static_cast<int>(size); ++i) {
        bits += data.GetByte(static_cast<int>(relocation.m_Address) + i);
    }
    if (bits.size() < (size - 1) * static_cast<unsigned long long>(data.GetByteBitSize())) { // short lines in between
        throw std::out_of_range("Address out of range while reading byte");
    }
    return bits;
}

void RequireBitIndices(const CRelocation& relocation, std::size_t length) {
    const auto isIndex = [length](int bit) { return bit >= 0 && static_cast<std::size_t>(bit) < length; };
    if (!isIndex(relocation.m_LowBit) || !isIndex(relocation.m_HighBit) || relocation.m_HighBit < relocation.m_LowBit) {
        throw std::out_of_range("Relocation bit indices are out of range");
    }
}

} // namespace

long long CSection::CheckUnsignedRelocationSizeAndTrunc(const CRelocation* relocation, long long value) {
    const int width = FieldWidth(*relocation);
    if (!IsChecked(width)) {
        return value;
    }
    const std::uint64_t cut = static_cast<std::uint64_t>(value) & ((std::uint64_t{1} << width) - 1);
    if (cut != static_cast<std::uint64_t>(value)) {
        Warn("Unsigned", *relocation, value, width, cut);
    }
    return static_cast<long long>(cut);
}

// Not a two's complement range test: most small negative values come back as they are without a warning, whatever the
// width.
long long CSection::CheckSignedRelocationSizeAndTrunc(const CRelocation* relocation, long long value) {
    const int width = FieldWidth(*relocation);
    if (!IsChecked(width)) {
        return value;
    }
    const auto bits = static_cast<std::uint64_t>(value);
    const unsigned int signBit = static_cast<unsigned int>(width - 1) % 64;
    std::uint64_t cut = 0;
    if (value >= 0) {
        cut = bits & ((std::uint64_t{1} << signBit) - 1);
    } else {
        const std::uint64_t mask = NegativeMask(signBit);
        cut = mask & bits;
        const bool isBelow = value < static_cast<long long>(mask) && value != LLONG_MIN;
        if (!isBelow && cut != (mask & (0 - bits))) {
            return value;
        }
    }
    if (cut != bits) {
        Warn("Signed", *relocation, value, width, cut);
    }
    return static_cast<long long>(cut);
}

void CSection::SetRelocData(const CRelocation* relocation, long long value) {
    const long long cut = relocation->IsSigned() ? CheckSignedRelocationSizeAndTrunc(relocation, value)
                                                 : CheckUnsignedRelocationSizeAndTrunc(relocation, value);
    static const CSectionData NO_DATA(0, 0);
    std::string bits = CoveredBits(m_Data ? *m_Data : NO_DATA, *relocation);
    const bool isLittle = GetByteOrder() == BO_LITTLE;
    if (isLittle) {
        bits = ReverseEndianess(bits);
    }
    RequireBitIndices(*relocation, bits.size());
    const int width = relocation->m_HighBit - relocation->m_LowBit + 1;
    const std::string field = relocation->IsSigned() ? ConvSignToBin(cut, width)
                                                     : ConvUnsignToBin(static_cast<unsigned long long>(cut), width);
    bits.replace(static_cast<std::size_t>(relocation->m_LowBit), field.size(), field);
    if (isLittle) {
        bits = ReverseEndianess(bits);
    }
    const auto byteBitSize = static_cast<std::size_t>(m_Data->GetByteBitSize());
    for (int i = 0; i < relocation->m_SizeInBytes; ++i) {
        m_Data->SetByte(static_cast<int>(relocation->m_Address) + i,
                        bits.substr(static_cast<std::size_t>(i) * byteBitSize, byteBitSize));
    }
}

} // namespace ObjectFile
