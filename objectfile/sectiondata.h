#ifndef MARLUNE_OBJECTFILE_SECTIONDATA_H
#define MARLUNE_OBJECTFILE_SECTIONDATA_H

#include "objectfile/bitstore.h"
#include "objectfile/persistentobject.h"
#include "objectfile/textlines.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace ObjectFile {

/// The contents of a section as text: a line of '0' and '1' characters for each memory word, the most significant bit
/// first. A line has `word bit-size` characters except possibly the last; byte k of a word is the k-th group of
/// `word bit-size / bytes per word` characters from the left.
///
/// Lines of that form are held as packed bits, lines that were never written (zero-filled contents) take no memory, and
/// any other line (too short, too long, other characters) is kept as the text it is.
class CSectionData : public CPersistentObject {
public:
    /// `byteCount` is the number of bytes that LoadFromStream is to read.
    CSectionData(int lineAddress, int byteCount, int wordBitSize, int bytesPerWord);
    CSectionData(int wordBitSize, int bytesPerWord);

    /// Number of lines, that is of words.
    int Count() const override { return m_LineCount; }
    int GetLineAddress() const override { return m_LineAddress; }
    void SetLineAddress(int lineAddress) override { m_LineAddress = lineAddress; }
    int GetLineSize() const override { return m_LineCount; }
    /// Reads as many lines as the byte count asks for. Throws invalid_format when a word cannot hold the bytes.
    void LoadFromStream(CInputStream& in, Queue& queue) override;
    void SaveToStream(COutputStream& out, Queue& queue) override;

    int GetByteCount() const { return m_ByteCount; }
    int GetWordBitSize() const { return m_WordBitSize; }
    int GetBytesPerWord() const { return m_BytesPerWord; }
    /// Characters (bits) of one byte; 0 when the word bit-size and bytes per word allow none.
    int GetByteBitSize() const { return m_ByteBitSize; }

    /// The characters of byte `address`. Throws std::out_of_range beyond the byte count and beyond the end of a short
    /// line.
    std::string GetByte(int address) const;
    /// Replaces the characters of byte `address` by `text`; throws as GetByte. A text of another length changes the
    /// line's length.
    void SetByte(int address, const std::string& text);
    /// Line `index`; throws std::out_of_range when there is none.
    std::string GetWord(int index) const;
    /// Replaces line `index`, whatever the text; throws std::out_of_range when there is none.
    void SetWord(int index, const std::string& text);

    /// Appends binary digits: tops up the last line when it is short and holds a whole byte, then appends full lines
    /// and a shorter last one. The byte count grows by the digits' number / byte bit-size. Throws invalid_format when
    /// a word cannot hold a byte, general_error when the byte count would exceed an int.
    void Add(const char* bits);
    void Add(std::string_view bits);
    /// The same for `count` digits in packed form, the first in the most significant bit of limbs[0].
    void AddPacked(const std::uint64_t* limbs, std::int64_t count);
    /// Appends `byteCount` bytes of zeros in the same line form, taking no memory for them.
    void FillZero(int byteCount);
    /// Removes all lines; the byte count becomes 0.
    void Clear();

    // Access without texts, for loading memories.

    /// The length of GetByte(address), which throws likewise.
    int GetByteLength(int address) const;
    /// At most `count` characters of byte `address` from its character `first` on; throws as GetByte.
    std::string GetByteDigits(int address, int first, int count) const;
    /// Stores byte `address` in (byte bit-size + 63) / 64 limbs, the least significant first; the byte's first
    /// character is the most significant bit. False, and nothing stored, when the byte is out of range or its line is
    /// not well-formed: GetByte then has its text or its error.
    bool GetByteBits(int address, std::uint64_t* limbs) const;
    /// Stores the bytes first, first + stride, ... as numbers in cells[0], cells[1], ..., at most `count` of them, and
    /// returns how many. It stops before a line that is not well-formed, even if the stride leaps over it, and returns
    /// 0 only where GetByteBits(first) answers false or bytes have more than 64 bits. With `reversed` the byte's last
    /// character is the most significant bit. `stride` is at least 1.
    int CopyBytes(int first, int stride, int count, bool reversed, std::uint64_t* cells) const;
    /// True when bytes [first, first + count) are all inside the data and zeros that were never written, answered
    /// without looking at each.
    bool IsUntouchedZero(int first, int count) const;

private:
    /// Where a byte's characters lie: its line, and their position and number in it.
    struct SPlace {
        int m_Line;
        std::int64_t m_Position;
        std::int64_t m_Length;
    };
    /// Throws as GetByte, with `error` for an address outside the data.
    SPlace Locate(int address, const char* error) const;
    std::uint64_t BitPosition(int line) const {
        return static_cast<std::uint64_t>(line) * static_cast<std::uint64_t>(m_WordBitSize);
    }
    std::int64_t LineLength(int line) const;
    std::string LineText(int line) const;
    bool IsLastLine(int line) const { return line == m_LineCount - 1; }
    void RequireByteSize() const;
    void RequireLine(int index, const char* error) const;

    /// Appends well-formed lines as long as the stream's buffer holds such, at most `wanted`; returns how many.
    int LoadRun(CInputStream& in, int wanted);
    void AddLine(std::string_view text);
    void StoreLine(int line, std::string_view text);
    /// Keeps a short last line as text, for a line is to follow it.
    void FinishLastLine();
    /// Do digits that are added follow the last line's without a gap, all in packed form?
    bool EndsInWholeBytes() const;
    /// Characters that the last line takes before a new line begins.
    std::int64_t TopUpRoom() const;
    void AppendToLastLine(std::string_view text);
    void GrowByteCount(std::int64_t characters);

    std::string UnpackText(std::uint64_t position, std::int64_t length) const;
    void PackText(std::uint64_t position, std::string_view text);

    bool IsContiguous() const { return m_WordBitSize == m_BytesPerWord * m_ByteBitSize; }
    /// Behind the last of the bytes from `address` on that GetByteBits can answer.
    std::int64_t PackedEnd(int address) const;

    // Invariant: packed bits behind the last line's end, and those of lines in m_Irregular, are 0.
    CBitStore m_Bits;       // line i begins at bit i * m_WordBitSize
    CTextLines m_Irregular; // the lines that are not packed
    int m_LineCount = 0;
    int m_LastLength = 0; // characters of the last line while that is packed, at most m_WordBitSize
    int m_LineAddress;
    int m_ByteCount;
    int m_WordBitSize;
    int m_BytesPerWord;
    int m_ByteBitSize;
};

} // namespace ObjectFile

#endif
