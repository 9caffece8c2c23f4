// Converts between cells and the vectors of DPI.
#include "src/flimemory/logicvector.h"

#include <algorithm>

namespace marlune::dpi {

namespace {

using CWord = marlune_int<1024, true>;

constexpr int LIMB_BITS = CWord::LIMB_BITS;
constexpr int LIMB_COUNT = CWord::LIMB_COUNT;

// Most of the cost of an access is the calls for single bits. So bits are collected in a register, and the loop is
// unrolled eight times.
constexpr int GROUP = 8;

std::uint64_t GetBit(const t_vpi_vecval* vector, int index) {
    return svGetBitselLogic(vector, index) == sv_1 ? 1 : 0;
}

void PutBit(t_vpi_vecval* vector, int index, std::uint64_t bit) {
    svPutBitselLogic(vector, index, (bit & 1U) != 0 ? sv_1 : sv_0);
}

} // namespace

std::uint64_t GetBits(const t_vpi_vecval* vector, int first, int count) {
    std::uint64_t bits = 0;
    int done = 0;
    for (; done + GROUP <= count; done += GROUP) {
        std::uint64_t group = 0;
        group |= GetBit(vector, first + done);
        group |= GetBit(vector, first + done + 1) << 1U;
        group |= GetBit(vector, first + done + 2) << 2U;
        group |= GetBit(vector, first + done + 3) << 3U;
        group |= GetBit(vector, first + done + 4) << 4U;
        group |= GetBit(vector, first + done + 5) << 5U;
        group |= GetBit(vector, first + done + 6) << 6U;
        group |= GetBit(vector, first + done + 7) << 7U;
        bits |= group << static_cast<unsigned>(done);
    }
    for (; done < count; ++done) {
        bits |= GetBit(vector, first + done) << static_cast<unsigned>(done);
    }
    return bits;
}

void PutBits(t_vpi_vecval* vector, int first, int count, std::uint64_t bits) {
    for (int done = 0; done < count; ++done, bits >>= 1U) {
        PutBit(vector, first + done, bits);
    }
}

void SVLV2CI(marlune_int<1024, true>& target, const t_vpi_vecval* vector, int width) {
    target = CWord();
    for (int first = 0, limb = 0; first < width; first += LIMB_BITS, ++limb) {
        const std::uint64_t bits = GetBits(vector, first, std::min(width - first, LIMB_BITS));
        if (limb < LIMB_COUNT) {
            target.SetLimb(static_cast<unsigned>(limb), static_cast<std::uint32_t>(bits));
        }
    }
}

void CI2SVLV(t_vpi_vecval* vector, const marlune_int<1024, true>& value, int width) {
    const std::uint32_t sign = value.IsNegative() ? ~std::uint32_t{0} : 0;
    for (int first = 0, limb = 0; first < width; first += LIMB_BITS, ++limb) {
        PutBits(vector, first, std::min(width - first, LIMB_BITS),
                limb < LIMB_COUNT ? value.Limb(static_cast<unsigned>(limb)) : sign);
    }
}

} // namespace marlune::dpi
