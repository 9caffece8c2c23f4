// Encodings of numbers, binary digits and time stamps in the text object format.
#ifndef MARLUNE_OBJECTFILE_UTILS_H
#define MARLUNE_OBJECTFILE_UTILS_H

#include <ctime>
#include <string>

#include "objectfile/errors.h"

namespace ObjectFile {

enum eByteOrder { BO_UNDEFINED = 0, BO_LITTLE = 1, BO_BIG = 2 };

/// A number read from a line: leading white space and a sign are accepted, text after the digits is ignored.
/// T is int or unsigned long long. Throws invalid_format without a digit and std::overflow_error beyond 64 bits.
template <typename T>
class Int {
public:
    /// Decimal. The low 32 bits of the number are kept for int, without a range check.
    explicit Int(const std::string& text) : m_Value(Parse(text, 10)) {}

    operator T() const { return m_Value; }

    static T Parse(const std::string& text, int base);
    /// For int: digits in base 8, 10 or 16 without prefix or padding (`width` ignored); for any other base the binary
    /// digits of ConvSignToBin.
    static std::string ToString(T value, int base, int width = 0);

private:
    T m_Value;
};

template <>
int Int<int>::Parse(const std::string& text, int base);
template <>
unsigned long long Int<unsigned long long>::Parse(const std::string& text, int base);
template <>
std::string Int<int>::ToString(int value, int base, int width);

/// `width` binary digits: '1' for a negative value, else '0', then the low width - 1 bits.
std::string ConvSignToBin(long long value, int width);
/// The low `width` bits as binary digits, most significant first.
std::string ConvUnsignToBin(unsigned long long value, int width);
/// The number that binary digits stand for, modulo 2^64; with BO_LITTLE the last digit is the most significant. The
/// characters are not validated.
unsigned long long ConvBinToInt(const std::string& text, eByteOrder order);
/// The characters in reverse order.
std::string ReverseEndianess(const std::string& text);

/// A calendar time in seconds since the epoch; -1 when none was set.
class CTimeStamp {
public:
    CTimeStamp() = default;
    explicit CTimeStamp(std::time_t time) : m_Time(time) {}
    /// From broken-down local time; throws invalid_format when that is no time after the epoch.
    explicit CTimeStamp(std::tm time);

    /// Takes the current time.
    void SetTime();
    std::time_t GetTime() const { return m_Time; }

    /// Local time as "2014.03.07:16:05:59"; throws invalid_format if it cannot be formed in 19 characters.
    static std::string ToString(long time);
    /// Always -1: the time stamp of a file that is read is not interpreted.
    static std::time_t Parse(const std::string& text);

private:
    std::time_t m_Time = -1;
};

} // namespace ObjectFile

#endif
