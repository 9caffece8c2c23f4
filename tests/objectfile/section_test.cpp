#include "testfile.h"

#include <stdexcept>

using namespace ObjectFile;

TEST(Section, BinaryDataFollowTheByteOrder) {
    struct SCase {
        eByteOrder m_Order;
        int m_WordBitSize;
        int m_BytesPerWord;
        std::string m_FirstWord;
        int m_ByteCount;
    };
    const std::vector<SCase> cases = {
        {BO_BIG, 16, 2, "0000000111000000", 3},
        {BO_LITTLE, 16, 2, "1000000000000011", 3},
        {BO_BIG, 8, 2, "00000001", 6},
        {BO_LITTLE, 32, 2, "100000000000001111111111", 1}, // 16-bit bytes: one whole byte and half of another
    };
    for (const SCase& test : cases) {
        CSection section(CSection::TYPE_DATA, "s", {test.m_WordBitSize, test.m_BytesPerWord, test.m_Order, ""});
        const std::vector<char> bytes = {'\x01', '\xC0', '\xFF'};
        section.AddBinaryData(bytes);
        EXPECT_EQ(section.GetSectionData()->GetWord(0), test.m_FirstWord);
        EXPECT_EQ(section.GetSectionDataByteCount(), test.m_ByteCount);
        EXPECT_EQ(section.GetBinaryData(), bytes);
    }
    CSection undefined(CSection::TYPE_DATA, "s", {8, 1, BO_UNDEFINED, ""});
    undefined.AddBinaryData("", 0);
    EXPECT_EQ(undefined.GetSectionData(), nullptr);
    try {
        undefined.AddBinaryData("x", 1);
        FAIL();
    } catch (const general_error& error) {
        EXPECT_STREQ(error.what(), "General error: Can not add data to section with UNDEFINED byte order.\n");
    }
    EXPECT_THROW(undefined.GetBinaryData(), general_error);
}

TEST(SectionDeathTest, AnUnalignedAbsoluteAddressEndsTheProcess) {
    CObjectFile objectFile;
    objectFile.SetFileName("prog.vexon");
    CSection& section = *objectFile.CreateSection(CSection::TYPE_TEXT, ".text");
    section.SetMemoryByteAddress(0x1002);
    section.SetByteAddressAlignment(12);
    section.CheckAbsoluteSectionAddressAlignment(); // not absolute
    objectFile.SetSectionsAreAllocated();
    EXPECT_EXIT(section.CheckAbsoluteSectionAddressAlignment(), testing::ExitedWithCode(1),
                "^Error: absolute address 1002 of a section .text from object file prog.vexon does not match its byte "
                "alignment 12.\n$");
    section.SetByteAddressAlignment(2);
    section.CheckAbsoluteSectionAddressAlignment();
}

TEST(Section, StackAndHeapAreKnownByNameAndSymbols) {
    CObjectFile objectFile(8, 1, BO_BIG, "");
    CSection& stack = *objectFile.CreateSection(CSection::TYPE_BSS, ".stack");
    stack.CreateSectionData()->FillZero(64);
    EXPECT_TRUE(stack.IsStack(false));
    EXPECT_FALSE(stack.IsHeap(false));
    EXPECT_FALSE(stack.IsStack(true)); // no symbol table
    CSymbolTable& table = *objectFile.CreateSymbolTable();
    auto* const start = new CSymbol("_stack_start", CSymbol::TYPE_PUBLIC, &stack, 0); // owned by the table
    auto* const end = new CSymbol("_stack_end", CSymbol::TYPE_PUBLIC, &stack, 64);
    table.AddSymbol(start);
    EXPECT_FALSE(stack.IsStack(true));
    table.AddSymbol(end);
    EXPECT_TRUE(stack.IsStack(true));
    start->SetMemoryAddress(1);
    EXPECT_FALSE(stack.IsStack(true));
    start->SetMemoryAddress(0);
    end->SetMemoryAddress(65);
    EXPECT_FALSE(stack.IsStack(true));
    stack.SetName(".heap");
    EXPECT_TRUE(stack.IsHeap(false));
}

TEST(SectionContainer, NamesAndPositionsFollowEveryChange) {
    CObjectFile objectFile(8, 1, BO_BIG, "");
    EXPECT_EQ(objectFile.FindSection("a"), nullptr);
    EXPECT_THROW(objectFile.GetSection(0), std::out_of_range);
    CSection* const first = objectFile.CreateSection(CSection::TYPE_TEXT, "a");
    CSection* const second = objectFile.CreateSection(CSection::TYPE_DATA, "a");
    EXPECT_EQ(objectFile.FindSection("a"), first);
    auto* const third = new CSection(CSection::TYPE_TEXT, "c", objectFile); // owned by the object file
    objectFile.AddSection(third);
    EXPECT_EQ(third->GetOwner(), &objectFile);
    EXPECT_EQ(objectFile.FindSection("c"), third);
    third->SetName("d");
    EXPECT_EQ(objectFile.FindSection("c"), nullptr);
    EXPECT_EQ(objectFile.FindSection("d"), third);
    auto* const symbol = new CSymbol("s", CSymbol::TYPE_PUBLIC, first); // owned by the table
    objectFile.CreateSymbolTable()->AddSymbol(symbol);
    objectFile.DeleteSection(first);
    EXPECT_EQ(symbol->GetSection(), nullptr);
    EXPECT_EQ(objectFile.FindSection("a"), second);
    EXPECT_EQ(objectFile.FindSection(third), 1);
    EXPECT_THROW(objectFile.GetSection(-1), std::out_of_range);
    EXPECT_THROW(objectFile.GetSection(2), std::out_of_range);
    const CSection stranger;
    EXPECT_THROW(objectFile.FindSection(&stranger), std::out_of_range);
}

TEST(MemoryOrganization, UniformOrganizationAndInheritance) {
    CObjectFile objectFile;
    EXPECT_FALSE(objectFile.TryToSetUniformMemoryOrganization());
    EXPECT_THROW(objectFile.GetStackMemoryOrganization(), general_error);
    EXPECT_THROW(objectFile.GetDataAndDebugMemoryOrganization(), general_error);
    const CMemoryOrganization wide(32, 4, BO_LITTLE, "data");
    CSection* const bss = objectFile.CreateSection(CSection::TYPE_BSS, ".bss", wide);
    CSection* const data = objectFile.CreateSection(CSection::TYPE_TEXT, ".data", {16, 2, BO_BIG, "d"});
    EXPECT_FALSE(objectFile.TryToSetUniformMemoryOrganization());
    EXPECT_EQ(&objectFile.GetStackMemoryOrganization(), bss); // ".data" is of another type
    data->SetType(CSection::TYPE_DATA);
    EXPECT_EQ(&objectFile.GetStackMemoryOrganization(), data);
    CSection* const debug = objectFile.CreateSection(CSection::TYPE_DEBUG, ".debug_info", wide);
    EXPECT_EQ(&objectFile.GetStackMemoryOrganization(), data);
    EXPECT_EQ(&objectFile.GetDataAndDebugMemoryOrganization(), debug);
    objectFile.DeleteSection(data);
    EXPECT_TRUE(objectFile.TryToSetUniformMemoryOrganization());
    EXPECT_TRUE(objectFile.HasTheSameMemoryOrganization(wide));
    EXPECT_EQ(&objectFile.GetStackMemoryOrganization(), &objectFile);
    objectFile.InheritMemoryOrganizationValues(CMemoryOrganization());
    EXPECT_TRUE(objectFile.HasTheSameMemoryOrganization(wide));
}
