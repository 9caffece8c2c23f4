// Files and object files for the tests.
#ifndef MARLUNE_TESTS_OBJECTFILE_TESTFILE_H
#define MARLUNE_TESTS_OBJECTFILE_TESTFILE_H

#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "objectfile/objectfile.h"

/// A file in the temporary folder, removed at the end.
class CTestFile {
public:
    explicit CTestFile(const std::string& text = "");
    CTestFile(const CTestFile&) = delete;
    CTestFile& operator=(const CTestFile&) = delete;
    CTestFile(CTestFile&&) = delete;
    CTestFile& operator=(CTestFile&&) = delete;
    ~CTestFile();

    const std::string& Path() const { return m_Path; }
    void Write(const std::string& text) const;

private:
    std::string m_Path;
};

std::string ReadFile(const std::string& path);
/// The text of tests/data/<name>.
std::string TestData(const std::string& name);
std::vector<std::string> Lines(const std::string& text);
std::string Join(const std::vector<std::string>& lines);

/// The object file's text with the time stamp of TestData's files.
std::string Save(ObjectFile::CObjectFile& objectFile);
/// The text as an object file; throws what LoadFromStream throws.
std::unique_ptr<ObjectFile::CObjectFile> Load(const std::string& text);
/// Where and why the text cannot be loaded, "9: Syntax error", with "-" where no line is named; or "loaded".
std::string LoadError(const std::string& text);

/// Resident memory of this process at its largest, in KiB.
long PeakMemory();

/// By how much it may grow while files claim what they do not hold, in KiB.
#ifdef __SANITIZE_ADDRESS__
constexpr long CLAIM_LIMIT = 500000; // the sanitizer holds freed memory back
#else
constexpr long CLAIM_LIMIT = 60000;
#endif

/// What `action` writes to the standard error stream.
template <typename TAction>
std::string ErrorOutput(TAction action) {
    testing::internal::CaptureStderr();
    action();
    return testing::internal::GetCapturedStderr();
}

/// The message of the exception in which `action` ends, or "no error".
template <typename TAction>
std::string ErrorOf(TAction action) {
    try {
        action();
    } catch (const std::exception& error) {
        return error.what();
    }
    return "no error";
}

#endif
