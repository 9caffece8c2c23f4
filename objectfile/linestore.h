// Lines of binary digits, held as bits.
#ifndef MARLUNE_OBJECTFILE_LINESTORE_H
#define MARLUNE_OBJECTFILE_LINESTORE_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "objectfile/bitstore.h"
#include "objectfile/streams.h"
#include "objectfile/textlines.h"

namespace ObjectFile {

/// A text whose lines are most often `width` characters long, each '0' or '1'; only the last line may be shorter.
///
/// Implementation note: lines of that form are packed in CBitStore, one bit for each character; zeros that were never
/// written take no memory. Any other line (too short, too long, other characters) is irregular and kept as text in
/// CTextLines. So is a short last line after an irregular one, whose bits would lie far from any other, and a short
/// line or two between irregular ones, so that all share a block. An access finds its chunk of bits in O(log chunks),
/// and an irregular line in O(log lines) and at most 512 steps.
class CLineStore {
public:
    /// `width` is at least 1 for a store to which lines are added.
    explicit CLineStore(int width) : m_Width(width) {}

    int Count() const { return m_Count; }
    /// Characters of a line, which must exist.
    std::int64_t Length(int line) const;
    std::string Text(int line) const { return Text(line, 0, Length(line)); }
    /// `count` characters from `first` on, all of them in the line.
    std::string Text(int line, std::int64_t first, std::int64_t count) const;
    /// Replaces a line, which must exist.
    void Set(int line, std::string_view text);
    /// Replaces `count` characters of a line from `first` on, all of them in the line.
    void Replace(int line, std::int64_t first, std::int64_t count, std::string_view text);

    void Add(std::string_view text);
    /// Adds the lines at the beginning of `text` that have the common form and end in the delimiter or in a carriage
    /// return and the delimiter, at most `wanted` of them. Returns the characters that they occupy.
    std::size_t AddRun(std::string_view text, char delimiter, int wanted);
    /// Adds lines of zeros, the last with `lastLength` (1 to width) characters.
    void AddZeros(int lines, int lastLength);
    /// Appends characters to the last line, which must exist.
    void Extend(std::string_view text);
    void ExtendZeros(std::int64_t count);
    /// Appends `count` (1 or more) digits to those of the last line, which is packed, and breaks them into lines. The
    /// first one is in the most significant bit of limbs[0].
    void AppendPacked(const std::uint64_t* limbs, std::int64_t count);
    void Clear();

    void SaveToStream(COutputStream& out) const;

    // What is packed

    bool IsPacked(int line) const { return !m_Irregular.Has(line); }
    /// The first irregular line from `line` on, or -1.
    int NextIrregular(int line) const { return m_Irregular.Next(line); }
    /// Where a packed line begins in the bits.
    std::uint64_t BitPosition(int line) const {
        return static_cast<std::uint64_t>(line) * static_cast<std::uint64_t>(m_Width);
    }
    const CBitStore& Bits() const { return m_Bits; }

private:
    bool IsLast(int line) const { return line == m_Count - 1; }
    void SetIrregular(int line, std::string_view text);
    /// Turns a short last line into an irregular one, because a line is to follow it.
    void FinishLast();
    void Pack(std::uint64_t position, std::string_view text);

    // Invariant: the bits after the last line's end, and those of irregular lines, are 0.
    CBitStore m_Bits; // line i begins at bit i * m_Width
    CTextLines m_Irregular;
    int m_Width;
    int m_Count = 0;
    int m_LastLength = 0; // characters of the last line while that is packed, at most m_Width
};

} // namespace ObjectFile

#endif
