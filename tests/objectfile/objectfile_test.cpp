#include "testfile.h"

#include <fstream>
#include <stdexcept>

using namespace ObjectFile;

namespace {

CSymbol* AddSymbol(CSymbolTable& table, const std::string& name, CSymbol::eType type, CSymbol::eUsage usage,
                   CSection* section, unsigned long long address, int size) {
    auto symbol = std::make_unique<CSymbol>(name, type, section, address);
    symbol->SetUsageType(usage);
    symbol->SetBlockSize(size);
    CSymbol* const added = symbol.get();
    table.AddSymbol(std::move(symbol));
    return added;
}

void AddLineSection(CObjectFile& objectFile) {
    CSection& lines = *objectFile.CreateSection(CSection::TYPE_INFO, VEXON_LINE_SEC_NAME, {16, 2, BO_LITTLE, ""});
    const std::string unit("000000000000030\0\0\1\0\0abc\0\0\0025\0\4\5", 30);
    lines.AddBinaryData(unit.data(), 30);
}

/// One record of every kind: the object whose text is tests/data/every_record.vexon.
void BuildEveryRecord(CObjectFile& objectFile) {
    objectFile.SetEntryPoint(0x1004);
    CSection& text = *objectFile.CreateSection(CSection::TYPE_TEXT, ".text");
    text.SetMemoryByteAddress(0x1000);
    text.SetByteAddressAlignment(4);
    text.AddData("00010010001101000101011001111000");
    text.AddData("1001101010111100");
    CSection& data = *objectFile.CreateSection(CSection::TYPE_DATA, "my data", {12, 2, BO_LITTLE, "dmem"});
    data.SetMemoryByteAddress(0xFFFFFFFFFFFFFFFF);
    data.AddData("010110100101111111");
    CSection& bss = *objectFile.CreateSection(CSection::TYPE_BSS, ".bss", CMemoryOrganization());
    bss.SetWordBitSize(32);
    bss.SetBytesPerWord(4);
    bss.CreateSectionData()->FillZero(16);
    objectFile.CreateSection(CSection::TYPE_DEBUG, ".debug_info");
    objectFile.SetSectionsAreAllocated();
    AddLineSection(objectFile);

    CSymbolTable& table = *objectFile.CreateSymbolTable();
    AddSymbol(table, "local", CSymbol::TYPE_PRIVATE, CSymbol::USAGE_UNDEFINED, &text, 0, 0);
    CSymbol* const function =
        AddSymbol(table, "main entry", CSymbol::TYPE_PUBLIC, CSymbol::USAGE_FUNCTION, &text, 4, 2);
    function->GetExpansionTable().SetHeaderText("the header");
    function->GetExpansionTable().AddLine("one");
    function->GetExpansionTable().AddLine("two");
    AddSymbol(table, "array", CSymbol::TYPE_WEAK, CSymbol::USAGE_OBJECT, &data, 1, 3);
    CSymbol* const puts = AddSymbol(table, "puts", CSymbol::TYPE_EXTERN, CSymbol::USAGE_UNDEFINED, nullptr, 0, 0);
    AddSymbol(table, "prog.c", CSymbol::TYPE_ABSOLUTE, CSymbol::USAGE_FILE, nullptr, 0, 0);
    CSymbol* const common = AddSymbol(table, "shared", CSymbol::TYPE_COMMON, CSymbol::USAGE_OBJECT, &bss, 8, 4);
    common->GetExpansionTable().AddLine("alone");

    CRelocation relocation;
    relocation.m_Address = 1;
    relocation.m_Flags = CRelocation::FLAG_F | CRelocation::FLAG_SIGNED | CRelocation::FLAG_MASK;
    relocation.m_SizeInBytes = 2;
    relocation.m_LowBit = 3;
    relocation.m_HighBit = 12;
    relocation.m_OffsetValue = -5;
    relocation.m_ShiftAmount = -2;
    relocation.m_Mask = 0xFFFFFFFFFFFFFF00;
    relocation.m_Symbol = puts;
    text.AddRelocation(relocation);
    CRelocation relative;
    relative.m_Flags = CRelocation::FLAG_RELATIVE;
    relative.m_SizeInBytes = 1;
    relative.m_Symbol = function;
    text.AddRelocation(relative);
    relative.m_Symbol = common;
    data.AddRelocation(relative);
}

} // namespace

TEST(ObjectFile, TextOfAnEmptyObject) {
    CObjectFile objectFile;
    const std::string expected = "AgT62kG9y7\n"
                                 "2014.03.07:16:05:59\t// timestamp\n"
                                 "0\t// set to 1, if memory organization information specified here is valid \n"
                                 "0\n"
                                 "\t// address space name\n"
                                 "0\t// word bit-size\n"
                                 "0\t// bytes per word\n"
                                 "1\t// byte order, 0-little, 1-big, or invalid if me. org. info is not valid\n"
                                 "2\n"
                                 "XS\t// flags\n"
                                 "0\t// is entry point set?\n"
                                 "0\t// byte address of entry point\n"
                                 "0\t// section count\n"
                                 "0\t// symbol table count\n"
                                 "0\t// symbol table address\n";
    EXPECT_EQ(Save(objectFile), expected);
    objectFile.CreateSymbolTable(); // a table without symbols is not written
    EXPECT_EQ(Save(objectFile), expected);
    EXPECT_EQ(Save(*Load(expected)), expected);
    EXPECT_EQ(objectFile.RemapToFile(), 15);
}

