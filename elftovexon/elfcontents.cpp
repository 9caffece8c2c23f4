// Conversion of section contents.
#include "elftovexon/elfcontents.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <vector>

#include "objectfile/bitdigits.h"

namespace marlune::elf {

namespace {

constexpr std::size_t LIMB_BYTES = 8;

/// The digits of up to eight file bytes, the first digit in the most significant bit; the rest is 0. Digits follow one
/// another from file byte to file byte: from bit 7 down for BO_BIG, from bit 0 up for any other order.
std::uint64_t DigitsOf(std::string_view fileBytes, ObjectFile::eByteOrder order) {
    std::uint64_t number = 0; // little-endian, as the host's numbers
    if (fileBytes.size() >= LIMB_BYTES) {
        std::memcpy(&number, fileBytes.data(), LIMB_BYTES);
    } else if (!fileBytes.empty()) {
        std::memcpy(&number, fileBytes.data(), fileBytes.size());
    }
    return order == ObjectFile::BO_BIG ? __builtin_bswap64(number) : ObjectFile::ReverseBits(number);
}

/// Fills limbs with digits from the most significant bit of the first on.
class CDigitPacker {
public:
    explicit CDigitPacker(std::uint64_t* limbs) : m_Limb(limbs) {}

    /// The first `count` (1 to 64) digits of `digits`.
    void Put(std::uint64_t digits, unsigned count) {
        digits &= ~std::uint64_t{0} << (64 - count);
        *m_Limb = (m_Used == 0 ? 0 : *m_Limb) | digits >> m_Used;
        if (m_Used + count >= 64) {
            ++m_Limb;
            if (m_Used + count > 64) {
                *m_Limb = digits << (64 - m_Used);
            }
        }
        m_Used = (m_Used + count) % 64;
    }

private:
    std::uint64_t* m_Limb;
    unsigned m_Used = 0; // digits in *m_Limb
};

/// Packs the LAUs of `contents`, each in `step` bytes. Returns their number.
std::int64_t PackContents(std::string_view contents, std::size_t step, unsigned bits, ObjectFile::eByteOrder order,
                          std::uint64_t* limbs) {
    const auto count = static_cast<std::int64_t>((contents.size() + step - 1) / step);
    if (bits == step * 8) { // every digit of the file is used
        for (; contents.size() >= LIMB_BYTES; contents.remove_prefix(LIMB_BYTES)) {
            *limbs++ = DigitsOf(contents, order);
        }
        *limbs = DigitsOf(contents, order);
        return count;
    }
    CDigitPacker packer(limbs);
    // The digits that are in use begin the file bytes in one order and end them in the other.
    const std::size_t unused = order == ObjectFile::BO_BIG ? step * 8 - bits : 0;
    for (; !contents.empty(); contents.remove_prefix(std::min(contents.size(), step))) {
        packer.Put(DigitsOf(contents.substr(0, step), order) << unused, bits);
    }
    return count;
}

} // namespace

int FileBytesPerLau(int bits) {
    for (const int fileBytes : {1, 2, 4, 8}) {
        if (bits <= fileBytes * 8) {
            return fileBytes;
        }
    }
    return 0;
}

void AddContents(ObjectFile::CSectionData& data, std::string_view contents, std::size_t fileBytes,
                 ObjectFile::eByteOrder order) {
    constexpr std::size_t AT_ONCE = std::size_t{1} << 16; // bytes of the file: a whole number of LAUs and of limbs
    const int bits = data.GetByteBitSize();
    std::vector<std::uint64_t> limbs(AT_ONCE / LIMB_BYTES + 1);
    for (; !contents.empty(); contents.remove_prefix(std::min(contents.size(), AT_ONCE))) {
        const std::int64_t count =
            PackContents(contents.substr(0, AT_ONCE), fileBytes, static_cast<unsigned>(bits), order, limbs.data());
        data.AddPacked(limbs.data(), count * bits);
    }
}

} // namespace marlune::elf
