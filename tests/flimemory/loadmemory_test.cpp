// Loads through windows into every kind of storage, compared with a model.
#include "src/flimemory/loadmemory.h"

#include <random>

#include <gtest/gtest.h>

#include "src/flimemory/storage.h"
#include "tests/flimemory/loadmodel.h"

namespace {

using marlune::foreign::LoadMemory;
using marlune::foreign::fli::CStorage;
using ObjectFile::CMemoryOrganization;
using ObjectFile::CObjectFile;
using ObjectFile::CSection;
using CWord = CStorage::CWord;

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

void Load(CStorage& storage, const CObjectFile& file, unsigned stride = 1, bool includeStackHeap = false) {
    LoadMemory(storage, file, "ram", 0, 0, 0xFFFFFFFF, 0, stride, includeStackHeap);
}

std::string LoadError(CStorage& storage, const CObjectFile& file, unsigned stride = 1) {
    try {
        Load(storage, file, stride);
    } catch (const marlune::exceptions::CGeneralError& error) {
        return error.what();
    }
    return "";
}

TEST(LoadMemory, ChoosesSections) {
    CObjectFile file;
    const struct {
        CSection::eType m_Type;
        const char* m_Name;
        const char* m_Space;
        bool m_Taken;
        bool m_TakenWithStackAndHeap;
    } cases[] = {
        {CSection::TYPE_TEXT, ".text", "ram", true, true},     {CSection::TYPE_DATA, ".data", "ram", true, true},
        {CSection::TYPE_DATA, ".stack", "ram", false, true},   {CSection::TYPE_DATA, ".heap", "ram", false, true},
        {CSection::TYPE_DEBUG, ".debug", "ram", false, false}, {CSection::TYPE_INFO, ".note", "ram", false, false},
        {CSection::TYPE_DATA, ".other", "rom", false, false},  {CSection::TYPE_DATA, ".prefix", "ra", false, false},
    };
    unsigned address = 0;
    for (const auto& row : cases) {
        CSection& section = AddSection(file, address, "10000001", 8, 1, ObjectFile::BO_BIG, row.m_Type, row.m_Name);
        CMemoryOrganization organization;
        organization.InheritMemoryOrganizationValues(CObjectFile(8, 1, ObjectFile::BO_BIG, row.m_Space));
        section.InheritMemoryOrganizationValues(organization);
        ++address;
    }
    for (const bool includeStackHeap : {false, true}) {
        CStorage storage("top/mem", 8, 16);
        Load(storage, file, 1, includeStackHeap);
        address = 0;
        for (const auto& row : cases) {
            const bool taken = includeStackHeap ? row.m_TakenWithStackAndHeap : row.m_Taken;
            EXPECT_TRUE(storage.Read(address) == CWord(taken ? 129 : 0)) << row.m_Name;
            ++address;
        }
    }
}

TEST(LoadMemory, RefusesWhatDoesNotFit) {
    CObjectFile file;
    file.SetFileName("dir/image.obj");
    AddSection(file, 2, "1111111100000001", 8, 1);
    CSection& second = AddSection(file, 8, "0000000000000001", 16, 1);
    CStorage storage("tb/core/mem", 8, 16);
    EXPECT_EQ(LoadError(storage, file), "General error: LAU mismatch: memory 'mem' has different LAU bitwidth (8) than "
                                        "data stored in object file 'dir/image.obj' (16).");
    EXPECT_TRUE(storage.Read(2) == CWord(255)); // what came before stays
    second.SetMemoryByteAddressIsAbsolute(false);
    EXPECT_EQ(LoadError(storage, file), "General error: Loaded file does not contain absolute sections.");
    CObjectFile empty;
    EXPECT_EQ(LoadError(storage, empty, 0), ""); // nothing to divide
    AddSection(empty, 0, "00000001", 8, 1);
    EXPECT_EQ(LoadError(storage, empty, 0), "General error: Stride must be greater than zero.");
}

} // namespace
