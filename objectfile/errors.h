// The exceptions of the object-file library. Besides these it throws std::out_of_range, std::overflow_error and
// std::invalid_argument.
#ifndef MARLUNE_OBJECTFILE_ERRORS_H
#define MARLUNE_OBJECTFILE_ERRORS_H

#include <exception>
#include <string>
#include <utility>

namespace ObjectFile {

/// An exception that holds its whole message.
class CMessageError : public std::exception {
public:
    const char* what() const noexcept override { return m_Message.c_str(); }

protected:
    explicit CMessageError(std::string message) : m_Message(std::move(message)) {}

private:
    std::string m_Message;
};

/// A line of a file holds a value that is not allowed there: "Line 9: Syntax error".
class syntax_error : public CMessageError {
public:
    /// `line` is the zero-based number of the offending line; 0 also where no line can be named.
    syntax_error(int line, const std::string& text)
        : CMessageError("Line " + std::to_string(line) + ": " + text), m_Text(text), m_Line(line) {}

    int GetLine() const { return m_Line; }
    /// The message without the line.
    const std::string& GetText() const { return m_Text; }

private:
    std::string m_Text;
    int m_Line;
};

/// A text that cannot be converted into the value it stands for.
class invalid_format : public CMessageError {
public:
    explicit invalid_format(const std::string& text) : CMessageError(text) {}
};

/// A file that cannot be opened or ends too early.
class file_error : public CMessageError {
public:
    explicit file_error(const std::string& text) : CMessageError(text) {}
};

/// Any other failure; the message is "General error: " and the text.
class general_error : public CMessageError {
public:
    explicit general_error(const std::string& text) : CMessageError("General error: " + text) {}
};

} // namespace ObjectFile

#endif
