// Writing values into the fields of relocations.
#include <climits>
#include <ios>
#include <iostream>
#include <tuple>

#include "tests/objectfile/testfile.h"

using namespace ObjectFile;

namespace {

/// An object file with one section of four zero bytes and a symbol in it.
struct CFixture {
    explicit CFixture(eByteOrder order) : m_ObjectFile(32, 4, order, "") {
        m_ObjectFile.SetFileName("a.vexon");
        m_Section = m_ObjectFile.CreateSection(CSection::TYPE_TEXT, ".text");
        m_Section->CreateSectionData()->FillZero(24);
        m_Relocation.m_Symbol = new CSymbol("sym", CSymbol::TYPE_PUBLIC, m_Section); // owned by the table
        m_ObjectFile.CreateSymbolTable()->AddSymbol(m_Relocation.m_Symbol);
        m_Relocation.m_Address = 16;
        m_Relocation.m_SizeInBytes = 4;
        m_Relocation.m_LowBit = 8;
        m_Relocation.m_HighBit = 15;
    }

    std::string Apply(long long value) {
        m_Warning = ErrorOutput([&] { m_Section->SetRelocData(&m_Relocation, value); });
        return m_Section->GetSectionData()->GetWord(4);
    }

    CObjectFile m_ObjectFile;
    CSection* m_Section = nullptr;
    CRelocation m_Relocation;
    std::string m_Warning;
};

} // namespace

TEST(Relocation, WritesTheFieldAndWarns) {
    const std::string unsignedFit = " on address 10 is too big to fit into 8 bits, value was truncated to ";
    const struct {
        unsigned int m_Flags;
        long long m_Value;
        const char* m_Field; // the eight characters of the field, most significant first
        const char* m_Warning;
    } cases[] = {
        {0, 255, "11111111", ""},
        {0, 300, "00101100", "Warning: Unsigned value 300(12c)%2c"},
        {0, -1, "11111111", "Warning: Unsigned value -1(ffffffffffffffff)%ff"},
        {CRelocation::FLAG_SIGNED, 127, "01111111", ""},
        {CRelocation::FLAG_SIGNED, 200, "01001000", "Warning: Signed value 200(c8)%48"},
        {CRelocation::FLAG_SIGNED, -1, "11111111", ""},
        {CRelocation::FLAG_SIGNED, -200, "10111000", ""}, // below -128, but the rule finds nothing to cut
        {CRelocation::FLAG_SIGNED, -300, "11010100", "Warning: Signed value -300(fffffffffffffed4)%fffffffffffffe54"},
        {CRelocation::FLAG_SIGNED, LLONG_MIN, "10000000", ""},
    };
    for (const auto& test : cases) {
        for (const eByteOrder order : {BO_BIG, BO_LITTLE, BO_UNDEFINED}) {
            SCOPED_TRACE(testing::Message() << test.m_Value << " order " << order);
            CFixture fixture(order);
            fixture.m_Relocation.m_Flags = test.m_Flags;
            const std::string word = "00000000" + std::string(test.m_Field) + "0000000000000000";
            EXPECT_EQ(fixture.Apply(test.m_Value), order == BO_LITTLE ? ReverseEndianess(word) : word);
            std::string warning = test.m_Warning;
            if (!warning.empty()) {
                warning.replace(warning.find('%'), 1, unsignedFit);
                warning += ",(symbol name: 'sym', section name: '.text', obj. file name: 'a.vexon').\n";
                EXPECT_EQ(std::cerr.flags() & std::ios::basefield, std::ios::hex);
            }
            EXPECT_EQ(fixture.m_Warning, warning);
        }
    }
}

TEST(Relocation, FieldsAtTheEdges) {
    CFixture fixture(BO_BIG);
    fixture.m_Relocation.m_Symbol->SetType(CSymbol::TYPE_EXTERN);
    fixture.Apply(256);
    EXPECT_EQ(fixture.m_Warning, "Warning: Unsigned value 256(100) on address 10 is too big to fit into 8 bits, value "
                                 "was truncated to 0,(symbol name: 'sym', section unknown)\n");
    fixture.m_Relocation.m_SizeInBytes = 8; // a field of 64 bits is never checked
    fixture.m_Relocation.m_LowBit = 0;
    fixture.m_Relocation.m_HighBit = 63;
    EXPECT_EQ(fixture.Apply(-2), std::string(32, '1'));
    EXPECT_EQ(fixture.m_Section->GetSectionData()->GetWord(5), std::string(31, '1') + "0");
    EXPECT_EQ(fixture.m_Warning, "");
    const struct {
        int m_Size, m_Low, m_High;
        unsigned long long m_Address;
        std::string m_Error;
    } cases[] = {
        {8, -1, 3, 16, "Relocation bit indices are out of range"},
        {8, 5, 4, 16, "Relocation bit indices are out of range"},
        {0, 0, 0, 17, "Relocation bit indices are out of range"},
        {8, 0, 63, 17, "Address out of range while reading byte"},
        {8, 0, 63, 1ULL << 32, "Address out of range while reading byte"},
    };
    for (const auto& test : cases) {
        CRelocation& r = fixture.m_Relocation;
        std::tie(r.m_SizeInBytes, r.m_LowBit, r.m_HighBit, r.m_Address) =
            std::tie(test.m_Size, test.m_Low, test.m_High, test.m_Address);
        EXPECT_EQ(ErrorOf([&] { fixture.m_Section->SetRelocData(&r, 0); }), test.m_Error) << &test - cases;
    }
    CSection lines(CSection::TYPE_DATA, "s", {8, 1, BO_BIG, ""});
    lines.AddData("000000000000000000000000");
    for (int i = 0; i < 3; ++i) {
        lines.GetSectionData()->SetWord(i, "1"); // too short to take what is written
    }
    CRelocation relocation = fixture.m_Relocation;
    std::tie(relocation.m_SizeInBytes, relocation.m_LowBit, relocation.m_HighBit) = std::tuple(3, 0, 2);
    relocation.m_Address = 0;
    EXPECT_EQ(ErrorOf([&] { lines.SetRelocData(&relocation, 0); }), "Address out of range while reading byte");
    EXPECT_EQ(lines.GetSectionData()->GetWord(0), "1");
}
