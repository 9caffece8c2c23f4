// The organization of the memory that a piece of a program image belongs to.
#include "objectfile/memoryorganization.h"

namespace ObjectFile {

CMemoryOrganization::CMemoryOrganization(int wordBitSize, int bytesPerWord, eByteOrder order,
                                         const std::string& addressSpaceName)
    : m_WordBitSize(wordBitSize), m_BytesPerWord(bytesPerWord), m_ByteOrder(order), m_Valid(true) {
    SetAddressSpaceName(addressSpaceName);
}

const std::string& CMemoryOrganization::GetAddressSpaceName() const {
    static const std::string NONE;
    return m_AddressSpaceName ? *m_AddressSpaceName : NONE;
}

void CMemoryOrganization::SetAddressSpaceName(const std::string& name) {
    m_AddressSpaceName = name.empty() ? nullptr : std::make_shared<const std::string>(name);
}

bool CMemoryOrganization::HasTheSameMemoryOrganization(const CMemoryOrganization& other) const {
    return m_ByteOrder == other.m_ByteOrder && m_Valid == other.m_Valid && m_WordBitSize == other.m_WordBitSize &&
           m_BytesPerWord == other.m_BytesPerWord && GetAddressSpaceName() == other.GetAddressSpaceName();
}

void CMemoryOrganization::InheritMemoryOrganizationValues(const CMemoryOrganization& other) {
    if (other.m_Valid) {
        *this = other;
    }
}

void CMemoryOrganization::SaveMemoryOrganizationToStream(COutputStream& out) const {
    out.WriteLine(m_Valid ? "1" : "0", "set to 1, if memory organization information specified here is valid ");
    out.WriteLine(std::to_string(GetAddressSpaceName().size()));
    out.WriteLine(GetAddressSpaceName(), "address space name");
    out.WriteLine(Int<int>::ToString(m_WordBitSize, 10), "word bit-size");
    out.WriteLine(Int<int>::ToString(m_BytesPerWord, 10), "bytes per word");
    // BO_UNDEFINED is written as big too and comes back as BO_BIG.
    out.WriteLine(m_ByteOrder == BO_LITTLE ? "0" : "1",
                  "byte order, 0-little, 1-big, or invalid if me. org. info is not valid");
}

void CMemoryOrganization::LoadMemoryOrganizationFromStream(CInputStream& in) {
    m_Valid = Int<int>::Parse(in.GetLine(), 10) != 0;
    const int length = Int<int>::Parse(in.GetLine(), 10);
    if (length < 0) {
        throw in.Reject();
    }
    SetAddressSpaceName(in.GetLine().substr(0, static_cast<std::size_t>(length)));
    m_WordBitSize = Int<int>::Parse(in.GetLine(), 10);
    m_BytesPerWord = Int<int>::Parse(in.GetLine(), 10);
    if (m_Valid && m_WordBitSize < 1) {
        throw in.Reject();
    }
    switch (Int<int>::Parse(in.GetLine(), 10)) {
    case 0:
        m_ByteOrder = BO_LITTLE;
        break;
    case 1:
        m_ByteOrder = BO_BIG;
        break;
    default:
        throw in.Reject();
    }
}

} // namespace ObjectFile
