// Intel HEX and Motorola S-records, as the library libsrecord reads them.
#include <array>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <fstream>

#include <srecord/input/file/intel.h>
#include <srecord/quit.h>
#include <srecord/record.h>
#if __has_include(<srecord/input/file/motorola.h>)
#include <srecord/input/file/motorola.h>
#else
namespace srecord {
/// The library has this class, but some packages leave its header out. Only this function is used.
class input_file_motorola {
public:
    static input_file::pointer create(const std::string& path);
};
} // namespace srecord
#endif

#include "tools/import/readers.h"
#include "tools/text.h"

namespace marlune::tool {
namespace {

// Warnings of the library that are not passed on: about records that are missing but not needed, and about lost
// contents.
const std::string NO_HEADER = "warning: no header record";
const std::string IGNORED_LINE = "warning: ignoring garbage lines";
const std::string WARNING = "warning: ";

/// Receives the library's messages, "path: line: warning: text", and its calls to end the process.
class CMessages : public srecord::quit {
public:
    CMessages(std::string path, const CWarn& warn) : m_Prefix(std::move(path) + ": "), m_Warn(warn) {}

    void message_v(const char* format, va_list arguments) override {
        std::array<char, 2048> buffer{};
        std::vsnprintf(buffer.data(), buffer.size(), format, arguments);
        std::string text = buffer.data();
        if (text.compare(0, m_Prefix.size(), m_Prefix) == 0) {
            text.erase(0, m_Prefix.size());
        }
        char* rest = nullptr;
        m_Line = std::strtol(text.c_str(), &rest, 10);
        m_Text = *rest == ':' ? rest + 2 : text;
        if (m_Text == IGNORED_LINE) {
            throw CReadError(m_Line, "this line is no record");
        }
        if (m_Text.compare(0, WARNING.size(), WARNING) == 0 && m_Text != NO_HEADER) {
            m_Warn("line " + std::to_string(m_Line) + ": " + m_Text.substr(WARNING.size()));
        }
    }

    void exit(int /*status*/) override { throw CReadError(m_Line, m_Text); }

private:
    const std::string m_Prefix;
    const CWarn& m_Warn;
    long m_Line = 0;
    std::string m_Text; // of the last message
};

/// Reads all records with a reader of the library, which `create` makes.
void ReadRecords(const std::string& path, srecord::input_file::pointer (*create)(const std::string& path),
                 CProgram& program, const CWarn& warn) {
    const std::string file = path == "-" ? "./-" : path; // "-" alone is standard input for the library
    CMessages messages(file, warn);
    const auto input = create(file);
    input->set_quit(messages);
    auto pool = std::make_unique<CBytePool>();
    srecord::record record;
    while (input->read(record)) {
        if (record.get_type() == srecord::record::type_data) {
            const auto* const bytes = reinterpret_cast<const char*>(record.get_data());
            program.Add(*pool, record.get_address(), {bytes, record.get_length()});
        } else if (record.get_type() == srecord::record::type_execution_start_address && record.get_address() != 0) {
            program.m_Entry = record.get_address();
        }
    }
    program.m_Source = std::move(pool);
}

/// The library stops at the end record, but a file that was concatenated from others continues.
void RequireNothingAfterEnd(const std::string& path) {
    std::ifstream file(path);
    bool hasEnded = false;
    long number = 0;
    for (std::string line; std::getline(file, line);) {
        ++number;
        if (hasEnded && !line.empty() && line.front() == ':') {
            throw CReadError(number,
                             "a record after the end record; join such files with a tool that knows the format");
        }
        hasEnded = hasEnded || (line.size() > 8 && line.compare(0, 3, ":00") == 0 && line.compare(7, 2, "01") == 0);
    }
}

} // namespace

void ReadIntelHex(const std::string& path, const CImportOptions& /*options*/, CProgram& program, const CWarn& warn) {
    ReadRecords(path, srecord::input_file_intel::create, program, warn);
    RequireNothingAfterEnd(path);
}

void ReadSRecords(const std::string& path, const CImportOptions& /*options*/, CProgram& program, const CWarn& warn) {
    ReadRecords(path, srecord::input_file_motorola::create, program, warn);
}

} // namespace marlune::tool
