#include "objectfile/sectiondata.h"

#include "objectfile/bitdigits.h"

#include <algorithm>
#include <array>
#include <limits>
#include <stdexcept>

namespace ObjectFile {

namespace {

constexpr unsigned PIECE = 64; // bits moved at a time

unsigned PieceOf(std::uint64_t count) {
    return static_cast<unsigned>(std::min<std::uint64_t>(count, PIECE));
}

/// The digits of a well-formed line at the start of `text`, with its end: the bytes it occupies, 0 when it is none.
std::size_t WellFormedLineSize(std::string_view text, std::size_t digits, char delimiter) {
    if (text.size() > digits && text[digits] == delimiter) {
        return digits + 1;
    }
    if (text.size() > digits + 1 && text[digits] == '\r' && text[digits + 1] == delimiter) {
        return digits + 2;
    }
    return 0;
}

/// Appends one line of digits; false, and nothing appended, when there is any other character.
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

/// Splits limbs into bytes of BITS bits, which divide 64, from bit `position` on, a multiple of BITS.
template <unsigned BITS>
void SplitLimbs(CBitReader& source, std::uint64_t position, int count, bool reversed, std::uint64_t* cells) {
    constexpr unsigned PER_LIMB = 64 / BITS;
    constexpr std::uint64_t MASK = ~std::uint64_t{0} >> (64 - BITS);
    const auto byteOf = [](std::uint64_t limb, unsigned i) { return limb >> (64 - BITS * (i + 1)) & MASK; };
    const auto reversedByteOf = [](std::uint64_t limb, unsigned i) { return limb >> (BITS * i) & MASK; };
    const auto split = [&](auto get, std::uint64_t limb, unsigned first, unsigned last) {
        for (unsigned i = first; i < last; ++i) {
            *cells++ = get(limb, i);
        }
    };
    auto first = static_cast<unsigned>(position % 64 / BITS);
    for (std::uint64_t index = position / 64; count > 0; ++index, first = 0) {
        const unsigned last = std::min(PER_LIMB, first + static_cast<unsigned>(count));
        count -= static_cast<int>(last - first);
        const std::uint64_t limb = source.Limb(index);
        if (reversed) {
            split(reversedByteOf, ReverseBits(limb), first, last);
        } else {
            split(byteOf, limb, first, last);
        }
    }
}

using CSplit = void (*)(CBitReader&, std::uint64_t, int, bool, std::uint64_t*);

/// The split for a byte bit-size, or none when bytes of that size straddle limbs.
CSplit SplitFor(int byteBitSize) {
    switch (byteBitSize) {
    case 1:
        return SplitLimbs<1>;
    case 2:
        return SplitLimbs<2>;
    case 4:
        return SplitLimbs<4>;
    case 8:
        return SplitLimbs<8>;
    case 16:
        return SplitLimbs<16>;
    case 32:
        return SplitLimbs<32>;
    case 64:
        return SplitLimbs<64>;
    default:
        return nullptr;
    }
}

} // namespace

CSectionData::CSectionData(int lineAddress, int byteCount, int wordBitSize, int bytesPerWord)
    : m_LineAddress(lineAddress), m_ByteCount(byteCount), m_WordBitSize(wordBitSize), m_BytesPerWord(bytesPerWord),
      m_ByteBitSize(wordBitSize > 0 && bytesPerWord > 0 ? wordBitSize / bytesPerWord : 0) {}

CSectionData::CSectionData(int wordBitSize, int bytesPerWord) : CSectionData(0, 0, wordBitSize, bytesPerWord) {}

// --- The file

void CSectionData::LoadFromStream(CInputStream& in, Queue& /*queue*/) {
    RequireByteSize();
    const int byteCount = m_ByteCount;
    Clear();
    m_ByteCount = byteCount;
    const int lines = byteCount / m_BytesPerWord + (byteCount % m_BytesPerWord != 0 ? 1 : 0);
    while (m_LineCount < lines) {
        if (LoadRun(in, lines - m_LineCount) == 0) {
            AddLine(in.GetLine());
        }
    }
}

int CSectionData::LoadRun(CInputStream& in, int wanted) {
    const auto digits = static_cast<std::size_t>(m_WordBitSize);
    const std::string_view buffered = in.Peek(digits + 2);
    std::string_view rest = buffered;
    FinishLastLine();
    CBitAppender out(m_Bits, BitPosition(m_LineCount));
    int lines = 0;
    while (lines < wanted) {
        const std::size_t size = WellFormedLineSize(rest, digits, in.GetDelimiter());
        if (size == 0 || !AppendDigits(out, rest.data(), digits)) {
            break;
        }
        rest.remove_prefix(size);
        ++lines;
    }
    in.Consume(buffered.size() - rest.size(), lines);
    if (lines > 0) {
        m_LineCount += lines;
        m_LastLength = m_WordBitSize;
    }
    return lines;
}

void CSectionData::SaveToStream(COutputStream& out, Queue& /*queue*/) {
    CBitReader bits(m_Bits);
    for (int line = 0; line < m_LineCount; ++line) {
        if (m_Irregular.Has(line)) {
            const std::string_view text = m_Irregular.Get(line);
            out.Write(text.data(), text.size());
            out.EndLine();
        } else {
            const int length = IsLastLine(line) ? m_LastLength : m_WordBitSize;
            WriteDigits(out, bits, BitPosition(line), static_cast<std::uint64_t>(length));
            out.EndLine();
        }
    }
}

// --- Bytes and words as text

std::string CSectionData::GetByte(int address) const {
    return GetByteDigits(address, 0, m_ByteBitSize);
}

void CSectionData::SetByte(int address, const std::string& text) {
    const SPlace place = Locate(address, "Address out of range while writing byte");
    const auto length = static_cast<std::int64_t>(text.size());
    if (length == place.m_Length && IsBinary(text) && !m_Irregular.Has(place.m_Line)) {
        PackText(BitPosition(place.m_Line) + static_cast<std::uint64_t>(place.m_Position), text);
        return;
    }
    std::string line = LineText(place.m_Line);
    line.replace(static_cast<std::size_t>(place.m_Position), static_cast<std::size_t>(place.m_Length), text);
    StoreLine(place.m_Line, line);
}

std::string CSectionData::GetWord(int index) const {
    RequireLine(index, "Address out of range while reading word");
    return LineText(index);
}

void CSectionData::SetWord(int index, const std::string& text) {
    RequireLine(index, "Address out of range while writing word");
    StoreLine(index, text);
}

int CSectionData::GetByteLength(int address) const {
    return static_cast<int>(Locate(address, "Address out of range while reading byte").m_Length);
}

std::string CSectionData::GetByteDigits(int address, int first, int count) const {
    const SPlace place = Locate(address, "Address out of range while reading byte");
    const std::int64_t begin = std::min<std::int64_t>(std::max(first, 0), place.m_Length);
    const std::int64_t length = std::min<std::int64_t>(std::max(count, 0), place.m_Length - begin);
    if (m_Irregular.Has(place.m_Line)) {
        return std::string(
            m_Irregular.Get(place.m_Line)
                .substr(static_cast<std::size_t>(place.m_Position + begin), static_cast<std::size_t>(length)));
    }
    return UnpackText(BitPosition(place.m_Line) + static_cast<std::uint64_t>(place.m_Position + begin), length);
}

CSectionData::SPlace CSectionData::Locate(int address, const char* error) const {
    if (address < 0 || address >= m_ByteCount || m_ByteBitSize < 1 || address / m_BytesPerWord >= m_LineCount) {
        throw std::out_of_range(error);
    }
    const int line = address / m_BytesPerWord;
    const std::int64_t position = static_cast<std::int64_t>(address % m_BytesPerWord) * m_ByteBitSize;
    const std::int64_t rest = LineLength(line) - position;
    if (rest <= 0) {
        throw std::out_of_range("basic_string::substr");
    }
    return {line, position, std::min<std::int64_t>(rest, m_ByteBitSize)};
}

std::int64_t CSectionData::LineLength(int line) const {
    if (m_Irregular.Has(line)) {
        return static_cast<std::int64_t>(m_Irregular.Get(line).size());
    }
    return IsLastLine(line) ? m_LastLength : m_WordBitSize;
}

std::string CSectionData::LineText(int line) const {
    return m_Irregular.Has(line) ? std::string(m_Irregular.Get(line)) : UnpackText(BitPosition(line), LineLength(line));
}

void CSectionData::RequireByteSize() const {
    if (m_ByteBitSize < 1) {
        throw invalid_format("Invalid memory organization of section data");
    }
}

void CSectionData::RequireLine(int index, const char* error) const {
    if (index < 0 || index >= m_LineCount) {
        throw std::out_of_range(error);
    }
}

std::string CSectionData::UnpackText(std::uint64_t position, std::int64_t length) const {
    std::string text(static_cast<std::size_t>(length), '0');
    CBitReader bits(m_Bits);
    for (std::size_t done = 0; done < text.size(); done += PIECE) {
        const unsigned piece = PieceOf(text.size() - done);
        UnpackDigits(bits.Get(position + done, piece), piece, &text[done]);
    }
    return text;
}

void CSectionData::PackText(std::uint64_t position, std::string_view text) {
    while (!text.empty()) {
        const unsigned piece = PieceOf(text.size());
        std::uint64_t bits = 0;
        PackDigits(text.data(), piece, bits);
        m_Bits.Set(position, piece, bits);
        position += piece;
        text.remove_prefix(piece);
    }
}

// --- Appending

void CSectionData::Add(const char* bits) {
    Add(std::string_view(bits));
}

void CSectionData::Add(std::string_view bits) {
    RequireByteSize();
    GrowByteCount(static_cast<std::int64_t>(bits.size()));
    const std::string_view topUp = bits.substr(0, static_cast<std::size_t>(TopUpRoom()));
    if (!topUp.empty()) {
        AppendToLastLine(topUp);
        bits.remove_prefix(topUp.size());
    }
    while (!bits.empty()) {
        const std::string_view line = bits.substr(0, static_cast<std::size_t>(m_WordBitSize));
        AddLine(line);
        bits.remove_prefix(line.size());
    }
}

void CSectionData::AddPacked(const std::uint64_t* limbs, std::int64_t count) {
    if (count < 1) {
        return;
    }
    RequireByteSize();
    if (!EndsInWholeBytes()) {
        std::string text(static_cast<std::size_t>(count), '0');
        for (std::size_t done = 0; done < text.size(); done += PIECE) {
            const unsigned piece = PieceOf(text.size() - done);
            UnpackDigits(*limbs++ >> (PIECE - piece), piece, &text[done]);
        }
        Add(text);
        return;
    }
    GrowByteCount(count);
    const std::int64_t length = m_LineCount == 0 ? 0 : std::int64_t{m_LineCount - 1} * m_WordBitSize + m_LastLength;
    CBitAppender out(m_Bits, static_cast<std::uint64_t>(length));
    const auto whole = static_cast<std::uint64_t>(count) / PIECE;
    out.AppendLimbs(limbs, whole);
    if (const auto rest = static_cast<unsigned>(count % PIECE); rest > 0) {
        out.Append(rest, limbs[whole] >> (PIECE - rest));
    }
    m_LineCount = static_cast<int>((length + count + m_WordBitSize - 1) / m_WordBitSize);
    m_LastLength = static_cast<int>((length + count - 1) % m_WordBitSize + 1);
}

bool CSectionData::EndsInWholeBytes() const {
    if (m_LineCount == 0) {
        return true;
    }
    const bool wholeBytes = m_LastLength % m_ByteBitSize == 0 && m_LastLength >= m_ByteBitSize;
    return !m_Irregular.Has(m_LineCount - 1) && (wholeBytes || m_LastLength == m_WordBitSize);
}

void CSectionData::FillZero(int byteCount) {
    if (byteCount < 1) {
        return;
    }
    RequireByteSize();
    std::int64_t characters = static_cast<std::int64_t>(byteCount) * m_ByteBitSize;
    GrowByteCount(characters);
    if (const std::int64_t topUp = std::min(TopUpRoom(), characters); topUp > 0) {
        const int last = m_LineCount - 1;
        if (!m_Irregular.Has(last) && m_LastLength + topUp <= m_WordBitSize) {
            m_LastLength += static_cast<int>(topUp);
        } else {
            AppendToLastLine(std::string(static_cast<std::size_t>(topUp), '0'));
        }
        characters -= topUp;
    }
    if (characters > 0) {
        FinishLastLine();
        const auto rest = static_cast<int>(characters % m_WordBitSize);
        m_LineCount += static_cast<int>(characters / m_WordBitSize) + (rest > 0 ? 1 : 0);
        m_LastLength = rest > 0 ? rest : m_WordBitSize;
    }
}

void CSectionData::Clear() {
    m_Bits.Free();
    m_Irregular.Clear();
    m_LineCount = 0;
    m_LastLength = 0;
    m_ByteCount = 0;
}

std::int64_t CSectionData::TopUpRoom() const {
    if (m_LineCount == 0) {
        return 0;
    }
    const std::int64_t length = LineLength(m_LineCount - 1);
    if (length >= m_WordBitSize || length < m_ByteBitSize) {
        return 0;
    }
    // A part of a byte at the line's end does not count: the line may grow beyond the word.
    return m_WordBitSize - length / m_ByteBitSize * m_ByteBitSize;
}

void CSectionData::AppendToLastLine(std::string_view text) {
    const int last = m_LineCount - 1;
    const std::int64_t length = LineLength(last) + static_cast<std::int64_t>(text.size());
    if (!m_Irregular.Has(last) && length <= m_WordBitSize && IsBinary(text)) {
        PackText(BitPosition(last) + static_cast<std::uint64_t>(m_LastLength), text);
        m_LastLength = static_cast<int>(length);
    } else {
        StoreLine(last, LineText(last).append(text));
    }
}

void CSectionData::GrowByteCount(std::int64_t characters) {
    const std::int64_t count = m_ByteCount + characters / m_ByteBitSize;
    if (count > std::numeric_limits<int>::max()) {
        throw general_error("Too many bytes in section data");
    }
    m_ByteCount = static_cast<int>(count);
}

void CSectionData::AddLine(std::string_view text) {
    FinishLastLine();
    ++m_LineCount;
    StoreLine(m_LineCount - 1, text);
}

void CSectionData::FinishLastLine() {
    const int last = m_LineCount - 1;
    if (last >= 0 && m_LastLength < m_WordBitSize && !m_Irregular.Has(last)) {
        m_Irregular.Set(last, LineText(last));
        m_Bits.Clear(BitPosition(last), static_cast<std::uint64_t>(m_WordBitSize));
    }
}

void CSectionData::StoreLine(int line, std::string_view text) {
    const auto word = static_cast<std::size_t>(m_WordBitSize);
    m_Bits.Clear(BitPosition(line), word);
    const bool fits = text.size() == word || (IsLastLine(line) && text.size() < word);
    if (!fits || !IsBinary(text)) {
        m_Irregular.Set(line, text);
        return;
    }
    m_Irregular.Erase(line);
    PackText(BitPosition(line), text);
    if (IsLastLine(line)) {
        m_LastLength = static_cast<int>(text.size());
    }
}

// --- Bytes as bits

bool CSectionData::GetByteBits(int address, std::uint64_t* limbs) const {
    if (address < 0 || PackedEnd(address) <= address) {
        return false;
    }
    const int line = address / m_BytesPerWord;
    const std::uint64_t begin = BitPosition(line) + static_cast<std::uint64_t>(address % m_BytesPerWord) *
                                                        static_cast<std::uint64_t>(m_ByteBitSize);
    CBitReader bits(m_Bits);
    auto rest = static_cast<std::uint64_t>(m_ByteBitSize);
    for (; rest > 0; ++limbs) {
        const unsigned piece = PieceOf(rest);
        rest -= piece;
        *limbs = bits.Get(begin + rest, piece);
    }
    return true;
}

int CSectionData::CopyBytes(int first, int stride, int count, bool reversed, std::uint64_t* cells) const {
    if (first < 0 || stride < 1 || count < 1 || m_ByteBitSize > static_cast<int>(PIECE)) {
        return 0;
    }
    const std::int64_t packed = PackedEnd(first) - first;
    const auto copied = static_cast<int>(std::min<std::int64_t>(count, (packed + stride - 1) / stride));
    if (copied < 1) {
        return 0;
    }
    CBitReader bits(m_Bits);
    const auto size = static_cast<unsigned>(m_ByteBitSize);
    const CSplit splitLimbs = SplitFor(m_ByteBitSize);
    if (stride == 1 && IsContiguous() && splitLimbs != nullptr) {
        splitLimbs(bits, static_cast<std::uint64_t>(first) * size, copied, reversed, cells);
        return copied;
    }
    for (int i = 0; i < copied; ++i) {
        const std::int64_t address = first + static_cast<std::int64_t>(i) * stride;
        const std::uint64_t byte = bits.Get(BitPosition(static_cast<int>(address / m_BytesPerWord)) +
                                                static_cast<std::uint64_t>(address % m_BytesPerWord) * size,
                                            size);
        cells[i] = reversed ? ReverseBits(byte) >> (64 - size) : byte;
    }
    return copied;
}

bool CSectionData::IsUntouchedZero(int first, int count) const {
    if (first < 0 || count < 1 || PackedEnd(first) < static_cast<std::int64_t>(first) + count) {
        return false;
    }
    const int firstLine = first / m_BytesPerWord;
    const int lastLine = (first + (count - 1)) / m_BytesPerWord;
    return m_Bits.IsUntouched(BitPosition(firstLine), BitPosition(lastLine) - BitPosition(firstLine) +
                                                          static_cast<std::uint64_t>(m_WordBitSize));
}

std::int64_t CSectionData::PackedEnd(int address) const {
    if (address >= m_ByteCount || m_ByteBitSize < 1) {
        return address;
    }
    std::int64_t end = static_cast<std::int64_t>(m_LineCount) * m_BytesPerWord;
    if (const int irregular = m_Irregular.Next(address / m_BytesPerWord); irregular >= 0) {
        end = static_cast<std::int64_t>(irregular) * m_BytesPerWord;
    } else if (m_LineCount > 0 && m_LastLength < m_WordBitSize) {
        end = static_cast<std::int64_t>(m_LineCount - 1) * m_BytesPerWord +
              std::min(m_LastLength / m_ByteBitSize, m_BytesPerWord);
    }
    return std::min<std::int64_t>(end, m_ByteCount);
}

} // namespace ObjectFile
