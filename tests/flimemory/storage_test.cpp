// Dense and sparse cells.
#include "src/flimemory/storage.h"

#include <map>
#include <random>

#include <gtest/gtest.h>

#include "tests/simulator/simulator.h"

namespace {

using marlune::foreign::fli::CSparseCells;
using marlune::foreign::fli::CStorage;
using CWord = CStorage::CWord;

TEST(Storage, ChoosesItsRepresentation) {
    const CStorage narrow("top/narrow", 64, 16);
    EXPECT_TRUE(narrow.m_Words64 != nullptr && narrow.m_WordsWide == nullptr);
    const CStorage wide("top/wide", 65, 16);
    EXPECT_TRUE(wide.m_Words64 == nullptr && wide.m_WordsWide != nullptr);
    const CStorage empty("top/empty", 8, 0);
    EXPECT_TRUE(empty.m_Words64 != nullptr);
    for (const unsigned width : {8U, 128U}) {
        const CStorage sparse("top/sparse", width, 0xFFFFFFFF);
        EXPECT_TRUE(sparse.m_Words64 == nullptr && sparse.m_WordsWide == nullptr && sparse.m_Contents.empty());
    }
}

TEST(Storage, KeepsWhatTheRepresentationHolds) {
    const CWord ones(-1);
    CStorage narrow("narrow", 8, 4);
    narrow.Write(3, ones); // not cut to the byte's width, and not negative when it comes back
    EXPECT_TRUE(narrow.Read(3) == CWord::FromUnsigned(0xFFFFFFFFFFFFFFFF));
    EXPECT_TRUE(narrow.Read(2) == CWord());
    CStorage wide("wide", 128, 4);
    wide.Write(3, ones);
    EXPECT_TRUE(wide.Read(3) == ones);
    EXPECT_TRUE(wide.Read(2) == CWord());
    CStorage sparse("sparse", 8, 0xFFFFFFFF);
    sparse.Write(0xFFFFFFFE, ones);
    EXPECT_TRUE(sparse.Read(0xFFFFFFFE) == ones);
    EXPECT_TRUE(sparse.Read(5) == CWord());
    EXPECT_EQ(sparse.m_Contents.count(5), 1U); // reading makes the cell
    EXPECT_EQ(sparse.m_Contents.count(6), 0U);
}

TEST(Storage, ReportsAccessesOutside) {
    CSimulator simulator;
    CStorage dense("top/mem", 8, 16);
    dense.Write(0xFFFFFFFF, CWord(1));
    EXPECT_TRUE(dense.Read(0x80000000) == CWord());
    CStorage sparse("sparse", 8, 0xFFFFFFFF);
    sparse.Write(0xFFFFFFFF, CWord(1));
    EXPECT_TRUE(sparse.m_Contents.empty());
    EXPECT_EQ(simulator.TakeTranscript(),
              "error: 'top/mem': Access outside of memory, address: -1, max value: 16. Not writing anything.\n"
              "error: 'top/mem': Access outside of memory, address: -2147483648, max value: 16. Returning 0.\n"
              "error: 'sparse': Access outside of memory, address: -1, max value: -1. Not writing anything.\n");
}

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
