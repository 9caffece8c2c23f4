// The contents of a section as numbers, for loading memories.
#include <algorithm>

#include "objectfile/bitdigits.h"
#include "objectfile/linestore.h"
#include "objectfile/sectiondata.h"

namespace ObjectFile {

namespace {

constexpr unsigned LIMB_BITS = 64;

/// Splits limbs into bytes of BITS bits, which divide 64, from bit `position` on, a multiple of BITS.
template <unsigned BITS>
void SplitLimbs(CBitReader& source, std::uint64_t position, int count, bool reversed, std::uint64_t* cells) {
    constexpr unsigned PER_LIMB = LIMB_BITS / BITS;
    constexpr std::uint64_t MASK = ~std::uint64_t{0} >> (LIMB_BITS - BITS);
    const auto byteOf = [](std::uint64_t limb, unsigned i) { return limb >> (LIMB_BITS - BITS * (i + 1)) & MASK; };
    const auto reversedByteOf = [](std::uint64_t limb, unsigned i) { return limb >> (BITS * i) & MASK; };
    const auto split = [&](auto get, std::uint64_t limb, unsigned first, unsigned last) {
        for (unsigned i = first; i < last; ++i) {
            *cells++ = get(limb, i);
        }
    };
    auto first = static_cast<unsigned>(position % LIMB_BITS / BITS);
    for (std::uint64_t index = position / LIMB_BITS; count > 0; ++index, first = 0) {
        const unsigned last = std::min(PER_LIMB, first + static_cast<unsigned>(count));
        count -= static_cast<int>(last - first);
        const std::uint64_t limb = source.Limb(index);
        if (reversed) {
            split(reversedByteOf, ReverseBits(limb), first, last);
        } else {
            split(byteOf, limb, first, last);
        }
    }
}

using CSplit = void (*)(CBitReader&, std::uint64_t, int, bool, std::uint64_t*);

/// The split for a byte bit-size, or none if bytes of that size straddle limbs.
CSplit SplitFor(int byteBitSize) {
    switch (byteBitSize) {
    case 1:
        return SplitLimbs<1>;
    case 2:
        return SplitLimbs<2>;
    case 4:
        return SplitLimbs<4>;
    case 8:
        return SplitLimbs<8>;
    case 16:
        return SplitLimbs<16>;
    case 32:
        return SplitLimbs<32>;
    case 64:
        return SplitLimbs<64>;
    default:
        return nullptr;
    }
}

} // namespace

bool CSectionData::GetByteBits(int address, std::uint64_t* limbs) const {
    if (address < 0 || PackedEnd(address) <= address) {
        return false;
    }
    const std::uint64_t begin = BitPosition(address);
    CBitReader bits(m_Lines->Bits());
    auto rest = static_cast<unsigned>(m_ByteBitSize);
    for (; rest > 0; ++limbs) {
        const unsigned piece = std::min(rest, LIMB_BITS);
        rest -= piece;
        *limbs = bits.Get(begin + rest, piece);
    }
    return true;
}

int CSectionData::CopyBytes(int first, int stride, int count, bool reversed, std::uint64_t* cells) const {
    if (first < 0 || stride < 1 || count < 1 || m_ByteBitSize > static_cast<int>(LIMB_BITS)) {
        return 0;
    }
    const std::int64_t packed = PackedEnd(first) - first;
    const auto copied = static_cast<int>(std::min<std::int64_t>(count, (packed + stride - 1) / stride));
    if (copied < 1) {
        return 0;
    }
    CBitReader bits(m_Lines->Bits());
    const auto size = static_cast<unsigned>(m_ByteBitSize);
    const bool isContiguous = m_WordBitSize == m_BytesPerWord * m_ByteBitSize;
    const CSplit splitLimbs = SplitFor(m_ByteBitSize);
    if (stride == 1 && isContiguous && splitLimbs != nullptr) {
        splitLimbs(bits, static_cast<std::uint64_t>(first) * size, copied, reversed, cells);
        return copied;
    }
    for (int i = 0; i < copied; ++i) {
        const std::uint64_t byte = bits.Get(BitPosition(first + static_cast<std::int64_t>(i) * stride), size);
        cells[i] = reversed ? ReverseBits(byte) >> (LIMB_BITS - size) : byte;
    }
    return copied;
}

bool CSectionData::IsUntouchedZero(int first, int count) const {
    if (first < 0 || count < 1 || PackedEnd(first) < static_cast<std::int64_t>(first) + count) {
        return false;
    }
    const std::uint64_t begin = m_Lines->BitPosition(first / m_BytesPerWord);
    const std::uint64_t end = m_Lines->BitPosition((first + (count - 1)) / m_BytesPerWord + 1);
    return m_Lines->Bits().IsUntouched(begin, end - begin);
}

std::int64_t CSectionData::PackedEnd(int address) const {
    if (address >= m_ByteCount || m_ByteBitSize < 1) {
        return address;
    }
    const int last = Count() - 1;
    std::int64_t end = static_cast<std::int64_t>(Count()) * m_BytesPerWord;
    if (const int irregular = m_Lines->NextIrregular(address / m_BytesPerWord); irregular >= 0) {
        end = static_cast<std::int64_t>(irregular) * m_BytesPerWord;
    } else if (last >= 0) {
        end = static_cast<std::int64_t>(last) * m_BytesPerWord +
              std::min<std::int64_t>(m_Lines->Length(last) / m_ByteBitSize, m_BytesPerWord);
    }
    return std::min<std::int64_t>(end, m_ByteCount);
}

std::uint64_t CSectionData::BitPosition(std::int64_t address) const {
    return m_Lines->BitPosition(static_cast<int>(address / m_BytesPerWord)) +
           static_cast<std::uint64_t>(address % m_BytesPerWord) * static_cast<std::uint64_t>(m_ByteBitSize);
}

} // namespace ObjectFile
