// Reads and drives signals through the foreign language interface.
#include "src/flimemory/signalvalue.h"

#include <algorithm>
#include <cstdint>
#include <iostream>

#include "src/flimemory/logicelements.h"

namespace marlune::fli {

namespace {

using CWord = marlune_int<1024, true>;

bool HasEnumerationElements(mtiTypeIdT arrayType) {
    return mti_GetTypeKind(mti_GetArrayElementType(arrayType)) == MTI_TYPE_ENUM;
}

/// Asks the simulator for a signal's value. convert(elements, count) converts the elements of an array.
template <typename TResult, typename TConvert>
TResult ReadSignal(mtiSignalIdTag* signal, TConvert&& convert) {
    if (signal == nullptr) {
        return TResult();
    }
    const mtiTypeIdT type = mti_GetSignalType(signal);
    const mtiTypeKindT kind = mti_GetTypeKind(type);
    if (kind == MTI_TYPE_ARRAY) {
        if (!HasEnumerationElements(type)) {
            std::cerr << "Unsupported type of signal." << std::endl;
            return TResult();
        }
        const int count = mti_TickLength(type);
        void* elements = mti_GetArraySignalValue(signal, nullptr);
        const TResult value = convert(static_cast<const unsigned char*>(elements), count);
        mti_VsimFree(elements);
        return value;
    }
    if (kind == MTI_TYPE_ENUM) {
        return mti_GetSignalValue(signal) == POSITION_1 ? TResult(1) : TResult();
    }
    std::cerr << "Unsupported type of singal." << std::endl; // misspelt, unlike the array's: scripts look for it
    return TResult();
}

/// Whether the last element, and no other of the 1024 last, is a '1'.
bool IsOneOfElements(const unsigned char* elements, int count) {
    constexpr int NUMBER_BITS = 64;
    constexpr int WORD_BITS = 1024;
    if (count <= NUMBER_BITS) {
        return NumberOfElements(elements, count) == 1;
    }
    const unsigned char* const end = elements + count;
    const unsigned char* const begin = end - std::min(count, WORD_BITS);
    return NumberOfElements(end - NUMBER_BITS, NUMBER_BITS) == 1 &&
           std::find(begin, end - NUMBER_BITS, POSITION_1) == end - NUMBER_BITS;
}

/// Passes a value, or the address of an array of them, to the driver, or to the signal if there is none.
void Drive(mtiSignalIdT signal, mtiLongT value, mtiDriverIdT driver, int delay, mtiDriverModeEnum_ mode) {
    if (driver == nullptr) {
        mti_SetSignalValue(signal, value);
    } else {
        mti_ScheduleDriver(driver, value, delay, mode);
    }
}

/// Drives a signal. convert(elements, count) writes the elements of an array.
template <typename TConvert>
void WriteSignal(mtiSignalIdTag* signal, bool isOne, mtiDriverIdTag* driver, int delay, mtiDriverModeEnum_ mode,
                 TConvert&& convert) {
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
        convert(static_cast<unsigned char*>(elements), mti_TickLength(type));
        // The interface passes addresses as numbers of its own type.
        Drive(signal, reinterpret_cast<mtiLongT>(elements), driver, delay, mode);
        mti_VsimFree(elements);
    } else if (kind == MTI_TYPE_ENUM) {
        Drive(signal, isOne ? POSITION_1 : POSITION_0, driver, delay, mode);
    } else {
        std::cerr << "Unsupported type of signal." << std::endl;
    }
}

} // namespace

CWord GetValue(mtiSignalIdTag* signal) {
    return ReadSignal<CWord>(signal, WordOfElements);
}

std::uint64_t GetLow64(mtiSignalIdTag* signal) {
    return ReadSignal<std::uint64_t>(signal, NumberOfElements);
}

bool IsOne(mtiSignalIdTag* signal) {
    return ReadSignal<bool>(signal, IsOneOfElements);
}

void SetValue(mtiSignalIdTag* signal, const CWord& value, mtiDriverIdTag* driver, int delay, mtiDriverModeEnum_ mode) {
    WriteSignal(signal, value.IsOne(), driver, delay, mode,
                [&](unsigned char* elements, int count) { ElementsOfWord(value, elements, count); });
}

void SetValue(mtiSignalIdTag* signal, std::uint64_t value, mtiDriverIdTag* driver, int delay, mtiDriverModeEnum_ mode) {
    WriteSignal(signal, value == 1, driver, delay, mode,
                [&](unsigned char* elements, int count) { ElementsOfNumber(value, elements, count); });
}

} // namespace marlune::fli
