// The contents of a section.
#include "objectfile/sectiondata.h"

#include <algorithm>
#include <limits>
#include <stdexcept>

#include "objectfile/bitdigits.h"
#include "objectfile/linestore.h"

namespace ObjectFile {

namespace {

std::int64_t CeilingOf(std::int64_t dividend, std::int64_t divisor) {
    return dividend / divisor + (dividend % divisor != 0 ? 1 : 0);
}

} // namespace

CSectionData::CSectionData(int lineAddress, int byteCount, int wordBitSize, int bytesPerWord)
    : m_Lines(std::make_unique<CLineStore>(wordBitSize)), m_LineAddress(lineAddress), m_ByteCount(byteCount),
      m_WordBitSize(wordBitSize), m_BytesPerWord(bytesPerWord),
      m_ByteBitSize(ByteBitSizeOf(wordBitSize, bytesPerWord)) {}

CSectionData::CSectionData(int wordBitSize, int bytesPerWord) : CSectionData(0, 0, wordBitSize, bytesPerWord) {}

CSectionData::CSectionData(const CSectionData& other)
    : CPersistentObject(other), m_Lines(std::make_unique<CLineStore>(*other.m_Lines)),
      m_LineAddress(other.m_LineAddress), m_ByteCount(other.m_ByteCount), m_WordBitSize(other.m_WordBitSize),
      m_BytesPerWord(other.m_BytesPerWord), m_ByteBitSize(other.m_ByteBitSize) {}

CSectionData::~CSectionData() = default;

int CSectionData::ByteBitSizeOf(int wordBitSize, int bytesPerWord) {
    return wordBitSize > 0 && bytesPerWord > 0 ? wordBitSize / bytesPerWord : 0;
}

int CSectionData::Count() const {
    return m_Lines->Count();
}

// --- The file

void CSectionData::LoadFromStream(CInputStream& in, Queue& /*queue*/) {
    RequireByteSize();
    m_Lines->Clear();
    const auto lines = static_cast<int>(CeilingOf(m_ByteCount, m_BytesPerWord));
    while (Count() < lines) {
        const int before = Count();
        const std::string_view buffered = in.Peek(static_cast<std::size_t>(m_WordBitSize) + 2);
        const std::size_t used = m_Lines->AddRun(buffered, in.GetDelimiter(), lines - before);
        in.Consume(used, Count() - before);
        if (used == 0) {
            m_Lines->Add(in.GetLine());
        }
    }
}

void CSectionData::SaveToStream(COutputStream& out, Queue& /*queue*/) {
    m_Lines->SaveToStream(out);
}

// --- Bytes and words as text

std::string CSectionData::GetByte(int address) const {
    return GetByteDigits(address, 0, m_ByteBitSize);
}

void CSectionData::SetByte(int address, const std::string& text) {
    const CPlace place = Locate(address, "Address out of range while writing byte");
    m_Lines->Replace(place.m_Line, place.m_Position, place.m_Length, text);
}

std::string CSectionData::GetWord(int index) const {
    RequireLine(index, "Address out of range while reading word");
    return m_Lines->Text(index);
}

void CSectionData::SetWord(int index, const std::string& text) {
    RequireLine(index, "Address out of range while writing word");
    m_Lines->Set(index, text);
}

int CSectionData::GetByteLength(int address) const {
    return static_cast<int>(Locate(address, "Address out of range while reading byte").m_Length);
}

std::string CSectionData::GetByteDigits(int address, int first, int count) const {
    const CPlace place = Locate(address, "Address out of range while reading byte");
    const std::int64_t begin = std::min<std::int64_t>(std::max(first, 0), place.m_Length);
    const std::int64_t length = std::min<std::int64_t>(std::max(count, 0), place.m_Length - begin);
    return m_Lines->Text(place.m_Line, place.m_Position + begin, length);
}

CSectionData::CPlace CSectionData::Locate(int address, const char* error) const {
    if (address < 0 || address >= m_ByteCount || m_ByteBitSize < 1 || address / m_BytesPerWord >= Count()) {
        throw std::out_of_range(error);
    }
    const int line = address / m_BytesPerWord;
    const std::int64_t position = static_cast<std::int64_t>(address % m_BytesPerWord) * m_ByteBitSize;
    const std::int64_t rest = m_Lines->Length(line) - position;
    if (rest <= 0) {
        throw std::out_of_range("basic_string::substr");
    }
    return {line, position, std::min<std::int64_t>(rest, m_ByteBitSize)};
}

void CSectionData::RequireByteSize() const {
    if (m_ByteBitSize < 1) {
        throw invalid_format("Invalid memory organization of section data");
    }
}

void CSectionData::RequireLine(int index, const char* error) const {
    if (index < 0 || index >= Count()) {
        throw std::out_of_range(error);
    }
}

// --- Appending

void CSectionData::Add(const char* bits) {
    Add(std::string_view(bits));
}

void CSectionData::Add(std::string_view bits) {
    RequireByteSize();
    const auto count = static_cast<std::int64_t>(bits.size());
    GrowByteCount(count / m_ByteBitSize, CeilingOf(count, m_WordBitSize));
    if (HasOpenLine()) {
        // A part of a byte at the line's end does not count: the line may grow beyond the word.
        const std::int64_t whole = m_Lines->Length(Count() - 1) / m_ByteBitSize * m_ByteBitSize;
        const std::string_view topUp = bits.substr(0, static_cast<std::size_t>(m_WordBitSize - whole));
        m_Lines->Extend(topUp);
        bits.remove_prefix(topUp.size());
    }
    while (!bits.empty()) {
        const std::string_view line = bits.substr(0, static_cast<std::size_t>(m_WordBitSize));
        m_Lines->Add(line);
        bits.remove_prefix(line.size());
    }
}

void CSectionData::AddPacked(const std::uint64_t* limbs, std::int64_t count) {
    if (count < 1) {
        return;
    }
    RequireByteSize();
    if (EndsInWholeBytes()) {
        GrowByteCount(count / m_ByteBitSize, CeilingOf(count, m_WordBitSize));
        m_Lines->AppendPacked(limbs, count);
        return;
    }
    std::string text(static_cast<std::size_t>(count), '0');
    for (std::size_t done = 0; done < text.size(); done += 64) {
        const auto piece = static_cast<unsigned>(std::min<std::size_t>(64, text.size() - done));
        UnpackDigits(*limbs++ >> (64 - piece), piece, &text[done]);
    }
    Add(text);
}

bool CSectionData::HasOpenLine() const {
    if (Count() == 0) {
        return false;
    }
    const std::int64_t length = m_Lines->Length(Count() - 1);
    return length < m_WordBitSize && length >= m_ByteBitSize;
}

bool CSectionData::EndsInWholeBytes() const {
    if (Count() == 0) {
        return true;
    }
    const std::int64_t length = m_Lines->Length(Count() - 1);
    const bool isWhole = length == m_WordBitSize || (HasOpenLine() && length % m_ByteBitSize == 0);
    return m_Lines->IsPacked(Count() - 1) && isWhole;
}

void CSectionData::FillZero(int byteCount) {
    if (byteCount < 1) {
        return;
    }
    RequireByteSize();
    GrowByteCount(byteCount, CeilingOf(byteCount, m_BytesPerWord));
    // Characters of a line that holds so many bytes.
    const auto lengthOf = [this](std::int64_t bytes) {
        return bytes < m_BytesPerWord ? static_cast<int>(bytes * m_ByteBitSize) : m_WordBitSize;
    };
    if (HasOpenLine()) {
        const std::int64_t length = m_Lines->Length(Count() - 1);
        const auto held = static_cast<int>(std::min<std::int64_t>(length / m_ByteBitSize, m_BytesPerWord));
        const int added = std::min(byteCount, m_BytesPerWord - held);
        m_Lines->ExtendZeros(std::max<std::int64_t>(0, lengthOf(std::int64_t{held} + added) - length));
        byteCount -= added;
    }
    if (byteCount > 0) {
        const int rest = byteCount % m_BytesPerWord;
        m_Lines->AddZeros(byteCount / m_BytesPerWord + (rest > 0 ? 1 : 0), lengthOf(rest > 0 ? rest : m_BytesPerWord));
    }
}

void CSectionData::Clear() {
    m_Lines->Clear();
    m_ByteCount = 0;
}

void CSectionData::GrowByteCount(std::int64_t bytes, std::int64_t lines) {
    constexpr int MOST = std::numeric_limits<int>::max();
    if (bytes > MOST - m_ByteCount || lines > MOST - Count()) { // a line may hold less than a byte
        throw general_error("Too many bytes in section data");
    }
    m_ByteCount += static_cast<int>(bytes);
}

} // namespace ObjectFile
