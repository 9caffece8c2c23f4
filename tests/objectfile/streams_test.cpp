// Line streams, files that cannot be opened, and probes of the file type.
#include "objectfile/streams.h"

#include <filesystem>

#include <sys/stat.h>
#include <unistd.h>

#include "elftovexon/elftovexon.h"
#include "objectfile/objectfileutils.h"
#include "tests/objectfile/testfile.h"

using namespace ObjectFile;

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

TEST(Streams, FilesThatCannotBeOpened) {
    CInputStream in('\n');
    EXPECT_TRUE(in.Eof());
    EXPECT_EQ(ErrorOf([&] { in.GetLine(); }), "Unexpected end of file");
    const std::string missing = testing::TempDir() + "no/such.file";
    const CTestFile holes(TestData("elf/everything.elf")); // a gigabyte in a few kilobytes of disk
    ASSERT_EQ(truncate(holes.Path().c_str(), 1L << 30), 0);
    const std::string pipe = holes.Path() + ".pipe"; // which nobody writes
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    for (const std::string& path : {missing, std::string("/"), std::string("/dev/zero"), pipe, holes.Path()}) {
        const std::string error = "File '" + path + "' could not be opened.";
        EXPECT_EQ(ErrorOf([&] { in.OpenFile(path); }), error);
        EXPECT_EQ(ErrorOf([&] { CObjectFile().LoadFile(path); }), error);
        EXPECT_EQ(ErrorOf([&] { ElfToVexon{path.c_str()}; }), "General error: " + error + "\n");
    }
    std::filesystem::remove(pipe);
    COutputStream out('\n');
    EXPECT_EQ(ErrorOf([&] { out.OpenFile(""); }), "Output file was not set.");
    EXPECT_EQ(ErrorOf([&] { out.OpenFile(missing); }), "Output file could not be opened.");
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
