// Sections, as far as the model of editing does not cover them.
#include <stdexcept>

#include "tests/objectfile/testfile.h"

using namespace ObjectFile;

TEST(Section, BinaryDataNeedAByteOrder) {
    CSection undefined(CSection::TYPE_DATA, "s", {8, 1, BO_UNDEFINED, ""});
    undefined.AddBinaryData("", 0);
    EXPECT_EQ(undefined.GetSectionData(), nullptr);
    EXPECT_EQ(ErrorOf([&] { undefined.AddBinaryData("x", 1); }),
              "General error: Can not add data to section with UNDEFINED byte order.\n");
    EXPECT_EQ(ErrorOf([&] { undefined.GetBinaryData(); }),
              "General error: Can not load data from section with UNDEFINED byte order.\n");
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
    EXPECT_TRUE(stack.IsStack(false) && !stack.IsHeap(false));
    EXPECT_FALSE(stack.IsStack(true)); // no symbol table
    CSymbolTable& table = *objectFile.CreateSymbolTable();
    auto* const end = new CSymbol("_stack_end", CSymbol::TYPE_PUBLIC, &stack, 64); // owned by the table
    table.AddSymbol(end);
    EXPECT_FALSE(stack.IsStack(true));
    auto* const start = new CSymbol("_stack_start", CSymbol::TYPE_PUBLIC, &stack, 0);
    table.AddSymbol(start);
    EXPECT_TRUE(stack.IsStack(true));
    start->SetMemoryAddress(1);
    EXPECT_FALSE(stack.IsStack(true));
    start->SetMemoryAddress(0);
    end->SetMemoryAddress(65);
    EXPECT_FALSE(stack.IsStack(true));
    stack.SetName(".heap");
    EXPECT_TRUE(stack.IsHeap(false));
}

TEST(SectionData, AddressesOutsideAreRefused) {
    CSectionData data(32, 4);
    data.Add(std::string(48, '1').c_str());
    for (const int address : {-1, 6}) {
        EXPECT_EQ(ErrorOf([&] { data.GetByte(address); }), "Address out of range while reading byte");
        EXPECT_EQ(ErrorOf([&] { data.SetByte(address, "0"); }), "Address out of range while writing byte");
        EXPECT_EQ(ErrorOf([&] { data.GetWord(address); }), "Address out of range while reading word");
        EXPECT_EQ(ErrorOf([&] { data.SetWord(address, "0"); }), "Address out of range while writing word");
    }
    data.FillZero(2000000000);
    EXPECT_THROW(data.FillZero(200000000), general_error);
    CSectionData lines(8, 1);
    lines.Add("1"); // a line without a whole byte
    EXPECT_THROW(lines.FillZero(2147483647), general_error);
    EXPECT_EQ(lines.Count(), 1);
    EXPECT_THROW(CSectionData(0, 0).Add("1"), invalid_format);
    EXPECT_THROW(CSectionData(4, 8).FillZero(1), invalid_format);
}
