// What becomes of files that are wrong in any of their lines and bytes.
#include <algorithm>
#include <filesystem>
#include <iostream>
#include <random>

#include "tests/objectfile/editmodel.h"
#include "tests/objectfile/imagecheck.h"
#include "tests/objectfile/testfile.h"

using namespace ObjectFile;

namespace {

/// The good file with line `line` replaced.
std::string WithLine(std::size_t line, const std::string& text) {
    std::vector<std::string> lines = Lines(TestData("every_record.vexon"));
    lines.at(line) = text;
    return Join(lines);
}

std::string Outcome(const CTestFile& file, const std::string& bytes) {
    file.Write(bytes);
    return CheckImage(file.Path());
}

void ExpectNoFault(const std::string& outcome, std::size_t where) {
    ASSERT_TRUE(outcome == "error" || outcome == "loaded") << outcome << " at " << where;
}

class CDamage : public testing::Test {
protected:
    CDamage() { std::cerr.setstate(std::ios::failbit); } // the reader's warnings are not of interest
    ~CDamage() override { std::cerr.clear(); }
};

} // namespace

TEST_F(CDamage, EveryCutAndEveryFlippedByte) {
    const CTestFile file;
    for (const char* const name : {"every_record.vexon", "elf/everything.elf"}) {
        const std::string good = TestData(name);
        for (std::size_t i = 0; i < good.size(); ++i) {
            ASSERT_EQ(Outcome(file, good.substr(0, i)), "error") << i;
            std::string bad = good;
            bad[i] = static_cast<char>(bad[i] ^ (i % 2 == 0 ? 0x01 : 0x7F));
            ASSERT_NO_FATAL_FAILURE(ExpectNoFault(Outcome(file, bad), i));
        }
    }
}

TEST_F(CDamage, EachWrongLineIsNamed) {
    const struct {
        std::size_t m_Line;
        const char* m_Text;
        const char* m_Error;
    } cases[] = {
        {0, "x", "0: Invalid magic number"},
        {3, "x", "3: Invalid format of number"},
        {3, "99999999999999999999", "3: Number is out of range"},
        {3, "-1", "3: Syntax error"},
        {5, "0", "6: Syntax error"},
        {7, "2", "7: Syntax error"},
        {8, "1", "9: Syntax error"},
        {10, "2", "10: Syntax error"},
        {13, "0", "-: Symbol Table does not exist"},
        {14, "50", "99: General error: Backward reference in file - wrong object file part address."},
        {14, "100000", "215: Unexpected end of file"},
        {15, "-1", "15: Argument is less then zero"},
        {15, "100", "16: Invalid string length"},
        {21, "33", "30: Syntax error"},
        {21, "3", "loaded"}, // bytes of 10 bits; 2 bits of a word are in none
        {22, "2", "22: Syntax error"},
        {26, "2", "26: Syntax error"},
        {27, "", "27: Invalid string length"},
        {100, "01x", "loaded"},
        {120, "0", "121: Syntax error"},
        {121, "ARSM", "121: Syntax error"},
        {122, "0", "122: Syntax error"},
        {128, "6", "-: Symbol index does not exist"},
        {153, "Q", "153: Syntax error"},
        {154, "5", "-: Section index does not exist"},
        {175, "local", "183: Redefinition of symbol"},
    };
    for (const auto& test : cases) {
        EXPECT_EQ(LoadError(WithLine(test.m_Line, test.m_Text)), test.m_Error) << test.m_Line << ": " << test.m_Text;
    }
}

TEST_F(CDamage, ClaimsTakeNoMemory) {
    const long before = PeakMemory();
    const CTestFile file;
    for (std::size_t i = 0; i < Lines(TestData("every_record.vexon")).size(); ++i) {
        for (const char* const claim : {"2147483647", "-2147483648", "1000000000", "-1"}) {
            ASSERT_NO_FATAL_FAILURE(ExpectNoFault(Outcome(file, WithLine(i, claim)), i));
        }
    }
    EXPECT_LT(PeakMemory() - before, CLAIM_LIMIT);
}

TEST_F(CDamage, EditsAgreeWithANaiveModel) {
    const CTestFile file;
    std::mt19937 random(7);
    for (int round = 0; round < 500; ++round) {
        std::string bytes(400, ' ');
        std::generate(bytes.begin(), bytes.end(), [&] { return static_cast<char>(random()); });
        ASSERT_EQ(RunEdits(bytes, file.Path()), "") << round;
    }
}

TEST_F(CDamage, LongAndIrregularText) {
    std::vector<std::string> lines = Lines(TestData("gigabyte_of_zeros.vexon"));
    std::vector<std::string> saved = lines;
    lines[24] += std::string(3000000, 'x'); // longer than a buffer
    lines[27] = saved[27] = "D\t// section flags";
    lines[28] = saved[28] = "160000\t// section data size in bytes";
    lines[30] = saved[30] = "32\t// first line of section data";
    for (unsigned i = 0; i < 40000; ++i) { // several buffers of lines
        const std::string digits = ConvUnsignToBin(std::uint64_t{i} * 2654435761U, i % 5000 == 17 ? 2 : 32);
        const std::string rest = i % 5000 == 17 ? "\t" : i % 5000 == 18 ? "\rx" : "";
        lines.push_back(digits + rest + (i % 5000 == 17 ? "// short" : i % 999 == 0 ? "\r" : ""));
        saved.push_back(digits + rest);
    }
    EXPECT_EQ(Outcome(CTestFile(), Join(lines)), "loaded");
    EXPECT_TRUE(Save(*Load(Join(lines))) == Join(saved));
}

TEST_F(CDamage, CorpusFiles) {
    const long before = PeakMemory();
    const CTestFile file;
    int files = 0;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(MARLUNE_TEST_DATA)) {
        const std::string extension = entry.path().extension();
        if (extension == ".vexon" || extension == ".elf") {
            const bool isBad = entry.path().filename().string().rfind("bad_", 0) == 0 ||
                               entry.path().parent_path().filename() == "import"; // of other toolchains
            EXPECT_EQ(CheckImage(entry.path()), isBad ? "error" : "loaded") << entry.path();
            ++files;
        } else if (entry.path().parent_path() == MARLUNE_TEST_DATA "/fuzz/image") {
            EXPECT_NO_FATAL_FAILURE(ExpectNoFault(CheckImage(entry.path()), 0)) << entry.path();
        } else if (entry.path().parent_path() == MARLUNE_TEST_DATA "/fuzz/edit") {
            EXPECT_EQ(RunEdits(ReadFile(entry.path()), file.Path()), "") << entry.path();
        }
    }
    EXPECT_GT(files, 15);
    EXPECT_LT(PeakMemory() - before, CLAIM_LIMIT); // one of them holds a gigabyte of zeros
}
