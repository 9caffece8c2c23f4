// Loads through windows into every kind of storage, compared with a model.
#include "src/flimemory/loadmemory.h"

#include <random>

#include <gtest/gtest.h>

#include "tests/flimemory/loadmodel.h"

namespace {

using ObjectFile::CObjectFile;

TEST(LoadMemory, AgreesWithAModelOfItsRules) {
    std::mt19937 random(8);
    const std::pair<int, int> words[] = {{8, 1},  {32, 4},  {24, 3},   {12, 1}, {4, 4},
                                         {64, 1}, {128, 1}, {2048, 2}, {8, 4},  {20, 3}};
    for (int round = 0; round < 6000; ++round) {
        const auto [wordBitSize, bytesPerWord] = words[random() % std::size(words)];
        CObjectFile file;
        AddRandomSections(file, random, wordBitSize, bytesPerWord);
        ASSERT_EQ(file.SectionsCount() == 0 ? "" : CheckLoad(file, random), "") << round;
    }
}

} // namespace
