// Numbers as parameters are written.
#include "number_cast"

#include <algorithm>

#include <gtest/gtest.h>

namespace {

using marlune::detail::number_cast;

/// The value and the suffix width, or the text of the error.
template <typename T>
std::string Convert(const std::string& text) {
    int suffixBits = -1;
    try {
        const T value = number_cast<T>::Convert(text, suffixBits);
        return std::to_string(value) + (suffixBits == 64 ? " 64" : "");
    } catch (const std::invalid_argument& error) {
        return error.what();
    }
}

TEST(NumberCast, ConvertsLiteralsOrSaysWhyNot) {
    const std::string intConv = ") error: Conversion to integer type failed.  ";
    const std::string charConv = ") error: Conversion of character constant failed.  ";
    const std::pair<std::string, std::string> cases[] = {
        {"0", "0"},
        {"00", "0"},
        {"9", "9"},
        {"0x1F", "31"},
        {"0X1f", "31"},
        {"017", "15"},
        {"4294967295", "4294967295"},
        {"99999999999", "4294967295"},
        {"10u", "10"},
        {"10UL", "10 64"},
        {"10LlU", "10 64"},
        {"0x10l", "16 64"},
        {"true", "1"},
        {"FALSE", "0"},
        {"'A'", "65"},
        {"'ab'", "97"},
        {"''", "0"},
        {"'\\n'", "10"},
        {"'\\a'", "7"},
        {"'\\v'", "11"},
        {"'\\\"'", "34"},
        {"'\\\\'", "92"},
        {"'\\?'", "63"},
        {"'\\0'", "0"},
        {"'\\x41'", "65"},
        {"'\\101'", "65"},
        {"'\\x-80'", "4294967168"},
        {"'\xFF'", "4294967295"},
        {"", "include/number_cast(106" + intConv + "empty string"},
        {"True", "include/number_cast(123" + intConv + "'True'"},
        {"12b", "include/number_cast(123" + intConv + "'12b'"},
        {"08", "include/number_cast(123" + intConv + "'08'"},
        {"uL", "include/number_cast(123" + intConv + "'uL'"},
        {"0x", "include/number_cast(261) error: Conversion of given number failed, invalid digit. '0x'"},
        {"12g", "include/number_cast(261) error: Conversion of given number failed, invalid digit. '12g'"},
        {"12gu", "include/number_cast(261) error: Conversion of given number failed, invalid digit. '12gu'"},
        {"10LLL", "include/number_cast(266) error: Invalid suffix: '10'"},
        {"10uu", "include/number_cast(266) error: Invalid suffix: '10'"},
        {"uu", "include/number_cast(266) error: Invalid suffix: 'uu'"},
        {"'", "include/number_cast(166" + charConv + "'''"},
        {"'\\''", "include/number_cast(166" + charConv + "''\\'''"},
        {"'a'b", "include/number_cast(171" + charConv + "''a'b'"},
        {"'\\x\\x'", "include/number_cast(175" + charConv + "''\\x\\x''"},
        {"'\\'", "include/number_cast(208) error: Conversion of char escape sequence failed. '\\'"},
        {"'\\q'", "include/number_cast(224) error: Conversion of char escape sequence failed. '\\q'"},
        {"'\\xFF'", "include/number_cast(230) error: Escape sequence is out of range of char type. '\\xFF'"},
        {"'\\377'", "include/number_cast(230) error: Escape sequence is out of range of char type. '\\377'"},
        {"'\\-'", "include/number_cast(230) error: Escape sequence is out of range of char type. '\\-'"},
        {"'\\x-81'", "include/number_cast(230) error: Escape sequence is out of range of char type. '\\x-81'"},
        {"'\\x'", "include/number_cast(230) error: Escape sequence is out of range of char type. '\\x'"},
    };
    for (const auto& [text, expected] : cases) {
        EXPECT_EQ(Convert<unsigned>(text), expected) << text;
        const std::size_t digits = std::min(expected.find_first_not_of("0123456789"), expected.size());
        const std::string flag = digits == 0 ? "" : expected == "0" ? "0" : "1";
        EXPECT_EQ(Convert<bool>(text), flag + expected.substr(digits)) << text;
    }
}

} // namespace
