#include "objectfile/objectfileutils.h"
#include "objectfile/streams.h"
#include "testfile.h"

#include <filesystem>
#include <stdexcept>

using namespace ObjectFile;

namespace {

template <typename TAction>
std::string ErrorOf(TAction action) {
    try {
        action();
    } catch (const std::exception& error) {
        return error.what();
    }
    return "no error";
}

} // namespace

TEST(InputStream, CutsALineBeforeItsComment) {
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"12\t// size", "12\t"},
        {"a/b\t// name", "a/b\t"},
        {"a b", "a"},
        {"", ""},
        {" x", ""},
        {"//x", ""},
        {"a\r", "a"},
        {"a\rb", "a\rb"},
        {"a\r\r", "a\r"},
        {"a// b\r", "a"},
        {"a///b c", "a"},
        {"a/ /b", "a/"},
    };
    for (const auto& [line, value] : cases) {
        const CTestFile file(line + "\nnext\n");
        CInputStream in(file.Path(), '\n');
        EXPECT_EQ(in.GetLine(), value) << line;
        EXPECT_EQ(in.GetLineCounter(), 1);
        EXPECT_EQ(in.GetLine(), "next") << line;
    }
}

TEST(InputStream, ReadsTheFirstCharactersOfALine) {
    const CTestFile file("a b // c\r\nabc\nab\nlast");
    CInputStream in(file.Path(), '\n');
    EXPECT_EQ(in.GetLine(0), "");
    EXPECT_EQ(ErrorOf([&] { in.GetLine(-1); }), "Argument is less then zero");
    EXPECT_EQ(in.GetLineCounter(), 0);
    EXPECT_EQ(in.GetLine(9), "a b // c\r");
    EXPECT_EQ(in.GetLine(2), "ab");
    EXPECT_EQ(in.GetLineCounter(), 2);
    EXPECT_EQ(ErrorOf([&] { in.GetLine(3); }), "Invalid string length");
    EXPECT_EQ(in.GetLineCounter(), 2);
    EXPECT_FALSE(in.Eof());
    EXPECT_EQ(in.GetLine(4), "last");
    EXPECT_TRUE(in.Eof());
    EXPECT_EQ(ErrorOf([&] { in.GetLine(1); }), "Invalid string length");
    EXPECT_EQ(ErrorOf([&] { in.GetLine(); }), "Unexpected end of file");
}

TEST(InputStream, LineLongerThanTheBufferAndUnterminatedLastLine) {
    const std::string longLine(3000000, 'x');
    const CTestFile file("first\n" + longLine + "\nshort\nrest");
    CInputStream in(file.Path(), '\n');
    in.SkipToLine(1);
    EXPECT_EQ(in.GetLine(), longLine);
    EXPECT_EQ(in.GetLine(), "short");
    EXPECT_EQ(ErrorOf([&] { in.GetLine(); }), "Unexpected end of file");
    EXPECT_EQ(in.GetLineCounter(), 3);
    in.CloseFile();
    EXPECT_EQ(in.GetLineCounter(), 0);
    EXPECT_TRUE(in.OpenFile(file.Path()));
    EXPECT_EQ(ErrorOf([&] { in.SkipToLine(4); }), "Unexpected end of file");
}

TEST(Streams, FilesThatCannotBeOpened) {
    CInputStream in('\n');
    EXPECT_TRUE(in.Eof());
    EXPECT_EQ(ErrorOf([&] { in.GetLine(); }), "Unexpected end of file");
    const std::string missing = testing::TempDir() + "no/such.file";
    EXPECT_EQ(ErrorOf([&] { in.OpenFile(missing); }), "File '" + missing + "' could not be opened.");
    EXPECT_EQ(ErrorOf([&] { in.OpenFile("/"); }), "File '/' could not be opened.");
    COutputStream out('\n');
    EXPECT_EQ(ErrorOf([&] { out.OpenFile(""); }), "Output file was not set.");
    EXPECT_EQ(ErrorOf([&] { out.OpenFile(missing); }), "Output file could not be opened.");
}

TEST(OutputStream, CountsLinesAndNotesAFullDisk) {
    const CTestFile file;
    COutputStream out(file.Path(), '\n');
    out.WriteLine("a");
    out.WriteLine("b", "note");
    const std::string longLine(1000000, 'y');
    out.WriteLine(longLine);
    EXPECT_EQ(out.GetLineCounter(), 3);
    out.CloseFile();
    EXPECT_FALSE(out.Failed());
    EXPECT_EQ(out.GetLineCounter(), 0);
    EXPECT_EQ(ReadFile(file.Path()), "a\nb\t// note\n" + longLine + "\n");
    if (std::filesystem::exists("/dev/full")) {
        EXPECT_FALSE(CObjectFile().SaveFile("/dev/full"));
    }
}

TEST(Probes, AskForTheMagicLine) {
    const CTestFile object("AgT62kG9y7\n");
    const CTestFile archive("BhF66kG8z4\n");
    const CTestFile unterminated("AgT62kG9y7");
    EXPECT_TRUE(IsObjectFile(object.Path()));
    EXPECT_FALSE(IsArchive(object.Path()));
    EXPECT_TRUE(IsArchive(archive.Path()));
    EXPECT_FALSE(IsObjectFile(archive.Path()));
    testing::internal::CaptureStdout();
    EXPECT_FALSE(IsObjectFile(unterminated.Path()));
    EXPECT_FALSE(IsArchive("/no/file"));
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "Unexpected end of file\nFile '/no/file' could not be opened.\n");
}
