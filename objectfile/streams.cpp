// The two line streams through which every record of an object file is read and written.
#include "objectfile/streams.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <stdexcept>
#include <utility>

namespace ObjectFile {

namespace {

constexpr std::size_t BUFFER_SIZE = std::size_t{1} << 18;
constexpr std::string_view COMMENT_SEPARATOR = "\t// ";

/// The part of a line before the first blank or the first "//".
std::string_view CutComment(std::string_view line) {
    line = line.substr(0, line.find(' '));
    return line.substr(0, line.find("//"));
}

} // namespace

CInputStream::CInputStream(char delimiter) : m_Delimiter(delimiter) {}

CInputStream::CInputStream(const std::string& path, char delimiter) : m_Delimiter(delimiter) {
    OpenFile(path);
}

CInputStream::CInputStream(CFileHandle file, char delimiter)
    : m_File(std::move(file)), m_Buffer(BUFFER_SIZE), m_Delimiter(delimiter) {}

bool CInputStream::OpenFile(const std::string& path) {
    CloseFile();
    m_File = OpenRegularFile(path);
    if (!m_File) {
        throw file_error("File '" + path + "' could not be opened.");
    }
    m_Buffer.resize(BUFFER_SIZE);
    return true;
}

void CInputStream::CloseFile() {
    m_File.reset();
    m_Begin = 0;
    m_End = 0;
    m_LineCounter = 0;
    m_LastLine = -1;
    m_Eof = false;
}

std::string CInputStream::GetLine() {
    std::string_view line = NextLine();
    if (Eof()) {
        throw file_error("Unexpected end of file");
    }
    CountLines(1);
    if (!line.empty() && line.back() == '\r') {
        line.remove_suffix(1);
    }
    return std::string(CutComment(line));
}

std::string CInputStream::GetLine(int count) {
    if (count < 0) {
        throw std::invalid_argument("Argument is less then zero");
    }
    if (count == 0) {
        return {};
    }
    const std::string_view line = NextLine();
    if (line.size() < static_cast<std::size_t>(count)) {
        throw invalid_format("Invalid string length");
    }
    CountLines(1);
    return std::string(line.substr(0, static_cast<std::size_t>(count)));
}

void CInputStream::SkipToLine(int line) {
    while (m_LineCounter < line) {
        NextLine();
        if (Eof()) {
            throw file_error("Unexpected end of file");
        }
        CountLines(1);
    }
}

std::string_view CInputStream::Peek(std::size_t atLeast) {
    const std::size_t wanted = std::min(atLeast, MAX_PEEK);
    while (m_End - m_Begin < wanted && Refill()) {
    }
    return {m_Buffer.data() + m_Begin, m_End - m_Begin};
}

void CInputStream::Consume(std::size_t bytes, int lines) {
    m_Begin += bytes;
    CountLines(lines);
}

std::string_view CInputStream::NextLine() {
    m_LastLine = m_LineCounter;
    if (Eof()) {
        return {};
    }
    std::size_t searched = 0;
    while (true) {
        const char* line = m_Buffer.data() + m_Begin;
        const std::size_t unread = m_End - m_Begin;
        if (const void* found = std::memchr(line + searched, m_Delimiter, unread - searched)) {
            const auto length = static_cast<std::size_t>(static_cast<const char*>(found) - line);
            m_Begin += length + 1;
            return {line, length};
        }
        searched = unread;
        if (!Refill()) {
            m_Eof = true;
            m_Begin = m_End;
            return {m_Buffer.data() + m_End - unread, unread};
        }
    }
}

bool CInputStream::Refill() {
    if (Eof()) {
        return false;
    }
    if (m_Begin > 0) {
        std::memmove(m_Buffer.data(), m_Buffer.data() + m_Begin, m_End - m_Begin);
        m_End -= m_Begin;
        m_Begin = 0;
    }
    if (m_End == m_Buffer.size()) { // one line fills the whole buffer
        m_Buffer.resize(2 * m_Buffer.size());
    }
    const std::size_t count = std::fread(m_Buffer.data() + m_End, 1, m_Buffer.size() - m_End, m_File.get());
    m_End += count;
    return count > 0;
}

void CInputStream::CountLines(int lines) {
    if (lines > std::numeric_limits<int>::max() - m_LineCounter) {
        throw file_error("Too many lines in file");
    }
    m_LineCounter += lines;
    m_LastLine = m_LineCounter - 1;
}

COutputStream::COutputStream(char delimiter) : m_Delimiter(delimiter) {}

COutputStream::COutputStream(const std::string& path, char delimiter) : m_Delimiter(delimiter) {
    OpenFile(path);
}

void COutputStream::OpenFile(const std::string& path) {
    CloseFile();
    if (path.empty()) {
        throw file_error("Output file was not set.");
    }
    m_File.reset(std::fopen(path.c_str(), "wb"));
    if (!m_File) {
        throw file_error("Output file could not be opened.");
    }
    std::setvbuf(m_File.get(), nullptr, _IONBF, 0); // this class has a buffer of its own
    m_Buffer.resize(BUFFER_SIZE);
    m_Failed = false;
}

void COutputStream::CloseFile() {
    if (m_File) {
        Flush();
        m_Failed = std::fclose(m_File.release()) != 0 || m_Failed;
    }
    m_LineCounter = 0;
}

void COutputStream::WriteLine(std::string_view text) {
    Write(text.data(), text.size());
    EndLine();
}

void COutputStream::WriteLine(std::string_view value, std::string_view description) {
    Write(value.data(), value.size());
    Write(COMMENT_SEPARATOR.data(), COMMENT_SEPARATOR.size());
    Write(description.data(), description.size());
    EndLine();
}

void COutputStream::Write(const char* bytes, std::size_t count) {
    while (m_File && count > 0) {
        const std::size_t part = std::min(count, m_Buffer.size() - m_Used);
        std::memcpy(m_Buffer.data() + m_Used, bytes, part);
        m_Used += part;
        bytes += part;
        count -= part;
        if (m_Used == m_Buffer.size()) {
            Flush();
        }
    }
}

void COutputStream::EndLine() {
    Write(&m_Delimiter, 1);
    if (m_LineCounter < std::numeric_limits<int>::max()) {
        ++m_LineCounter;
    }
}

void COutputStream::Flush() {
    m_Failed = std::fwrite(m_Buffer.data(), 1, m_Used, m_File.get()) != m_Used || m_Failed;
    m_Used = 0;
}

} // namespace ObjectFile
