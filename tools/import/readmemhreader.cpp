// The text that Verilog's $readmemh reads: words in hexadecimal, addresses after an "@", comments.
#include <algorithm>

#include "tools/import/readers.h"
#include "tools/text.h"

namespace marlune::tool {
namespace {

constexpr std::size_t BUFFER_SIZE = std::size_t{1} << 18;
constexpr unsigned MOST_ADDRESS_DIGITS = 12; // more than any memory needs, and times the bytes of a word it still fits
constexpr int END = -1;

bool IsBlank(int character) {
    return character == ' ' || (character >= '\t' && character <= '\r');
}

/// 0 to 15, or -1.
int HexValue(int character) {
    if (character >= '0' && character <= '9') {
        return character - '0';
    }
    const int letter = character | 0x20;
    return letter >= 'a' && letter <= 'f' ? letter - 'a' + 10 : -1;
}

bool IsUnknownDigit(int character) {
    const int letter = character | 0x20;
    return letter == 'x' || letter == 'z' || character == '?';
}

/// The characters of a file, with the number of the line, counted from 1.
class CCharacters {
public:
    explicit CCharacters(const std::string& path) : m_File(path), m_Buffer(BUFFER_SIZE) {}

    /// The next character, which stays unread, or END.
    int Peek() {
        if (m_Position == m_End && m_Offset < m_File.Size()) {
            m_End = static_cast<std::size_t>(std::min<std::uint64_t>(BUFFER_SIZE, m_File.Size() - m_Offset));
            m_File.Read(m_Offset, m_Buffer.data(), m_End);
            m_Offset += m_End;
            m_Position = 0;
        }
        return m_Position == m_End ? END : static_cast<unsigned char>(m_Buffer[m_Position]);
    }
    int Take() {
        const int character = Peek();
        m_Position += character == END ? 0 : 1;
        m_Line += character == '\n' ? 1 : 0;
        return character;
    }
    long Line() const { return m_Line; }

private:
    CFileSource m_File;
    std::vector<char> m_Buffer;
    std::size_t m_Position = 0; // in the buffer
    std::size_t m_End = 0;      // of the buffer's contents
    std::uint64_t m_Offset = 0; // in the file, after the buffer's contents
    long m_Line = 1;
};

class CReadMemHReader {
public:
    CReadMemHReader(const std::string& path, unsigned width, bool isBig, CProgram& program)
        : m_In(path), m_Width(width), m_IsBig(isBig), m_Program(program), m_Word((width + 7) / 8, '\0') {
        program.m_WordBytes = (width + 7) / 8;
    }

    void Read(const CWarn& warn) {
        auto pool = std::make_unique<CBytePool>();
        std::uint64_t address = 0;
        while (SkipBlanks()) {
            if (m_In.Peek() == '@') {
                m_In.Take();
                address = TakeAddress();
            } else {
                TakeWord();
                m_Program.Add(*pool, address * m_Program.m_WordBytes, m_Word);
                ++address;
            }
        }
        m_Program.m_Source = std::move(pool);
        if (m_Unknown > 0) {
            warn("line " + std::to_string(m_FirstUnknown) + ": " + Counted(m_Unknown, "digit") +
                 " x or z from here on, taken as 0");
        }
    }

private:
    [[noreturn]] void Fail(const std::string& text) const { throw CReadError(m_In.Line(), text); }

    /// Skips blanks and comments; false at the end of the file.
    bool SkipBlanks() {
        while (true) {
            const int character = m_In.Peek();
            if (character == '/') {
                SkipComment();
            } else if (IsBlank(character)) {
                m_In.Take();
            } else {
                return character != END;
            }
        }
    }

    void SkipComment() {
        m_In.Take();
        const int kind = m_In.Take();
        if (kind == '/') {
            while (m_In.Peek() != END && m_In.Peek() != '\n') {
                m_In.Take();
            }
        } else if (kind == '*') {
            const long line = m_In.Line();
            for (int before = 0; before != '*' || m_In.Peek() != '/';) {
                before = m_In.Take();
                if (before == END) {
                    throw CReadError(line, "a comment without end");
                }
            }
            m_In.Take();
        } else {
            Fail("a '/' that begins no comment");
        }
    }

    bool AtTokenEnd() {
        const int character = m_In.Peek();
        return character == END || character == '/' || IsBlank(character);
    }

    std::uint64_t TakeAddress() {
        std::uint64_t address = 0;
        unsigned digits = 0;
        for (; !AtTokenEnd(); ++digits) {
            const int value = HexValue(m_In.Peek());
            if (value < 0 || digits == MOST_ADDRESS_DIGITS) {
                Fail("@ must be followed by an address of 1 to 12 hexadecimal digits");
            }
            m_In.Take();
            address = address << 4 | static_cast<unsigned>(value);
        }
        if (digits == 0) {
            Fail("@ must be followed by an address, without a blank");
        }
        return address;
    }

    /// Reads the digits of a word and stores its number in m_Word, in the byte order asked for.
    void TakeWord() {
        const std::size_t mostDigits = (m_Width + 3) / 4;
        m_Digits.clear();
        while (!AtTokenEnd()) {
            const int character = m_In.Peek();
            const int value = IsUnknownDigit(character) ? 0 : HexValue(character);
            if (value < 0 && (character != '_' || m_Digits.empty())) {
                Fail("'" + Printable(std::string(1, static_cast<char>(character))) + "' is no hexadecimal digit");
            }
            if (IsUnknownDigit(character)) {
                m_FirstUnknown = m_Unknown++ == 0 ? m_In.Line() : m_FirstUnknown;
            }
            if (value >= 0) {
                m_Digits += static_cast<char>(value);
            }
            if (m_Digits.size() > mostDigits) {
                Fail("a word of more than the " + Counted(mostDigits, "digit") + " of a LAU of " +
                     Counted(m_Width, "bit"));
            }
            m_In.Take();
        }
        if (m_Width % 4 != 0 && m_Digits.size() == mostDigits && m_Digits.front() >> (m_Width % 4) != 0) {
            Fail("a word of more than " + Counted(m_Width, "bit"));
        }
        std::fill(m_Word.begin(), m_Word.end(), '\0');
        for (std::size_t i = 0; i < m_Digits.size(); ++i) { // from the least significant on
            const std::size_t byte = m_IsBig ? m_Word.size() - 1 - i / 2 : i / 2;
            m_Word[byte] = static_cast<char>(m_Word[byte] | m_Digits[m_Digits.size() - 1 - i] << (i % 2 * 4));
        }
    }

    CCharacters m_In;
    const unsigned m_Width;
    const bool m_IsBig;
    CProgram& m_Program;
    std::string m_Digits; // of a word, each as a number
    std::string m_Word;   // the bytes of a word
    std::uint64_t m_Unknown = 0;
    long m_FirstUnknown = 0;
};

} // namespace

void ReadReadMemH(const std::string& path, const CImportOptions& options, CProgram& program, const CWarn& warn) {
    const bool isBig = options.m_Order == ObjectFile::BO_BIG;
    CReadMemHReader(path, LauBits(options), isBig, program).Read(warn);
}

} // namespace marlune::tool
