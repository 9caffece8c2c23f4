// Lines of binary digits, held as bits.
#include "objectfile/linestore.h"

#include <algorithm>
#include <array>

#include "objectfile/bitdigits.h"

namespace ObjectFile {

namespace {

constexpr unsigned PIECE = 64; // bits moved at a time

unsigned PieceOf(std::uint64_t count) {
    return static_cast<unsigned>(std::min<std::uint64_t>(count, PIECE));
}

/// The characters of a line of so many digits at the beginning of `text`, with its end; 0 if there is none.
std::size_t LineSize(std::string_view text, std::size_t digits, char delimiter) {
    if (text.size() > digits && text[digits] == delimiter) {
        return digits + 1;
    }
    if (text.size() > digits + 1 && text[digits] == '\r' && text[digits + 1] == delimiter) {
        return digits + 2;
    }
    return 0;
}

/// Appends one line of digits; false, and nothing appended, if there is any other character.
bool AppendDigits(CBitAppender& out, const char* text, std::size_t count) {
    std::uint64_t bits = 0;
    if (count <= PIECE) {
        const bool binary = PackDigits(text, static_cast<unsigned>(count), bits);
        if (binary) {
            out.Append(static_cast<unsigned>(count), bits);
        }
        return binary;
    }
    if (!IsBinary({text, count})) {
        return false;
    }
    while (count > 0) {
        const unsigned piece = PieceOf(count);
        PackDigits(text, piece, bits);
        out.Append(piece, bits);
        text += piece;
        count -= piece;
    }
    return true;
}

void WriteDigits(COutputStream& out, CBitReader& bits, std::uint64_t position, std::uint64_t count) {
    std::array<char, PIECE> text{};
    while (count > 0) {
        const unsigned piece = PieceOf(count);
        UnpackDigits(bits.Get(position, piece), piece, text.data());
        out.Write(text.data(), piece);
        position += piece;
        count -= piece;
    }
}

} // namespace

std::int64_t CLineStore::Length(int line) const {
    if (!IsPacked(line)) {
        return static_cast<std::int64_t>(m_Irregular.Get(line).size());
    }
    return IsLast(line) ? m_LastLength : m_Width;
}

std::string CLineStore::Text(int line, std::int64_t first, std::int64_t count) const {
    const auto size = static_cast<std::size_t>(count);
    if (!IsPacked(line)) {
        return std::string(m_Irregular.Get(line).substr(static_cast<std::size_t>(first), size));
    }
    std::string text(size, '0');
    CBitReader bits(m_Bits);
    const std::uint64_t position = BitPosition(line) + static_cast<std::uint64_t>(first);
    for (std::size_t done = 0; done < size; done += PIECE) {
        const unsigned piece = PieceOf(size - done);
        UnpackDigits(bits.Get(position + done, piece), piece, &text[done]);
    }
    return text;
}

void CLineStore::Set(int line, std::string_view text) {
    const auto width = static_cast<std::size_t>(m_Width);
    m_Bits.Clear(BitPosition(line), width);
    const bool fits =
        text.size() == width || (text.size() < width && IsLast(line) && (line == 0 || IsPacked(line - 1)));
    if (!fits || !IsBinary(text)) {
        SetIrregular(line, text);
        return;
    }
    m_Irregular.Erase(line);
    Pack(BitPosition(line), text);
    if (IsLast(line)) {
        m_LastLength = static_cast<int>(text.size());
    }
}

void CLineStore::SetIrregular(int line, std::string_view text) {
    constexpr int MAX_JOINED_WIDTH = 32;
    constexpr int MAX_JOINED_LINES = 2;
    const std::string kept(text); // it may be one of ours
    int first = line;
    while (m_Width <= MAX_JOINED_WIDTH && first > 0 && line - first <= MAX_JOINED_LINES && IsPacked(first - 1)) {
        --first;
    }
    if (first > 0 && line - first <= MAX_JOINED_LINES && !IsPacked(first - 1)) {
        for (; first < line; ++first) {
            m_Irregular.Set(first, Text(first));
            m_Bits.Clear(BitPosition(first), static_cast<std::uint64_t>(m_Width));
        }
    }
    m_Irregular.Set(line, kept);
}

void CLineStore::Replace(int line, std::int64_t first, std::int64_t count, std::string_view text) {
    if (IsPacked(line) && static_cast<std::int64_t>(text.size()) == count && IsBinary(text)) {
        Pack(BitPosition(line) + static_cast<std::uint64_t>(first), text);
        return;
    }
    std::string whole = Text(line);
    whole.replace(static_cast<std::size_t>(first), static_cast<std::size_t>(count), text);
    Set(line, whole);
}

void CLineStore::Add(std::string_view text) {
    FinishLast();
    ++m_Count;
    Set(m_Count - 1, text);
}

std::size_t CLineStore::AddRun(std::string_view text, char delimiter, int wanted) {
    FinishLast();
    const auto digits = static_cast<std::size_t>(m_Width);
    CBitAppender out(m_Bits, BitPosition(m_Count));
    std::string_view rest = text;
    for (; wanted > 0; --wanted) {
        const std::size_t size = LineSize(rest, digits, delimiter);
        if (size == 0 || !AppendDigits(out, rest.data(), digits)) {
            break;
        }
        rest.remove_prefix(size);
        ++m_Count;
        m_LastLength = m_Width;
    }
    return text.size() - rest.size();
}

void CLineStore::AddZeros(int lines, int lastLength) {
    FinishLast();
    m_Count += lines;
    m_LastLength = lastLength;
}

void CLineStore::Extend(std::string_view text) {
    const int last = m_Count - 1;
    const std::int64_t length = Length(last) + static_cast<std::int64_t>(text.size());
    if (IsPacked(last) && length <= m_Width && IsBinary(text)) {
        Pack(BitPosition(last) + static_cast<std::uint64_t>(m_LastLength), text);
        m_LastLength = static_cast<int>(length);
    } else {
        Set(last, Text(last).append(text));
    }
}

void CLineStore::ExtendZeros(std::int64_t count) {
    const int last = m_Count - 1;
    if (IsPacked(last) && m_LastLength + count <= m_Width) {
        m_LastLength += static_cast<int>(count);
    } else {
        Extend(std::string(static_cast<std::size_t>(count), '0'));
    }
}

void CLineStore::AppendPacked(const std::uint64_t* limbs, std::int64_t count) {
    const std::int64_t length = m_Count == 0 ? 0 : std::int64_t{m_Count - 1} * m_Width + m_LastLength;
    CBitAppender out(m_Bits, static_cast<std::uint64_t>(length));
    const auto whole = static_cast<std::uint64_t>(count) / PIECE;
    out.AppendLimbs(limbs, whole);
    if (const auto rest = static_cast<unsigned>(count % PIECE); rest > 0) {
        out.Append(rest, limbs[whole] >> (PIECE - rest));
    }
    m_Count = static_cast<int>((length + count + m_Width - 1) / m_Width);
    m_LastLength = static_cast<int>((length + count - 1) % m_Width + 1);
}

void CLineStore::Clear() {
    m_Bits.Free();
    m_Irregular.Clear();
    m_Count = 0;
    m_LastLength = 0;
}

void CLineStore::SaveToStream(COutputStream& out) const {
    CBitReader bits(m_Bits);
    for (int line = 0; line < m_Count; ++line) {
        if (IsPacked(line)) {
            WriteDigits(out, bits, BitPosition(line),
                        static_cast<std::uint64_t>(IsLast(line) ? m_LastLength : m_Width));
        } else {
            const std::string_view text = m_Irregular.Get(line);
            out.Write(text.data(), text.size());
        }
        out.EndLine();
    }
}

void CLineStore::FinishLast() {
    const int last = m_Count - 1;
    if (last >= 0 && m_LastLength < m_Width && IsPacked(last)) {
        SetIrregular(last, Text(last));
        m_Bits.Clear(BitPosition(last), static_cast<std::uint64_t>(m_Width));
    }
}

void CLineStore::Pack(std::uint64_t position, std::string_view text) {
    while (!text.empty()) {
        const unsigned piece = PieceOf(text.size());
        std::uint64_t bits = 0;
        PackDigits(text.data(), piece, bits);
        m_Bits.Set(position, piece, bits);
        position += piece;
        text.remove_prefix(piece);
    }
}

} // namespace ObjectFile
