#include "src/flimemory/signalvalue.h"

#include <algorithm>
#include <cstdint>
#include <iostream>

namespace marlune::fli {

namespace {

using CWord = marlune_int<1024, true>;

constexpr unsigned char POSITION_0 = 2;
constexpr unsigned char POSITION_1 = 3;

// Eight elements are converted at a time, held in a 64-bit number with the first element in the lowest byte; the first
// element is the most significant of their eight bits.
constexpr int GROUP = 8;
constexpr std::uint64_t EACH_BYTE = 0x0101010101010101;
constexpr std::uint64_t LOW_7_BITS = 0x7F * EACH_BYTE;

std::uint64_t LoadGroup(const unsigned char* elements) {
    std::uint64_t group = 0;
    for (int i = 0; i < GROUP; ++i) {
        group |= std::uint64_t{elements[i]} << (GROUP * i);
    }
    return group;
}

void StoreGroup(unsigned char* elements, std::uint64_t group) {
    for (int i = 0; i < GROUP; ++i) {
        elements[i] = static_cast<unsigned char>(group >> (GROUP * i));
    }
}

/// The eight bits that eight elements stand for.
std::uint32_t BitsOfGroup(std::uint64_t group) {
    const std::uint64_t difference = group ^ (POSITION_1 * EACH_BYTE);
    const std::uint64_t nonZero = ((difference & LOW_7_BITS) + LOW_7_BITS) | difference; // in bit 7 of each byte
    const std::uint64_t ones = (~nonZero >> 7U) & EACH_BYTE;
    return static_cast<std::uint32_t>((ones * 0x8040201008040201) >> 56U); // byte i moves to bit 63 - i
}

/// The positions that drive eight bits.
std::uint64_t GroupOfBits(std::uint32_t bits) {
    const std::uint64_t separated = ((bits & 0xFFU) * EACH_BYTE) & 0x0102040810204080; // byte i keeps bit 7 - i
    return POSITION_0 * EACH_BYTE + (((separated + LOW_7_BITS) >> 7U) & EACH_BYTE);
}

/// The elements' value; more than 1024 elements lose the first ones.
CWord ValueOfElements(const unsigned char* elements, int count) {
    CWord value;
    const unsigned limbs = std::min((static_cast<unsigned>(count) + 31) / 32, CWord::LIMB_COUNT);
    int left = count; // elements not yet converted; those behind are
    for (unsigned limb = 0; limb < limbs; ++limb) {
        std::uint32_t bits = 0;
        unsigned shift = 0;
        for (; shift < 32 && left >= GROUP; shift += GROUP) {
            left -= GROUP;
            bits |= BitsOfGroup(LoadGroup(elements + left)) << shift;
        }
        for (; shift < 32 && left > 0; ++shift) {
            --left;
            bits |= (elements[left] == POSITION_1 ? 1U : 0U) << shift;
        }
        value.SetLimb(limb, bits);
    }
    return value;
}

void ElementsOfValue(const CWord& value, unsigned char* elements, int count) {
    const std::uint32_t sign = value.IsNegative() ? 0xFFFFFFFF : 0;
    int left = count;
    for (unsigned limb = 0; left > 0; ++limb) {
        std::uint32_t bits = limb < CWord::LIMB_COUNT ? value.Limb(limb) : sign;
        unsigned shift = 0;
        for (; shift < 32 && left >= GROUP; shift += GROUP, bits >>= GROUP) {
            left -= GROUP;
            StoreGroup(elements + left, GroupOfBits(bits));
        }
        for (; shift < 32 && left > 0; ++shift, bits >>= 1U) {
            --left;
            elements[left] = static_cast<unsigned char>(POSITION_0 + (bits & 1U));
        }
    }
}

bool HasEnumerationElements(mtiTypeIdT arrayType) {
    return mti_GetTypeKind(mti_GetArrayElementType(arrayType)) == MTI_TYPE_ENUM;
}

/// Hands a value, or the address of an array of them, to the driver or else to the signal.
void Drive(mtiSignalIdT signal, mtiLongT value, mtiDriverIdT driver, int delay, mtiDriverModeEnum_ mode) {
    if (driver == nullptr) {
        mti_SetSignalValue(signal, value);
    } else {
        mti_ScheduleDriver(driver, value, delay, mode);
    }
}

} // namespace

CWord GetValue(mtiSignalIdTag* signal) {
    if (signal == nullptr) {
        return {};
    }
    const mtiTypeIdT type = mti_GetSignalType(signal);
    const mtiTypeKindT kind = mti_GetTypeKind(type);
    if (kind == MTI_TYPE_ARRAY) {
        if (!HasEnumerationElements(type)) {
            std::cerr << "Unsupported type of signal." << std::endl;
            return {};
        }
        const int count = mti_TickLength(type);
        void* elements = mti_GetArraySignalValue(signal, nullptr);
        const CWord value = count < 1 ? CWord() : ValueOfElements(static_cast<const unsigned char*>(elements), count);
        mti_VsimFree(elements);
        return value;
    }
    if (kind == MTI_TYPE_ENUM) {
        return mti_GetSignalValue(signal) == POSITION_1 ? CWord(1) : CWord();
    }
    std::cerr << "Unsupported type of singal." << std::endl; // the text differs from the array's: scripts look for it
    return {};
}

void SetValue(mtiSignalIdTag* signal, const CWord& value, mtiDriverIdTag* driver, int delay, mtiDriverModeEnum_ mode) {
    if (signal == nullptr) {
        return;
    }
    if (driver == nullptr) {
        std::cerr << "Driver for " << mti_GetSignalName(signal) << " was not found, setting signal directly."
                  << std::endl;
    }
    const mtiTypeIdT type = mti_GetSignalType(signal);
    const mtiTypeKindT kind = mti_GetTypeKind(type);
    if (kind == MTI_TYPE_ARRAY && HasEnumerationElements(type)) {
        void* elements = mti_GetArraySignalValue(signal, nullptr);
        ElementsOfValue(value, static_cast<unsigned char*>(elements), mti_TickLength(type));
        // The interface passes addresses as numbers of its own type.
        Drive(signal, reinterpret_cast<mtiLongT>(elements), driver, delay, mode);
        mti_VsimFree(elements);
    } else if (kind == MTI_TYPE_ENUM) {
        Drive(signal, value.IsOne() ? POSITION_1 : POSITION_0, driver, delay, mode);
    } else {
        std::cerr << "Unsupported type of signal." << std::endl;
    }
}

} // namespace marlune::fli
