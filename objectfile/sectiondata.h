// The contents of a section.
#ifndef MARLUNE_OBJECTFILE_SECTIONDATA_H
#define MARLUNE_OBJECTFILE_SECTIONDATA_H

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "objectfile/persistentobject.h"

namespace ObjectFile {

class CLineStore;

/// The contents of a section as text: a line of '0' and '1' characters for each memory word, the most significant bit
/// first. A line has `word bit-size` characters except possibly the last; byte k of a word is the k-th group of
/// `word bit-size / bytes per word` characters from the left. If the division leaves a remainder, the word's last
/// characters belong to no byte. A byte of a section is a LAU.
class CSectionData : public CPersistentObject {
public:
    /// `byteCount` is the number of bytes that LoadFromStream is to read.
    CSectionData(int lineAddress, int byteCount, int wordBitSize, int bytesPerWord);
    CSectionData(int wordBitSize, int bytesPerWord);
    CSectionData(const CSectionData& other);
    CSectionData& operator=(const CSectionData&) = delete;
    ~CSectionData() override;

    /// Characters (bits) of one byte; 0 if the word bit-size and bytes per word allow none.
    static int ByteBitSizeOf(int wordBitSize, int bytesPerWord);

    /// Number of lines, that is of words.
    int Count() const override;
    int GetLineAddress() const override { return m_LineAddress; }
    void SetLineAddress(int lineAddress) override { m_LineAddress = lineAddress; }
    int GetLineSize() const override { return Count(); }
    /// Reads as many lines as the byte count requires. Throws invalid_format if a word cannot hold the bytes.
    void LoadFromStream(CInputStream& in, Queue& queue) override;
    void SaveToStream(COutputStream& out, Queue& queue) override;

    int GetByteCount() const { return m_ByteCount; }
    int GetByteBitSize() const { return m_ByteBitSize; }

    /// The characters of byte `address`. Throws std::out_of_range beyond the byte count and beyond the end of a short
    /// line.
    std::string GetByte(int address) const;
    /// Replaces the characters of byte `address` by `text`; throws as GetByte. A text of another length changes the
    /// line's length.
    void SetByte(int address, const std::string& text);
    /// Line `index`; throws std::out_of_range if there is none.
    std::string GetWord(int index) const;
    /// Replaces line `index`, whatever the text; throws std::out_of_range if there is none.
    void SetWord(int index, const std::string& text);

    /// Appends binary digits: tops up the last line if it is short and holds a whole byte, then appends full lines
    /// and a shorter last one. The byte count grows by the digits' number / byte bit-size. Throws invalid_format when
    /// a word cannot hold a byte, general_error if the count of bytes or lines would exceed an int.
    void Add(const char* bits);
    void Add(std::string_view bits);
    /// The same for `count` digits in packed form, the first in the most significant bit of limbs[0].
    void AddPacked(const std::uint64_t* limbs, std::int64_t count);
    /// Appends `byteCount` bytes of zeros, first to the last line if that is short and holds a whole byte, and with
    /// each word's last byte also the characters that belong to no byte. Zeros take no memory. Throws as Add.
    void FillZero(int byteCount);
    /// Removes all lines; the byte count becomes 0.
    void Clear();

    // Access without texts, for loading memories (sectionbits.cpp)

    /// The length of GetByte(address); throws as GetByte.
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
    struct CPlace {
        int m_Line;
        std::int64_t m_Position;
        std::int64_t m_Length;
    };
    /// Throws as GetByte, with `error` for an address outside the data.
    CPlace Locate(int address, const char* error) const;
    void RequireByteSize() const;
    void RequireLine(int index, const char* error) const;

    /// Does the last line take further characters? It does if it is short and holds a whole byte.
    bool HasOpenLine() const;
    /// Do digits that are added follow the last line's without a gap, all in packed form?
    bool EndsInWholeBytes() const;
    /// Counts bytes that are added, in at most so many new lines.
    void GrowByteCount(std::int64_t bytes, std::int64_t lines);

    /// The end of the bytes from `address` on that GetByteBits can answer.
    std::int64_t PackedEnd(int address) const;
    /// Where byte `address` begins in the packed bits.
    std::uint64_t BitPosition(std::int64_t address) const;

    std::unique_ptr<CLineStore> m_Lines; // its headers are not installed
    int m_LineAddress;
    int m_ByteCount;
    int m_WordBitSize;
    int m_BytesPerWord;
    int m_ByteBitSize;
};

} // namespace ObjectFile

#endif
