// The text form of whole object files.
#include "objectfile/objectfile.h"

#include <algorithm>
#include <filesystem>
#include <tuple>

#include "tests/objectfile/testfile.h"

using namespace ObjectFile;

TEST(ObjectFile, TextOfAnEmptyObject) {
    CObjectFile objectFile(8, 1, BO_UNDEFINED, "");
    const std::string expected = TestData("empty.vexon");
    EXPECT_EQ(Save(objectFile), expected);
    objectFile.CreateSymbolTable(); // a table without symbols is not written
    EXPECT_EQ(Save(objectFile), expected);
    EXPECT_EQ(objectFile.RemapToFile(), 15);
}

TEST(ObjectFile, TextOfEveryRecord) {
    std::vector<std::string> lines = Lines(TestData("every_record.vexon"));
    const auto image = Load(Join(lines));
    EXPECT_EQ(image->GetTimeStamp().GetTime(), -1);
    std::copy(lines.begin() + 2, lines.begin() + 5, lines.begin() + 51); // .bss takes over the file's organization
    EXPECT_EQ(Save(*image), Join(lines));
    EXPECT_EQ(image->GetEntryPoint(), 4100U);
    EXPECT_EQ(image->GetLineTable()->GetRows().size(), 2U);

    CSection& text = *image->FindSection(".text");
    EXPECT_EQ(std::tuple(text.GetType(), text.GetMemoryByteAddressIsAbsolute(), text.GetMemoryByteAddress(),
                         text.GetByteAddressAlignment(), text.GetSectionDataByteCount()),
              std::tuple(CSection::TYPE_TEXT, true, 0x1000U, 4U, 6));
    EXPECT_TRUE(text.HasTheSameMemoryOrganization(CMemoryOrganization(32, 4, BO_BIG, "code")));
    EXPECT_TRUE(image->GetSection(1)->HasTheSameMemoryOrganization(CMemoryOrganization(12, 2, BO_LITTLE, "dmem")));

    const CRelocation& r = *text.GetRelocation(0);
    EXPECT_EQ(std::tuple(r.m_Address, r.m_Flags, r.m_SizeInBytes, r.m_LowBit, r.m_HighBit, r.m_OffsetValue),
              std::tuple(1U, CRelocation::FLAG_F | CRelocation::FLAG_SIGNED | CRelocation::FLAG_MASK, 2, 3, 12, -5));
    EXPECT_EQ(std::tuple(r.m_ShiftAmount, r.m_Mask), std::tuple(-2, 0xFFFFFFFFFFFFFF00));
    EXPECT_EQ(r.m_Symbol, image->GetSymbolTable(0)->FindSymbol("puts"));

    const CSymbol& function = *image->GetSymbolTable(0)->GetSymbol(1);
    EXPECT_EQ(std::tuple(function.GetName(), function.GetType(), function.GetUsageType(), function.GetMemoryAddress(),
                         function.GetBlockSize()),
              std::tuple("main entry", CSymbol::TYPE_PUBLIC, CSymbol::USAGE_FUNCTION, 4U, 2));
    EXPECT_EQ(function.GetSection(), &text);
    EXPECT_EQ(function.GetExpansionTable().GetHeaderText(), "the header");
    EXPECT_EQ(function.GetExpansionTable().GetLines(), (std::vector<std::string>{"one", "two"}));
    EXPECT_EQ(image->GetSymbolTable(0)->GetSymbol(5)->GetExpansionTable().Count(), 1); // one line is no header
}

TEST(ObjectFile, RecordsThatCannotBeSaved) {
    CObjectFile objectFile(8, 1, BO_BIG, "");
    objectFile.CreateSection(CSection::TYPE_TEXT, "a")->AddData("101"); // takes a line, but has no record
    CSection& second = *objectFile.CreateSection(CSection::TYPE_TEXT, "b");
    second.AddData("10101010");
    EXPECT_EQ(Lines(Save(objectFile)).at(15 + 2 * 17), "");
    second.SetType(CSection::TYPE_NONE);
    EXPECT_EQ(ErrorOf([&] { objectFile.SaveFile(CTestFile().Path()); }), "General error: ");
    if (std::filesystem::exists("/dev/full")) {
        EXPECT_FALSE(CObjectFile().SaveFile("/dev/full"));
    }
}

TEST(ObjectFile, TheDocumentedFileLoads) {
    const std::string document = ReadFile(std::string(MARLUNE_DOCS) + "/vexon-format.md");
    const std::string fence = "```vexon\n";
    const std::size_t begin = document.find(fence) + fence.size();
    const std::string text = document.substr(begin, document.find("```\n", begin) - begin);
    const auto objectFile = Load(text);
    EXPECT_EQ(objectFile->FindSection(".text")->GetBinaryData(),
              (std::vector<char>{'\x12', '\x34', '\x56', '\x78', '\x00', '\x00'}));
    EXPECT_EQ(objectFile->FindSection(".bss")->GetSectionDataByteCount(), 64);
    EXPECT_EQ(Lines(Save(*objectFile)).size(), Lines(text).size());
}
