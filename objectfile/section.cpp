// Sections: the pieces of a program image.
#include "objectfile/section.h"

#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <stdexcept>
#include <string_view>
#include <utility>

#include "objectfile/objectfile.h"

namespace ObjectFile {

const char* const VEXON_LINE_SEC_NAME = ".marlune_line";
const char* const VEXON_AS_SEC_NAME = ".marlune_as";

namespace {

constexpr std::string_view TYPE_LETTERS = " TDBGI"; // indexed by CSection::eType

constexpr int DIGITS_PER_FILE_BYTE = 8;

/// The position of a byte's bit `bit` in its eight digits.
std::size_t DigitOfBit(int bit, eByteOrder order) {
    return static_cast<std::size_t>(order == BO_BIG ? DIGITS_PER_FILE_BYTE - 1 - bit : bit);
}

} // namespace

CSection::CSection(CObjectFile* owner) : m_Owner(owner) {}

CSection::CSection(eType type, std::string name, const CMemoryOrganization& organization, CObjectFile* owner)
    : CMemoryOrganization(organization), m_Name(std::move(name)), m_Owner(owner), m_Type(type) {}

CSection::~CSection() = default;

void CSection::SetName(const std::string& name) {
    if (m_Container != nullptr) {
        m_Container->Rename(*this, name);
    } else {
        m_Name = name;
    }
}

int CSection::GetIndex() const {
    if (m_Owner != nullptr && m_Container == nullptr) {
        throw std::out_of_range("Section does not exist");
    }
    return m_Container != nullptr ? m_Container->IndexOf(*this) : 0;
}

std::weak_ptr<CSection> CSection::Watch() {
    if (!m_Self) {
        m_Self = std::shared_ptr<CSection>(this, [](CSection*) {});
    }
    return m_Self;
}

CSectionData* CSection::CreateSectionData() {
    if (!m_Data) {
        m_Data = std::make_unique<CSectionData>(GetWordBitSize(), GetBytesPerWord());
    }
    return m_Data.get();
}

void CSection::AddData(const char* bits) {
    CreateSectionData()->Add(bits);
}

void CSection::AddBinaryData(const char* bytes, unsigned int count) {
    if (count == 0) {
        return;
    }
    if (GetByteOrder() == BO_UNDEFINED) {
        throw general_error("Can not add data to section with UNDEFINED byte order.\n");
    }
    std::string digits(std::size_t{count} * DIGITS_PER_FILE_BYTE, '0');
    for (std::size_t i = 0; i < count; ++i) {
        for (int bit = 0; bit < DIGITS_PER_FILE_BYTE; ++bit) {
            if ((static_cast<unsigned char>(bytes[i]) >> bit & 1) != 0) {
                digits[i * DIGITS_PER_FILE_BYTE + DigitOfBit(bit, GetByteOrder())] = '1';
            }
        }
    }
    AddData(digits.c_str());
}

void CSection::AddBinaryData(const std::vector<char>& bytes) {
    AddBinaryData(bytes.data(), static_cast<unsigned int>(bytes.size()));
}

std::vector<char> CSection::GetBinaryData() const {
    if (GetByteOrder() == BO_UNDEFINED) {
        throw general_error("Can not load data from section with UNDEFINED byte order.\n");
    }
    std::vector<char> bytes;
    std::string digits; // not yet converted
    for (int word = 0; word < GetSectionDataWordCount(); ++word) {
        digits += m_Data->GetWord(word);
        std::size_t used = 0;
        for (; digits.size() - used >= DIGITS_PER_FILE_BYTE; used += DIGITS_PER_FILE_BYTE) {
            unsigned int value = 0;
            for (int bit = 0; bit < DIGITS_PER_FILE_BYTE; ++bit) {
                value |= (digits[used + DigitOfBit(bit, GetByteOrder())] == '1' ? 1U : 0U) << bit;
            }
            bytes.push_back(static_cast<char>(value));
        }
        digits.erase(0, used);
    }
    return bytes;
}

void CSection::ClearData() {
    if (m_Data) {
        m_Data->Clear();
    }
}

void CSection::ClearAll() {
    ClearData();
    if (m_Relocations) {
        m_Relocations->Free();
    }
}

void CSection::Free() {
    m_Data.reset();
    m_Relocations.reset();
}

CRelocation* CSection::AddRelocation(const CRelocation& relocation) {
    if (!m_Relocations) {
        m_Relocations = std::make_unique<CRelocationTable>();
    }
    return m_Relocations->Add(relocation);
}

void CSection::CheckAbsoluteSectionAddressAlignment() const {
    if (!m_MemoryByteAddressIsAbsolute || m_ByteAddressAlignment == 0 ||
        m_MemoryByteAddress % m_ByteAddressAlignment == 0) {
        return;
    }
    std::cerr << "Error: absolute address " << std::hex << m_MemoryByteAddress << " of a section " << m_Name
              << " from object file " << (m_Owner != nullptr ? m_Owner->GetFileName() : std::string())
              << " does not match its byte alignment " << std::dec << m_ByteAddressAlignment << ".\n";
    std::exit(EXIT_FAILURE);
}

bool CSection::IsStack(bool checkSymbols) const {
    return m_Name == ".stack" && (!checkSymbols || IsBoundedBy("_stack_start", "_stack_end"));
}

bool CSection::IsHeap(bool checkSymbols) const {
    return m_Name == ".heap" && (!checkSymbols || IsBoundedBy("_heap_start", "_heap_end"));
}

bool CSection::IsBoundedBy(const char* startName, const char* endName) const {
    if (m_Owner == nullptr || m_Owner->SymbolTablesCount() == 0) {
        return false;
    }
    const CSymbolTable* symbols = m_Owner->GetSymbolTable(0);
    const CSymbol* start = symbols->LookUpSymbol(startName);
    const CSymbol* end = symbols->LookUpSymbol(endName);
    return start != nullptr && end != nullptr && start->GetMemoryAddress() == 0 &&
           end->GetMemoryAddress() == static_cast<unsigned long long>(GetSectionDataByteCount());
}

CSection* CSection::Copy(CObjectFile& target, const CSymbolTable* table) const {
    auto copy = std::make_unique<CSection>(m_Type, m_Name, *this, &target);
    copy->m_ByteAddressAlignment = m_ByteAddressAlignment;
    copy->m_MemoryByteAddressIsAbsolute = m_MemoryByteAddressIsAbsolute;
    copy->m_MemoryByteAddress = m_MemoryByteAddress;
    if (m_Data) {
        copy->m_Data = std::make_unique<CSectionData>(*m_Data);
    }
    if (m_Relocations) {
        copy->m_Relocations = std::make_unique<CRelocationTable>(*m_Relocations, table);
    }
    CSection* const added = copy.get();
    target.AddSection(copy.release()); // handed over
    return added;
}

void CSection::SaveToStream(COutputStream& out, CPersistentObject::Queue& queue) {
    out.WriteLine(std::to_string(m_Name.size()));
    out.WriteLine(m_Name, "*** section header *** - name");
    SaveMemoryOrganizationToStream(out);
    out.WriteLine(std::to_string(m_ByteAddressAlignment), "section byte alignment");
    out.WriteLine(m_MemoryByteAddressIsAbsolute ? "1" : "0", "is address absolute?");
    out.WriteLine(std::to_string(m_MemoryByteAddress), "section address");
    if (m_Type < TYPE_TEXT || m_Type > TYPE_INFO) {
        throw general_error("");
    }
    out.WriteLine("1");
    out.WriteLine(std::string(1, TYPE_LETTERS[m_Type]), "section flags");
    out.WriteLine(Int<int>::ToString(GetSectionDataByteCount(), 10), "section data size in bytes");
    out.WriteLine(Int<int>::ToString(RelocationCount(), 10), "count of relocations ");
    const auto writeLink = [&](CPersistentObject* record, const char* description) {
        out.WriteLine(Int<int>::ToString(record != nullptr ? record->GetLineAddress() : 0, 10), description);
        if (record != nullptr) {
            queue.push(record);
        }
    };
    const bool hasData = m_Type != TYPE_BSS && GetSectionDataByteCount() > 0;
    writeLink(hasData ? m_Data.get() : nullptr, "first line of section data");
    writeLink(RelocationCount() > 0 ? m_Relocations.get() : nullptr, "first line of relocation data");
}

void CSection::LoadFromStream(CInputStream& in, CPersistentObject::Queue& queue) {
    const int nameLength = Int<int>(in.GetLine());
    SetName(in.GetLine(nameLength));
    LoadMemoryOrganizationFromStream(in);
    if (!GetMemoryOrganizationIsValid() && m_Owner != nullptr) {
        InheritMemoryOrganizationValues(*m_Owner);
    }
    m_ByteAddressAlignment = static_cast<unsigned int>(static_cast<int>(Int<int>(in.GetLine())));
    m_MemoryByteAddressIsAbsolute = Int<int>(in.GetLine()) != 0;
    m_MemoryByteAddress = Int<unsigned long long>(in.GetLine());
    LoadType(in);
    LoadDataHeader(in, queue);
}

void CSection::LoadType(CInputStream& in) {
    if (Int<int>(in.GetLine()) != 1) {
        throw in.Reject();
    }
    const std::size_t type = TYPE_LETTERS.find(in.GetLine(1), TYPE_TEXT);
    if (type == std::string_view::npos) {
        throw in.Reject();
    }
    m_Type = static_cast<eType>(type);
}

void CSection::LoadDataHeader(CInputStream& in, CPersistentObject::Queue& queue) {
    const int byteCount = Int<int>(in.GetLine());
    const int relocationCount = Int<int>(in.GetLine());
    const int dataLine = Int<int>(in.GetLine());
    if (byteCount > 0 && CSectionData::ByteBitSizeOf(GetWordBitSize(), GetBytesPerWord()) < 1) {
        throw in.Reject();
    }
    if (m_Type == TYPE_BSS) {
        m_Data = std::make_unique<CSectionData>(dataLine, 0, GetWordBitSize(), GetBytesPerWord());
        m_Data->FillZero(byteCount);
    } else if (byteCount > 0) {
        m_Data = std::make_unique<CSectionData>(dataLine, byteCount, GetWordBitSize(), GetBytesPerWord());
        queue.push(m_Data.get());
    }
    const int relocationLine = Int<int>(in.GetLine());
    if (relocationCount > 0) {
        m_Relocations = std::make_unique<CRelocationTable>(relocationLine, relocationCount);
        queue.push(m_Relocations.get());
    }
}

} // namespace ObjectFile
