// What becomes of files that are wrong in any of their lines and bytes.
#include "testfile.h"

#include <filesystem>
#include <iostream>
#include <new>
#include <sstream>
#include <stdexcept>

using namespace ObjectFile;

namespace {

/// The good file with line `line` replaced.
std::string WithLine(int line, const std::string& text) {
    std::vector<std::string> lines = Lines(TestData("every_record.vexon"));
    lines.at(static_cast<std::size_t>(line)) = text;
    return Join(lines);
}

/// Loads a damaged file, and when that succeeds saves it too. Only the library's own ways of failing are allowed.
std::string LoadAndSave(const std::string& text) {
    try {
        const auto objectFile = Load(text);
        const CTestFile file;
        objectFile->SaveFile(file.Path());
    } catch (const std::bad_alloc&) {
        return "bad_alloc";
    } catch (const CMessageError& error) {
        return *error.what() != '\0' ? "error" : "no message";
    } catch (const std::out_of_range&) {
        return "error";
    } catch (const std::overflow_error&) {
        return "error";
    } catch (const std::invalid_argument&) {
        return "error";
    }
    return "loaded";
}

class CQuietErrors {
public:
    CQuietErrors() : m_Buffer(std::cerr.rdbuf(m_Sink.rdbuf())) {}
    CQuietErrors(const CQuietErrors&) = delete;
    CQuietErrors& operator=(const CQuietErrors&) = delete;
    CQuietErrors(CQuietErrors&&) = delete;
    CQuietErrors& operator=(CQuietErrors&&) = delete;
    ~CQuietErrors() { std::cerr.rdbuf(m_Buffer); }

private:
    std::ostringstream m_Sink;
    std::streambuf* m_Buffer;
};

} // namespace

TEST(Damage, EveryCutAndEveryFlippedByte) {
    const CQuietErrors quiet;
    const std::string good = TestData("every_record.vexon");
    for (std::size_t size = 0; size < good.size(); ++size) {
        ASSERT_EQ(LoadAndSave(good.substr(0, size)), "error") << size;
    }
    for (const char flip : {'\x01', '\x10', '\x7F'}) {
        for (std::size_t i = 0; i < good.size(); ++i) {
            std::string bad = good;
            bad[i] = static_cast<char>(bad[i] ^ flip);
            const std::string outcome = LoadAndSave(bad);
            ASSERT_TRUE(outcome == "error" || outcome == "loaded") << outcome << " at " << i;
        }
    }
}

TEST(Damage, EachWrongLineIsNamed) {
    struct SCase {
        int m_Line;
        const char* m_Text;
        const char* m_Error;
    };
    const std::vector<SCase> cases = {
        {0, "x", "Line 0: Invalid magic number"},
        {3, "x", "Invalid format of number"},
        {3, "99999999999999999999", "Number is out of range"},
        {3, "-1", "Line 3: Syntax error"},
        {3, "0", "loaded"},
        {5, "0", "Line 6: Syntax error"},
        {7, "2", "Line 7: Syntax error"},
        {8, "1", "Line 9: Syntax error"},
        {8, "2", "Line 9: Syntax error"},
        {8, "-1", "Line 9: Syntax error"},
        {10, "2", "Line 10: Syntax error"},
        {11, "", "Invalid format of number"},
        {12, "6", "Number is out of range"},
        {13, "0", "Line 0: Symbol Table does not exist"},
        {14, "50", "General error: Backward reference in file - wrong object file part address."},
        {14, "100000", "Unexpected end of file"},
        {15, "-1", "Argument is less then zero"},
        {15, "100", "Invalid string length"},
        {21, "3", "loaded"}, // bytes of 10 bits, and 2 bits of a word in none
        {21, "33", "Line 30: Syntax error"},
        {21, "0", "Line 30: Syntax error"},
        {20, "-8", "Line 21: Syntax error"},
        {22, "2", "Line 22: Syntax error"},
        {26, "2", "Line 26: Syntax error"},
        {27, "Q", "Line 27: Syntax error"},
        {27, " ", "Line 27: Syntax error"},
        {27, "", "Invalid string length"},
        {28, "2147483647", "Unexpected end of file"},
        {30, "20", "General error: Backward reference in file - wrong object file part address."},
        {31, "101", "General error: Backward reference in file - wrong object file part address."},
        {100, "01x", "loaded"},
        {120, "0", "Line 121: Syntax error"},
        {120, "5", "Line 121: Syntax error"},
        {121, "ARSM", "Line 121: Syntax error"},
        {121, "FSMF", "Line 121: Syntax error"},
        {121, "RSMF", "loaded"},
        {122, "0", "Line 122: Syntax error"},
        {128, "6", "Line 0: Symbol index does not exist"},
        {128, "-1", "Line 0: Symbol index does not exist"},
        {149, "7", "Unexpected end of file"},
        {153, "Q", "Line 153: Syntax error"},
        {154, "5", "Line 0: Section index does not exist"},
        {154, "-1", "Line 0: Section index does not exist"},
        {157, "0", "Invalid format of number"},
        {158, "Q", "Line 158: Syntax error"},
        {159, "-3", "loaded"},
        {175, "local", "Line 183: Redefinition of symbol"},
    };
    for (const SCase& test : cases) {
        EXPECT_EQ(LoadError(WithLine(test.m_Line, test.m_Text)), test.m_Error) << test.m_Line << ": " << test.m_Text;
    }
}

#ifdef __SANITIZE_ADDRESS__
constexpr long CLAIM_LIMIT = 500000; // KiB; the sanitizer holds freed memory back
#else
constexpr long CLAIM_LIMIT = 60000;
#endif

TEST(Damage, ClaimsTakeNoMemory) {
    const CQuietErrors quiet;
    const long before = PeakMemory();
    const std::vector<std::string> lines = Lines(TestData("every_record.vexon"));
    for (std::size_t i = 0; i < lines.size(); ++i) {
        for (const char* const claim : {"2147483647", "-2147483648", "1000000000", "-1"}) {
            const std::string outcome = LoadAndSave(WithLine(static_cast<int>(i), claim));
            ASSERT_TRUE(outcome == "error" || outcome == "loaded") << i << " " << claim;
        }
    }
    EXPECT_LT(PeakMemory() - before, CLAIM_LIMIT);
}

TEST(Damage, CorpusFiles) {
    const CQuietErrors quiet;
    int files = 0;
    for (const auto& entry : std::filesystem::directory_iterator(MARLUNE_TEST_DATA)) {
        if (entry.path().extension() != ".vexon") {
            continue;
        }
        const std::string outcome = LoadAndSave(ReadFile(entry.path().string()));
        const bool isBad = entry.path().filename().string().rfind("bad_", 0) == 0;
        EXPECT_EQ(outcome, isBad ? "error" : "loaded") << entry.path();
        ++files;
    }
    EXPECT_GT(files, 5);
}
