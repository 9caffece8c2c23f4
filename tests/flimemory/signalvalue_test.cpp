// Values between signals and numbers.
#include "src/flimemory/signalvalue.h"

#include <random>

#include <gtest/gtest.h>

#include "tests/simulator/simulator.h"

namespace {

using marlune::fli::GetValue;
using marlune::fli::SetValue;
using CWord = marlune::marlune_int<1024, true>;

TEST(SignalValue, ReadsAndDrivesArraysOfEveryLength) {
    CSimulator simulator;
    std::mt19937 random(4);
    for (const int length : {-1, 0, 1, 7, 8, 9, 31, 32, 33, 39, 40, 64, 65, 127, 128, 1000, 1023, 1024, 1100}) {
        const mtiSignalIdT signal = simulator.AddSignal("vector", 1);
        signal->m_Type->m_Length = length;
        std::string letters;
        std::string driven;
        for (int i = 0; i < length; ++i) {
            letters += "UX01ZWLH-11"[random() % 11];
            driven += length - i <= 1024 && letters.back() == '1' ? '1' : '0'; // beyond 1024 bits the first are lost
        }
        simulator.Set({{"vector", letters}});
        const CWord value = GetValue(signal);
        for (int i = 0; i < 1024; ++i) {
            const bool expected = i < length && letters[static_cast<std::size_t>(length - 1 - i)] == '1';
            ASSERT_EQ(value.Bit(static_cast<unsigned>(i)), expected) << length << ": " << i;
        }
        mtiDriverIdTag driver{signal};
        SetValue(signal, value, &driver, 0, MTI_INERTIAL);
        simulator.Set({{"vector", letters}}); // and the delta cycle after it
        EXPECT_EQ(simulator.Value("vector"), driven);
    }
    EXPECT_TRUE(simulator.m_Lent.empty());
}

TEST(SignalValue, DrivesSingleBits) {
    CSimulator simulator;
    const mtiSignalIdT bit = simulator.AddSignal("bit", 0);
    mtiDriverIdTag driver{bit};
    for (const int value : {1, 0, 3, 1, -1, 1, 2}) {
        SetValue(bit, CWord(value), &driver, 7, MTI_TRANSPORT);
        simulator.Set({{"bit", "U"}});
        EXPECT_EQ(simulator.Value("bit"), value == 1 ? "1" : "0") << value;
    }
    EXPECT_EQ(simulator.TakeLog(), std::vector<std::string>(7, "delay 7 mode 1"));
}

TEST(SignalValue, ReportsWhatItDoesNotSupport) {
    CSimulator simulator;
    const mtiSignalIdT integer = simulator.AddSignal("integer", MTI_TYPE_INTEGER, MTI_TYPE_ENUM);
    const mtiSignalIdT integers = simulator.AddSignal("integers", MTI_TYPE_ARRAY, MTI_TYPE_INTEGER);
    const mtiSignalIdT vector = simulator.AddSignal("vector", 4);
    mtiDriverIdTag driver{integer};
    testing::internal::CaptureStderr();
    EXPECT_TRUE(GetValue(nullptr) == CWord());
    SetValue(nullptr, CWord(1), nullptr, 0, MTI_INERTIAL);
    EXPECT_TRUE(GetValue(integer) == CWord());
    EXPECT_TRUE(GetValue(integers) == CWord());
    SetValue(integer, CWord(1), &driver, 0, MTI_INERTIAL);
    SetValue(integers, CWord(1), &driver, 0, MTI_INERTIAL);
    SetValue(vector, CWord(5), nullptr, 0, MTI_INERTIAL);
    SetValue(integer, CWord(5), nullptr, 0, MTI_INERTIAL);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "Unsupported type of singal.\n"
                                                      "Unsupported type of signal.\n"
                                                      "Unsupported type of signal.\n"
                                                      "Unsupported type of signal.\n"
                                                      "Driver for vector was not found, setting signal directly.\n"
                                                      "Driver for integer was not found, setting signal directly.\n"
                                                      "Unsupported type of signal.\n");
    EXPECT_EQ(simulator.Value("vector"), "0101");
    EXPECT_EQ(integer->m_Assignments + integers->m_Assignments, 0);
}

} // namespace
