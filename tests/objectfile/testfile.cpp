// Files and texts for the tests.
#include "tests/objectfile/testfile.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include <sys/resource.h>
#include <unistd.h>

namespace {

constexpr const char* TIME_STAMP = "2014.03.07:16:05:59\t// timestamp";

/// In memory where possible: the tests make some ten thousand files.
std::string Folder() {
    return std::filesystem::is_directory("/dev/shm") ? "/dev/shm/" : testing::TempDir();
}

} // namespace

CTestFile::CTestFile(const std::string& text) : m_Path(Folder() + "marlune-XXXXXX") {
    close(mkstemp(m_Path.data()));
    Write(text);
}

CTestFile::~CTestFile() {
    std::remove(m_Path.c_str());
}

void CTestFile::Write(const std::string& text) const {
    std::ofstream(m_Path, std::ios::binary) << text;
}

std::string ReadFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

std::string TestData(const std::string& name) {
    return ReadFile(std::string(MARLUNE_TEST_DATA) + "/" + name);
}

std::vector<std::string> Lines(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(line);
    }
    return lines;
}

std::string Join(const std::vector<std::string>& lines) {
    std::string text;
    for (const std::string& line : lines) {
        text += line + "\n";
    }
    return text;
}

std::string Save(ObjectFile::CObjectFile& objectFile) {
    const CTestFile file;
    EXPECT_TRUE(objectFile.SaveFile(file.Path()));
    std::vector<std::string> lines = Lines(ReadFile(file.Path()));
    lines.at(1) = TIME_STAMP;
    return Join(lines);
}

std::unique_ptr<ObjectFile::CObjectFile> Load(const std::string& text) {
    const CTestFile file(text);
    auto objectFile = std::make_unique<ObjectFile::CObjectFile>();
    ObjectFile::CInputStream in(file.Path(), '\n');
    objectFile->LoadFromStream(in);
    return objectFile;
}

std::string LoadError(const std::string& text) {
    const CTestFile file(text);
    ObjectFile::CObjectFile objectFile;
    ObjectFile::CInputStream in(file.Path(), '\n');
    const auto failure = objectFile.ReadFromStream(in);
    return failure ? (failure->m_Line ? std::to_string(*failure->m_Line) : "-") + ": " + failure->m_Reason : "loaded";
}

long PeakMemory() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}
