// Decoding of the assembly line table.
#include "objectfile/lineinfo.h"

#include "tests/objectfile/testfile.h"

using namespace ObjectFile;

namespace {

const std::string ZERO(1, '\0');

std::string Number(char code, const std::string& number) {
    return code + number + ZERO;
}

/// A unit with start address 0x01020304 and the right size, or `size` where one is given.
std::string Unit(const std::string& names, const std::string& program, int size = 0) {
    const int right = static_cast<int>(16 + 4 + names.size() + 1 + program.size());
    std::string text = std::to_string(size != 0 ? size : right);
    text.insert(0, 15 - text.size(), '0');
    return text + ZERO + "\1\2\3\4" + names + ZERO + program;
}

struct CFixture {
    explicit CFixture(const std::string& bytes, int wordBitSize = 16, int bytesPerWord = 2)
        : m_ObjectFile(wordBitSize, bytesPerWord, BO_BIG, "") {
        m_ObjectFile.SetFileName("a.vexon");
        CSection& section = *m_ObjectFile.CreateSection(CSection::TYPE_INFO, VEXON_LINE_SEC_NAME);
        for (const char byte : bytes) {
            section.AddData(ConvUnsignToBin(static_cast<unsigned char>(byte), wordBitSize / bytesPerWord).c_str());
        }
        m_Warning = ErrorOutput([this] { m_ObjectFile.PopulateLineInfo(); });
    }

    CObjectFile m_ObjectFile;
    std::string m_Warning;
};

} // namespace

TEST(LineTable, DecodesUnits) {
    const std::string units =
        Unit("one.s" + ZERO + "a blank.s" + ZERO,
             Number('\2', "5") + "\4" + Number('\1', "16") + Number('\3', "1") + Number('\2', "-2") + "\5") +
        Unit("three.s" + ZERO, "\5");
    for (const auto& [word, perWord] : std::vector<std::pair<int, int>>{{16, 2}, {16, 1}, {192, 2}}) {
        const CFixture fixture(units, word, perWord);
        ASSERT_EQ(fixture.m_Warning, "");
        ASSERT_NE(fixture.m_ObjectFile.GetLineTable(), nullptr);
        CLineTable table(fixture.m_ObjectFile);
        for (int i = 0; i < 2; ++i) { // the second time from the beginning
            ASSERT_TRUE(table.PopulateFromMarluneLineSection());
        }
        EXPECT_EQ(table.GetFileNames(), (std::vector<std::string>{"one.s", "a blank.s", "three.s"}));
        const unsigned long long start = word / perWord == 8    ? 0x01020304
                                         : word / perWord == 16 ? 0x0001000200030004
                                                                : 4;
        std::string rows;
        for (const CLineInfo& row : table.GetRows()) {
            rows += std::to_string(row.m_Address - start) + " " + std::to_string(row.m_Line) + " " +
                    std::to_string(row.m_FileIndex) + (row.m_EndOfSequence ? " end\n" : "\n");
        }
        EXPECT_EQ(rows, "0 5 0\n16 3 1 end\n0 0 2 end\n");
    }
}

TEST(LineTable, MalformedContentsAreDroppedWithAWarning) {
    const std::string size = "000000000000030" + ZERO;
    const std::vector<std::pair<std::string, std::string>> cases = {
        {Unit("abc" + ZERO, Number('\2', "5") + "\4\5", 17),
         "General error: CU size does not fit the specified CU size from header."},
        {size.substr(1), "General error: CU size information has invalid length."},
        {"00000000000003x" + ZERO, "General error: Could not convert value stored as a string."},
        {"000000000000016" + ZERO, "General error: CU size has invalid value."},
        {Unit("", "\6"), "General error: Invalid line number automaton code."},
        {Unit("", ZERO), "General error: Invalid line number automaton code."},
        {Unit("a\xC3" + ZERO, "\5"), "General error: Unexpected non-printing character in a string."},
        {Unit("", Number('\1', "99999999999999999999") + "\5"),
         "General error: Could not convert value stored as a string."},
        {size, "Address out of range while reading byte"},
        {Unit("", "\5") + "0", "Address out of range while reading byte"},
    };
    for (const auto& [bytes, error] : cases) {
        const CFixture fixture(bytes);
        EXPECT_EQ(fixture.m_Warning, "Warning: Invalid format of assembly line info in loaded object file a.vexon line "
                                     "information is ignored (" +
                                         error + ").\n");
        EXPECT_EQ(fixture.m_ObjectFile.GetLineTable(), nullptr);
    }
}

TEST(LineTable, SectionsThatCannotHoldOne) {
    EXPECT_EQ(CFixture("", 8, 2).m_Warning, ""); // no data
    EXPECT_EQ(CFixture("1", 8, 2).m_Warning, "Warning (internal error): Assembly line information is present, but "
                                             "sections have byte size smaller than 8 this should not occur.\n");
    CFixture wide("1", 16, 1);
    wide.m_ObjectFile.GetSection(0)->GetSectionData()->SetByte(0, "0000000100000000");
    CLineTable table(wide.m_ObjectFile);
    const std::string warning = ErrorOutput([&] { EXPECT_FALSE(table.PopulateFromMarluneLineSection()); });
    EXPECT_NE(warning.find("(General error: Unsigned character value overflow while reading character data.)"),
              std::string::npos);
    wide.m_ObjectFile.DeleteSection(wide.m_ObjectFile.GetSection(0)); // which the table does not hold any more
    char byte = 0;
    std::string text;
    const std::string none = "General error: There is no assembly line section.";
    EXPECT_EQ(ErrorOf([&] { table.ReadByte(0, &byte); }), none);
    EXPECT_EQ(ErrorOf([&] { table.ReadStringZero(0, &text); }), none);
    EXPECT_EQ(ErrorOf([&] { table.PopulateFromLineCU(0, 0); }), none);
}
