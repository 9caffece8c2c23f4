// Encodings of numbers, binary digits and time stamps.
#include "objectfile/utils.h"

#include <stdexcept>

#include <gtest/gtest.h>

using namespace ObjectFile;

TEST(Int, ReadsNumbers) {
    const std::vector<std::pair<std::string, int>> cases = {
        {"12\t", 12}, {" -7x", -7}, {"+3", 3}, {"4294967297", 1}, {"2147483648", -2147483647 - 1}, {"0x10", 0},
    };
    for (const auto& [text, value] : cases) {
        EXPECT_EQ(Int<int>(text), value) << text;
    }
    EXPECT_EQ(Int<int>::Parse("-ff", 16), -255);
    EXPECT_EQ(Int<unsigned long long>("-1"), ~0ULL);
    EXPECT_EQ(Int<unsigned long long>("18446744073709551615"), ~0ULL);
    for (const char* const text : {"", "abc", "\t", "-", "// 1"}) {
        EXPECT_THROW(Int<int>{text}, invalid_format) << text;
        EXPECT_THROW(Int<unsigned long long>{text}, invalid_format) << text;
    }
    EXPECT_THROW(Int<int>("99999999999999999999"), std::overflow_error);
    EXPECT_THROW(Int<unsigned long long>("18446744073709551616"), std::overflow_error);
    EXPECT_THROW(Int<int>::Parse("1", 1), invalid_format);
}

TEST(Int, WritesNumbers) {
    EXPECT_EQ(Int<int>::ToString(-10, 10), "-10");
    EXPECT_EQ(Int<int>::ToString(-1, 16, 3), "ffffffff");
    EXPECT_EQ(Int<int>::ToString(8, 8), "10");
    EXPECT_EQ(Int<int>::ToString(-2, 2, 4), "1110");
}

TEST(BinaryDigits, Conversions) {
    EXPECT_EQ(ConvSignToBin(5, 4), "0101");
    EXPECT_EQ(ConvSignToBin(-8, 3), "100");
    EXPECT_EQ(ConvSignToBin(-1, 70), std::string(70, '1'));
    EXPECT_EQ(ConvSignToBin(-1, 0), "");
    EXPECT_EQ(ConvUnsignToBin(5, 4), "0101");
    EXPECT_EQ(ConvUnsignToBin(~0ULL, 66), "00" + std::string(64, '1'));
    EXPECT_EQ(ConvBinToInt("0011", BO_LITTLE), 12U);
    EXPECT_EQ(ConvBinToInt("0011", BO_BIG), 3U);
    EXPECT_EQ(ConvBinToInt("0/", BO_UNDEFINED), ~0ULL);
    EXPECT_EQ(ReverseEndianess("abc"), "cba");
}

TEST(TimeStamp, LocalTime) {
    std::tm time{};
    const char* const text = "2014.03.07:16:05:59";
    strptime(text, "%Y.%m.%d:%T", &time);
    time.tm_isdst = -1;
    EXPECT_EQ(CTimeStamp::ToString(static_cast<long>(CTimeStamp(time).GetTime())), text);
    time.tm_year = 10;
    EXPECT_THROW(CTimeStamp{time}, invalid_format);
#if __LONG_MAX__ > 0x7FFFFFFF
    EXPECT_THROW(CTimeStamp::ToString(0x7FFFFFFFFFFFFFFFL), invalid_format);
    EXPECT_THROW(CTimeStamp::ToString(300000000000L), invalid_format); // a year of five digits
#endif
    EXPECT_EQ(CTimeStamp::Parse(text), -1);
    EXPECT_EQ(CTimeStamp().GetTime(), -1);
}
