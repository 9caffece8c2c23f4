// Wide integers, compared with texts of digits.
#include "marlune_int"

#include <bitset>
#include <random>

#include <gtest/gtest.h>

namespace {

using marlune::marlune_int;
using CWide = marlune_int<1024, true>;
using CNarrow = marlune_int<32, true>;

// The model: a value is a set of bits, and every operation works bit by bit.

template <unsigned N, bool S>
std::bitset<N> Bits(const marlune_int<N, S>& value) {
    std::bitset<N> bits;
    for (unsigned i = 0; i < N; ++i) {
        bits[i] = ((value.Limb(i / 32) >> (i % 32)) & 1U) != 0;
    }
    return bits;
}

template <std::size_t N>
std::bitset<N> Sum(const std::bitset<N>& a, const std::bitset<N>& b) {
    std::bitset<N> sum;
    bool carry = false;
    for (std::size_t i = 0; i < N; ++i) {
        sum[i] = a[i] ^ b[i] ^ carry;
        carry = (a[i] && b[i]) || (carry && (a[i] || b[i]));
    }
    return sum;
}

template <std::size_t N, std::size_t M>
std::bitset<N> Extended(const std::bitset<M>& a, bool isSigned) {
    std::bitset<N> extended;
    for (std::size_t i = 0; i < N; ++i) {
        extended[i] = i < M ? a[i] : isSigned && a[M - 1];
    }
    return extended;
}

template <std::size_t N, std::size_t M>
std::bitset<N> Product(const std::bitset<N>& a, const std::bitset<M>& b, bool bIsSigned) {
    const std::bitset<N> factor = Extended<N>(b, bIsSigned);
    std::bitset<N> product;
    for (std::size_t i = 0; i < N; ++i) {
        if (factor[i]) {
            product = Sum(product, a << i);
        }
    }
    return product;
}

/// Values whose runs of equal limbs, at all-zeros and all-ones in particular, make carries and signs matter.
template <unsigned N, bool S>
marlune_int<N, S> Random(std::mt19937& random) {
    marlune_int<N, S> value;
    const std::uint32_t fills[] = {0, 0xFFFFFFFF, 0x80000000, 1};
    const auto significant = random() % (N / 32 + 1);
    const std::uint32_t fill = fills[random() % 4];
    for (unsigned i = 0; i < N / 32; ++i) {
        value.SetLimb(i, i < significant ? static_cast<std::uint32_t>(random()) : fill);
    }
    return value;
}

template <unsigned N, bool S, unsigned M, bool S2>
void CompareWithModel(std::mt19937& random) {
    const auto a = Random<N, S>(random);
    const auto a2 = Random<N, S>(random);
    const auto b = Random<M, S2>(random);
    EXPECT_EQ(Bits(a + a2), Sum(Bits(a), Bits(a2)));
    EXPECT_EQ(Bits(a | a2), Bits(a) | Bits(a2));
    EXPECT_EQ(Bits(-a), Sum(~Bits(a), std::bitset<N>(1)));
    EXPECT_EQ(Bits(marlune_int<N, S>(b)), Extended<N>(Bits(b), S2));
    auto product = a;
    product *= b;
    EXPECT_EQ(Bits(product), Product(Bits(a), Bits(b), S2));
    const auto count = static_cast<int>(random() % (N + 40));
    EXPECT_EQ(Bits(a << count), Bits(a) << static_cast<std::size_t>(count)) << count;
    EXPECT_EQ(a == a2, Bits(a) == Bits(a2));
    EXPECT_FALSE(a != a);
    EXPECT_EQ(a.Low64(), (Extended<64>(Bits(a), false).to_ullong()));
    EXPECT_EQ(a.IsOne(), Bits(a) == std::bitset<N>(1));
}

TEST(MarluneInt, AgreesWithABitwiseModel) {
    std::mt19937 random(1);
    for (int round = 0; round < 40; ++round) {
        CompareWithModel<1024, true, 32, true>(random);
        CompareWithModel<1056, true, 1024, true>(random);
        CompareWithModel<1024, true, 1056, false>(random);
        CompareWithModel<32, true, 32, false>(random);
        CompareWithModel<64, false, 96, true>(random);
    }
    const CWide lowest = CWide(1) << 1023;
    auto product = lowest;
    product *= CNarrow(-1);
    EXPECT_TRUE(product == lowest);
}

TEST(MarluneInt, ConvertsIntegers) {
    EXPECT_EQ(Bits(CWide(-1)).count(), 1024U);
    EXPECT_TRUE((CWide(CNarrow(-5)) == CWide(-5)));
    EXPECT_EQ(static_cast<unsigned>(CWide(-5)), 0xFFFFFFFBU);
    EXPECT_EQ(static_cast<int>(CWide(-5)), -5);
    EXPECT_FALSE((CWide::FromUnsigned(0xFFFFFFFFFFFFFFFF).IsNegative()));
    EXPECT_TRUE((CNarrow(-1).IsNegative()));
    EXPECT_FALSE((marlune_int<32, false>(-1).IsNegative()));
}

TEST(MarluneInt, RefusesNegativeShifts) {
    try {
        CWide(1) << -1;
        FAIL();
    } catch (const marlune::exceptions::CGeneralError& error) {
        EXPECT_STREQ(error.what(), "General error: include/marlune_int(230) error: negative shift count: -1");
    }
}

TEST(MarluneInt, ParsesLiterals) {
    const std::string manyDigits(600, '7');
    const std::pair<std::string, int> small[] = {
        {"", 0},        {"-", 0},
        {"+", 0},       {"0", 0},
        {"-1", -1},     {"+12", 12},
        {"12a3", 123},  {"0x", 0},
        {"0x1G", 16},   {"1x10", 16},
        {"-0X1f", -31}, {"zB101", 5},
        {"0b2", 2},     {"0b21", 5},
        {"08", 8},      {"017", 15},
        {"-017", -15},  {"0_1", 1},
        {"x", 0},       {"1 0", 10},
        {"0b", 0},      {std::string("0\00010", 4), 8},
    };
    for (const auto& [text, value] : small) {
        EXPECT_TRUE((CWide(text) == CWide(value))) << text;
    }
    // The 11th octal digit straddles the first two limbs and loses the bit that belongs to the second.
    EXPECT_EQ(Bits(CWide("0" + std::string(11, '7'))), std::bitset<1024>(0xFFFFFFFF));
    // Only the last 256 hexadecimal, 1024 binary and 342 octal digits count.
    EXPECT_TRUE((CWide("0x5" + std::string(255, '0') + "1") == CWide(1)));
    EXPECT_TRUE((CWide("0b1" + std::string(1023, '0') + "1") == CWide(1)));
    EXPECT_TRUE((CWide("0" + manyDigits) == CWide("0" + std::string(342, '7'))));
}

TEST(MarluneInt, ParsesLongDecimalNumbers) {
    std::string text;
    std::bitset<1024> expected;
    std::mt19937 random(2);
    for (int i = 0; i < 400; ++i) { // more digits than 1024 bits hold: the value wraps
        const unsigned digit = i == 0 ? 7 : static_cast<unsigned>(random() % 10);
        text += std::to_string(digit);
        expected = Sum(Product(expected, std::bitset<5>(10), false), std::bitset<1024>(digit));
    }
    EXPECT_EQ(Bits(CWide(text)), expected);
    EXPECT_EQ(Bits(-CWide("-" + text)), expected);
}

} // namespace
