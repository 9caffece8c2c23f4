// The two line streams through which every record of an object file is read and written.
#ifndef MARLUNE_OBJECTFILE_STREAMS_H
#define MARLUNE_OBJECTFILE_STREAMS_H

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "objectfile/errors.h"
#include "objectfile/regularfile.h"

namespace ObjectFile {

/// Reads a file line by line and counts the lines consumed since it was opened.
class CInputStream {
public:
    /// No file is open; every read fails with the end-of-file error.
    explicit CInputStream(char delimiter);
    /// Opens `path`; throws as OpenFile does.
    CInputStream(const std::string& path, char delimiter);
    /// Reads a file that is open already, from its beginning.
    CInputStream(CFileHandle file, char delimiter);

    /// Closes the file that is open and opens `path`; returns true. Throws file_error if the file cannot be opened
    /// (OpenRegularFile).
    bool OpenFile(const std::string& path);
    void CloseFile();

    /// The value of the next line: its text up to the first blank or the first "//", without a carriage return at the
    /// line's end. The tab in front of a comment stays in the value. Throws file_error "Unexpected end of file" when
    /// no delimiter follows.
    std::string GetLine();
    /// The first `count` characters of the next line, whatever they are. 0 consumes no line. Throws
    /// std::invalid_argument for a negative count, and invalid_format (the line counter unchanged) if the line is
    /// shorter; a last line without delimiter will do.
    std::string GetLine(int count);

    /// True when no file is open or a read has met the end of the file.
    bool Eof() const { return !m_File || m_Eof; }
    /// Lines consumed since the file was opened.
    int GetLineCounter() const { return m_LineCounter; }
    /// Zero-based number of the line that the last read consumed, or failed on; -1 before the first read.
    int GetLastLine() const { return m_LastLine; }
    char GetDelimiter() const { return m_Delimiter; }
    /// The error that rejects the value of the line just read: its zero-based number and `text`.
    syntax_error Reject(const char* text = "Syntax error") const { return {m_LineCounter - 1, text}; }

    /// Reads and discards lines until the counter is `line`; throws as GetLine().
    void SkipToLine(int line);

    /// The unread bytes that the stream holds: at least `atLeast` of them unless that is more than MAX_PEEK or the
    /// file ends before. They stay valid until the next call.
    std::string_view Peek(std::size_t atLeast);
    /// Consumes `bytes` of what Peek returned, which hold exactly `lines` whole lines.
    void Consume(std::size_t bytes, int lines);

    static constexpr std::size_t MAX_PEEK = std::size_t{1} << 16;

private:
    /// The next line without its delimiter, consumed but not counted; sets m_Eof when no delimiter ends it.
    std::string_view NextLine();
    /// Moves the unread bytes to the buffer's start and reads more after them; false at the end of the file.
    bool Refill();
    void CountLines(int lines);

    CFileHandle m_File;
    std::vector<char> m_Buffer;
    std::size_t m_Begin = 0; // unread bytes of the buffer: [m_Begin, m_End)
    std::size_t m_End = 0;
    int m_LineCounter = 0;
    int m_LastLine = -1;
    char m_Delimiter;
    bool m_Eof = false;
};

/// Writes a file line by line and counts the lines written since it was opened. Writing reports no errors; ask
/// Failed().
class COutputStream {
public:
    explicit COutputStream(char delimiter);
    /// Opens `path`; throws as OpenFile does.
    COutputStream(const std::string& path, char delimiter);
    COutputStream(const COutputStream&) = delete;
    COutputStream& operator=(const COutputStream&) = delete;
    COutputStream(COutputStream&&) = delete;
    COutputStream& operator=(COutputStream&&) = delete;
    ~COutputStream() { CloseFile(); }

    /// Closes the file that is open, then creates or truncates `path`. Throws file_error if the path is empty or the
    /// file cannot be opened.
    void OpenFile(const std::string& path);
    /// Writes what is still buffered and closes the file.
    void CloseFile();

    /// Writes `text` and the delimiter as one line.
    void WriteLine(std::string_view text);
    /// Writes `value`, the comment separator, `description` and the delimiter as one line.
    void WriteLine(std::string_view value, std::string_view description);
    /// Writes bytes as they are, without a delimiter and without counting.
    void Write(const char* bytes, std::size_t count);
    /// Ends a line whose bytes were passed to Write.
    void EndLine();

    /// Lines written since the file was opened.
    int GetLineCounter() const { return m_LineCounter; }
    /// True once writing or closing the file opened last has failed, for instance on a full disk. Complete after
    /// CloseFile().
    bool Failed() const { return m_Failed; }

private:
    void Flush();

    CFileHandle m_File;
    std::vector<char> m_Buffer;
    std::size_t m_Used = 0;
    int m_LineCounter = 0;
    char m_Delimiter;
    bool m_Failed = false;
};

} // namespace ObjectFile

#endif
