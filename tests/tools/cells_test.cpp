// The image tool's cells.
#include "tools/cells.h"

#include <bitset>
#include <random>

#include <gtest/gtest.h>

#include "tests/flimemory/loadmodel.h"

namespace {

using marlune::tool::CLoadedCells;

TEST(LoadedCells, AgreeWithAModelOfTheLoad) {
    std::mt19937 random(11);
    const std::pair<int, int> words[] = {{8, 1}, {32, 4}, {24, 3}, {12, 1}, {4, 4}, {64, 1}, {128, 1}};
    for (int round = 0; round < 2000; ++round) {
        SCOPED_TRACE("round " + std::to_string(round));
        const auto [wordBitSize, bytesPerWord] = words[random() % 7];
        const auto width = static_cast<unsigned>(wordBitSize / bytesPerWord);
        ObjectFile::CObjectFile file;
        AddRandomSections(file, random, wordBitSize, bytesPerWord);
        const CLoadWindow window = RandomWindow(random);
        const auto size = random() % 4 == 0 ? 0xFFFFFFFF : static_cast<std::uint32_t>(random() % 200);
        const auto expected = ExpectedLoad(file, "ram", window, width, size, false).m_Cells;
        const CLoadedCells cells(file, "ram", width, size, window);

        std::uint64_t loaded = 0;
        for (const CLoadedCells::CRun& run : cells.Runs()) {
            loaded += run.m_End - run.m_First;
            // A piece at a time, of lengths that have nothing to do with those of sections.
            for (std::uint64_t first = run.m_First - std::min<std::uint64_t>(run.m_First, 3); first < run.m_End;) {
                const auto count = static_cast<std::uint32_t>(random() % 7 + 1);
                std::vector<std::uint64_t> limbs(std::size_t{count} * cells.LimbsPerCell(), ~std::uint64_t{0});
                cells.Read(first, count, limbs.data());
                for (std::uint32_t i = 0; i < count; ++i) {
                    const auto found = expected.find(first + i);
                    const std::bitset<128> word(found == expected.end() ? "" : found->second);
                    for (unsigned limb = 0; limb < cells.LimbsPerCell(); ++limb) {
                        const auto wanted =
                            (word >> (std::size_t{64} * limb) & std::bitset<128>(~std::uint64_t{0})).to_ullong();
                        ASSERT_EQ(limbs[i * cells.LimbsPerCell() + limb], wanted) << first + i;
                    }
                    ASSERT_TRUE(word.none() || !cells.IsZero(first, count));
                }
                first += count;
            }
        }
        ASSERT_EQ(loaded, expected.size());
    }
}

} // namespace
