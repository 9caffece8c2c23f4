// Sparse cells.
#include "src/flimemory/sparsecells.h"

#include <map>
#include <random>

#include <gtest/gtest.h>

namespace {

using marlune::foreign::fli::CSparseCells;
using CWord = CSparseCells::CWord;

TEST(SparseCells, AreAnOrderedMap) {
    std::mt19937 random(3);
    CSparseCells cells;
    std::map<std::uint32_t, std::uint32_t> model; // address to seed of the word; words of one seed are equal
    const auto word = [](std::uint32_t seed) {
        CWord made = CWord::FromUnsigned(seed);
        return seed % 3 == 0 ? made << 900 : seed % 3 == 1 ? -made : made;
    };
    for (int i = 0; i < 20000; ++i) {
        // Runs and gaps inside of blocks, blocks close by and far away.
        const auto address = static_cast<std::uint32_t>(i % 2 == 0 ? random() % 3000 : random() & 0xC003F00F);
        if (i % 500 == 499) {
            const auto count = static_cast<std::uint32_t>(random() % (i % 1000 == 999 ? 500 : 100000));
            cells.FillZero(address, count);
            for (std::uint32_t cell = 0; cell < count; ++cell) {
                model[address + cell] = 0;
            }
        } else if (i % 100 == 99) {
            const std::vector<std::uint64_t> numbers(random() % 200, 5);
            cells.WriteNumbers(address, numbers.data(), static_cast<std::uint32_t>(numbers.size()));
            for (std::uint32_t cell = 0; cell < numbers.size(); ++cell) {
                model[address + cell] = 5;
            }
        } else if (random() % 4 == 0) {
            EXPECT_TRUE(cells.Read(address) == word(model[address]));
        } else {
            const auto seed = static_cast<std::uint32_t>(random());
            cells.Write(address, word(seed));
            model[address] = seed;
        }
    }
    ASSERT_EQ(cells.size(), model.size());
    for (const auto& [first, last] : {std::pair(0U, 0xFFFFFFFFU), std::pair(1000U, 2500U), std::pair(64U, 127U)}) {
        auto expected = model.lower_bound(first);
        cells.VisitCells(first, last, [&](std::uint32_t address, const CWord& value) {
            ASSERT_EQ(address, expected->first);
            EXPECT_TRUE(value == word(expected->second)) << address;
            ++expected;
        });
        EXPECT_TRUE(expected == model.upper_bound(last));
    }

    CSparseCells zeros; // would not fit one by one
    zeros.FillZero(1, 0xFFFFFFFE);
    zeros.Write(0x80000000, CWord(1));
    EXPECT_EQ(zeros.size(), 0xFFFFFFFE);
    EXPECT_EQ(zeros.count(0) + zeros.count(1) + zeros.count(0xFFFFFFFE) + zeros.count(0xFFFFFFFF), 2U);
    EXPECT_TRUE(zeros.Read(0x80000000) == CWord(1) && zeros.Read(0x80000001) == CWord());
}

} // namespace