TEST(ObjectFile, TextOfEveryRecord) {
    const std::string expected = TestData("every_record.vexon");
    CObjectFile objectFile;
    static_cast<CMemoryOrganization&>(objectFile) = {32, 4, BO_BIG, "code"};
    BuildEveryRecord(objectFile);
    EXPECT_EQ(Save(objectFile), expected);
    EXPECT_EQ(Save(objectFile), expected);
    const auto loaded = Load(expected);
    EXPECT_EQ(loaded->GetTimeStamp().GetTime(), -1);
    EXPECT_EQ(loaded->GetLineTable()->GetRows().size(), 2U);
    EXPECT_EQ(loaded->GetSection(2)->GetSectionData()->GetByte(15), "00000000");
    EXPECT_TRUE(loaded->GetSection(2)->GetMemoryOrganizationIsValid()); // inherited from the file
    EXPECT_EQ(loaded->GetSection(0)->GetRelocation(0)->m_Symbol, loaded->GetSymbolTable(0)->GetSymbol(3));
    // What inheritance and the links filled in is written: from then on the text stays as it is.
    const std::string again = Save(*loaded);
    EXPECT_EQ(Save(*Load(again)), again);
    loaded->CheckLinks(); // changes nothing
    EXPECT_EQ(Save(*loaded), again);
    EXPECT_EQ(Lines(again).size(), Lines(expected).size());
}

TEST(ObjectFile, SeveralSymbolTablesAndOverlappingRecords) {
    CObjectFile objectFile(8, 1, BO_BIG, "");
    for (const char* const name : {"a", "b"}) {
        objectFile.CreateSection(CSection::TYPE_TEXT, name)->AddData("10101010");
        objectFile.CreateSymbolTable()->AddSymbol(std::make_unique<CSymbol>("s", CSymbol::TYPE_PUBLIC));
    }
    const std::string text = Save(objectFile);
    EXPECT_EQ(Save(*Load(text)), text);
    EXPECT_EQ(Load(text)->SymbolTablesCount(), 2);

    const CTestFile file;
    COutputStream out(file.Path(), '\n');
    objectFile.GetSection(1)->SetType(CSection::TYPE_NONE);
    try {
        objectFile.SaveToStream(out);
        FAIL();
    } catch (const general_error& error) {
        EXPECT_STREQ(error.what(), "General error: ");
    }
    // Less than a byte of data takes a line, but no record is written for it.
    objectFile.GetSection(1)->SetType(CSection::TYPE_TEXT);
    objectFile.GetSection(0)->ClearData();
    objectFile.GetSection(0)->AddData("101");
    EXPECT_EQ(Lines(Save(objectFile)).at(15 + 2 * 17), "");
}

TEST(ObjectFile, LoadFileTellsOfErrorsInItsOwnWay) {
    CObjectFile objectFile;
    const CTestFile file("no object file\n");
    const std::string output = ErrorOutput([&] {
        try {
            objectFile.LoadFile(file.Path());
            FAIL();
        } catch (const std::exception& error) {
            EXPECT_EQ(typeid(error), typeid(std::exception));
        }
    });
    EXPECT_EQ(output, "Error: Object file " + file.Path() + " contains errors and could not be loaded.\n");
    EXPECT_EQ(objectFile.GetFileName(), file.Path());
    EXPECT_THROW(objectFile.LoadFile("/no/file"), file_error);
    EXPECT_THROW(objectFile.LoadFile("/"), file_error);
}

TEST(ObjectFile, TheDocumentedFileLoads) {
    const std::string document = ReadFile(std::string(MARLUNE_DOCS) + "/vexon-format.md");
    const std::string fence = "```vexon\n";
    const std::size_t begin = document.find(fence) + fence.size();
    const std::string text = document.substr(begin, document.find("```\n", begin) - begin);
    const auto objectFile = Load(text);
    EXPECT_EQ(objectFile->GetEntryPoint(), 256U);
    ASSERT_EQ(objectFile->SectionsCount(), 2);
    const CSection& code = *objectFile->GetSection(0);
    EXPECT_EQ(code.GetMemoryByteAddress(), 256U);
    EXPECT_TRUE(code.GetMemoryByteAddressIsAbsolute());
    EXPECT_EQ(code.GetBinaryData(), (std::vector<char>{'\x12', '\x34', '\x56', '\x78', '\x00', '\x00'}));
    EXPECT_EQ(objectFile->FindSection(".bss")->GetSectionDataByteCount(), 64);
    EXPECT_EQ(code.GetRelocation(0)->m_Symbol->GetName(), "start");
    EXPECT_EQ(Lines(Save(*objectFile)).size(), Lines(text).size());
}

TEST(ObjectFile, ManySectionsSymbolsAndRelocations) {
    constexpr int COUNT = 100000; // anything quadratic would take minutes
    CObjectFile objectFile(8, 1, BO_BIG, "");
    CSymbolTable& table = *objectFile.CreateSymbolTable();
    for (int i = 0; i < COUNT; ++i) {
        const std::string name = std::to_string(i);
        CSection& section = *objectFile.CreateSection(CSection::TYPE_TEXT, name);
        section.AddData("00000001");
        CRelocation relocation;
        relocation.m_SizeInBytes = 1;
        relocation.m_Symbol = AddSymbol(table, name, CSymbol::TYPE_PUBLIC, CSymbol::USAGE_UNDEFINED, &section, 0, 0);
        section.AddRelocation(relocation);
    }
    const CTestFile file;
    ASSERT_TRUE(objectFile.SaveFile(file.Path()));
    CObjectFile loaded;
    loaded.LoadFile(file.Path());
    for (int i = 0; i < COUNT; i += 997) {
        CSection* const section = loaded.FindSection(std::to_string(i));
        EXPECT_EQ(loaded.FindSection(section), i);
        EXPECT_EQ(section->GetRelocation(0)->m_Symbol->GetSection(), section);
    }
}
