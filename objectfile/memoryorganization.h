// How the memory is organised that a piece of a program image belongs to.
#ifndef MARLUNE_OBJECTFILE_MEMORYORGANIZATION_H
#define MARLUNE_OBJECTFILE_MEMORYORGANIZATION_H

#include <memory>
#include <string>

#include "objectfile/streams.h"
#include "objectfile/utils.h"

namespace ObjectFile {

/// The organization of the memory that an object file or a section belongs to.
class CMemoryOrganization {
public:
    /// Not valid, nothing known.
    CMemoryOrganization() = default;
    /// Valid. `wordBitSize` in bits; a word has `bytesPerWord` bytes.
    CMemoryOrganization(int wordBitSize, int bytesPerWord, eByteOrder order, const std::string& addressSpaceName);

    /// The name must not hold blanks: a file would keep the part before the first.
    const std::string& GetAddressSpaceName() const;
    void SetAddressSpaceName(const std::string& name);
    int GetWordBitSize() const { return m_WordBitSize; }
    void SetWordBitSize(int bits) { m_WordBitSize = bits; }
    int GetBytesPerWord() const { return m_BytesPerWord; }
    void SetBytesPerWord(int bytes) { m_BytesPerWord = bytes; }
    eByteOrder GetByteOrder() const { return m_ByteOrder; }
    void SetByteOrder(eByteOrder order) { m_ByteOrder = order; }
    /// True when the values hold real information.
    bool GetMemoryOrganizationIsValid() const { return m_Valid; }
    void SetMemoryOrganizationIsValid(bool valid) { m_Valid = valid; }

    bool HasTheSameMemoryOrganization(const CMemoryOrganization& other) const;
    /// Takes over the values of `other` and becomes valid; does nothing if `other` is not valid.
    void InheritMemoryOrganizationValues(const CMemoryOrganization& other);

    /// Six lines. BO_UNDEFINED is written like BO_BIG.
    void SaveMemoryOrganizationToStream(COutputStream& out) const;
    /// Throws syntax_error for a byte order other than 0 and 1, and for a valid record with a word bit-size below 1.
    void LoadMemoryOrganizationFromStream(CInputStream& in);

private:
    std::shared_ptr<const std::string> m_AddressSpaceName; // shared by copies; none when empty
    int m_WordBitSize = 0;
    int m_BytesPerWord = 0;
    eByteOrder m_ByteOrder = BO_UNDEFINED;
    bool m_Valid = false;
};

} // namespace ObjectFile

#endif
