#include "src/flimemory/logicvector.h"

#include <cstdint>

namespace marlune::dpi {

namespace {

constexpr int VALUE_BITS = 1024;
constexpr int LIMB_BITS = 32;

} // namespace

void SVLV2CI(marlune_int<1024, true>& target, const t_vpi_vecval* vector, int width) {
    target = marlune_int<1024, true>();
    for (int i = 0; i < width; ++i) {
        const bool isOne = svGetBitselLogic(vector, i) == sv_1;
        if (isOne && i < VALUE_BITS) {
            const auto limb = static_cast<unsigned>(i / LIMB_BITS);
            target.SetLimb(limb, target.Limb(limb) | 1U << (i % LIMB_BITS));
        }
    }
}

void CI2SVLV(t_vpi_vecval* vector, const marlune_int<1024, true>& value, int width) {
    for (int i = 0; i < width; ++i) {
        svPutBitselLogic(vector, i, value.Bit(static_cast<unsigned>(i)) ? sv_1 : sv_0);
    }
}

} // namespace marlune::dpi
