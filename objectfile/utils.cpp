// Encodings of numbers, binary digits and time stamps in the text object format.
#include "objectfile/utils.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>

namespace ObjectFile {

namespace {

/// Runs strtoll or strtoull and turns its errors into exceptions.
template <typename T>
T ParseNumber(T (*convert)(const char*, char**, int), const std::string& text, int base) {
    const char* const begin = text.c_str();
    char* end = nullptr;
    errno = 0;
    const T value = convert(begin, &end, base);
    if (end == begin || errno == EINVAL) { // EINVAL: no such base
        throw invalid_format("Invalid format of number");
    }
    if (errno == ERANGE) {
        throw std::overflow_error("Number is out of range");
    }
    return value;
}

} // namespace

template <>
int Int<int>::Parse(const std::string& text, int base) {
    return static_cast<int>(ParseNumber(std::strtoll, text, base));
}

template <>
unsigned long long Int<unsigned long long>::Parse(const std::string& text, int base) {
    return ParseNumber(std::strtoull, text, base);
}

template <>
std::string Int<int>::ToString(int value, int base, int width) {
    std::array<char, 12> digits{};
    switch (base) {
    case 8:
        std::snprintf(digits.data(), digits.size(), "%o", static_cast<unsigned int>(value));
        return digits.data();
    case 10:
        return std::to_string(value);
    case 16:
        std::snprintf(digits.data(), digits.size(), "%x", static_cast<unsigned int>(value));
        return digits.data();
    default:
        return ConvSignToBin(value, width);
    }
}

std::string ConvSignToBin(long long value, int width) {
    std::string digits(static_cast<std::size_t>(std::max(width, 0)), '0');
    for (std::size_t i = 0; i < digits.size(); ++i) {
        const std::size_t bit = digits.size() - 1 - i;
        const bool set = i == 0 ? value < 0 : ((value >> std::min<std::size_t>(bit, 63)) & 1) != 0;
        digits[i] = set ? '1' : '0';
    }
    return digits;
}

std::string ConvUnsignToBin(unsigned long long value, int width) {
    std::string digits(static_cast<std::size_t>(std::max(width, 0)), '0');
    for (std::size_t bit = 0; bit < std::min<std::size_t>(digits.size(), 64); ++bit) {
        digits[digits.size() - 1 - bit] = ((value >> bit) & 1) != 0 ? '1' : '0';
    }
    return digits;
}

unsigned long long ConvBinToInt(const std::string& text, eByteOrder order) {
    unsigned long long value = 0;
    for (const char digit : order == BO_LITTLE ? ReverseEndianess(text) : text) {
        value = 2 * value + static_cast<unsigned long long>(digit - '0');
    }
    return value;
}

std::string ReverseEndianess(const std::string& text) {
    return {text.rbegin(), text.rend()};
}

CTimeStamp::CTimeStamp(std::tm time) : m_Time(std::mktime(&time)) {
    if (m_Time < 0) {
        throw invalid_format("Calendar time cannot be represented");
    }
}

void CTimeStamp::SetTime() {
    m_Time = std::time(nullptr);
}

std::string CTimeStamp::ToString(long time) {
    const auto seconds = static_cast<std::time_t>(time);
    std::array<char, 20> text{};
    const std::tm* local = std::localtime(&seconds); // not reentrant: the library has one thread
    if (local == nullptr || std::strftime(text.data(), text.size(), "%Y.%m.%d:%H:%M:%S", local) == 0) {
        throw invalid_format("Calendar time cannot be represented");
    }
    return text.data();
}

std::time_t CTimeStamp::Parse(const std::string& /*text*/) {
    return -1;
}

} // namespace ObjectFile
