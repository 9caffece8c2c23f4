// Program images: what they hold.
#include "objectfile/objectfile.h"

#include <stdexcept>

namespace ObjectFile {

namespace {

/// Entry `index` of a container that may be absent.
template <typename TContainer>
auto* Existing(const std::unique_ptr<TContainer>& container, int index, const char* error) {
    auto* const entry = container ? container->Get(index) : nullptr;
    if (entry == nullptr) {
        throw std::out_of_range(error);
    }
    return entry;
}

} // namespace

CObjectFile::CObjectFile() = default;

CObjectFile::CObjectFile(int wordBitSize, int bytesPerWord, eByteOrder order, const std::string& addressSpaceName)
    : CMemoryOrganization(wordBitSize, bytesPerWord, order, addressSpaceName) {}

CObjectFile::~CObjectFile() = default;

// --- Sections

int CObjectFile::SectionsCount() const {
    return m_Sections ? m_Sections->Count() : 0;
}

CSection* CObjectFile::GetSection(int index) {
    return Existing(m_Sections, index, "Section index out of range");
}

const CSection* CObjectFile::GetSection(int index) const {
    return Existing(m_Sections, index, "Section index out of range");
}

CSection* CObjectFile::FindSection(const std::string& name) {
    return m_Sections ? m_Sections->Find(name) : nullptr;
}

const CSection* CObjectFile::FindSection(const std::string& name) const {
    return m_Sections ? m_Sections->Find(name) : nullptr;
}

int CObjectFile::FindSection(const CSection* section) const {
    const int index = m_Sections ? m_Sections->Find(section) : -1;
    if (index < 0) {
        throw std::out_of_range("Section does not exist");
    }
    return index;
}

CSectionContainer& CObjectFile::Sections() {
    if (!m_Sections) {
        m_Sections = std::make_unique<CSectionContainer>(this, 0, 0);
    }
    return *m_Sections;
}

void CObjectFile::AddSection(CSection* section) {
    Sections().Add(section);
}

void CObjectFile::DeleteSection(CSection* section) {
    if (m_Sections) {
        m_Sections->Delete(section);
    }
}

CSection* CObjectFile::CreateSection(CSection::eType type, const std::string& name,
                                     const CMemoryOrganization& organization) {
    return Sections().CreateSection(type, name, organization);
}

CSection* CObjectFile::CreateSection(CSection::eType type, const std::string& name) {
    return CreateSection(type, name, *this);
}

void CObjectFile::SetSectionsAreAllocated() {
    for (int i = 0; i < SectionsCount(); ++i) {
        GetSection(i)->SetMemoryByteAddressIsAbsolute(true);
    }
}

int CObjectFile::RelocationCount() const {
    return m_Sections ? m_Sections->RelocationCount() : 0;
}

// --- Symbols

int CObjectFile::SymbolTablesCount() const {
    return m_SymbolTables ? m_SymbolTables->Count() : 0;
}

CSymbolTable* CObjectFile::GetSymbolTable(int index) {
    return Existing(m_SymbolTables, index, "Symbol table index out of range");
}

const CSymbolTable* CObjectFile::GetSymbolTable(int index) const {
    return Existing(m_SymbolTables, index, "Symbol table index out of range");
}

CSymbolTable* CObjectFile::CreateSymbolTable() {
    if (!m_SymbolTables) {
        m_SymbolTables = std::make_unique<CSymbolTableContainer>(this, 0, 0);
    }
    return m_SymbolTables->Create();
}

bool CObjectFile::HasSymbols() const {
    return m_SymbolTables && m_SymbolTables->SymbolCount() > 0;
}

// --- The image as a whole

void CObjectFile::SetEntryPoint(unsigned long long address) {
    m_EntryPoint = address;
    m_EntryPointIsSet = true;
}

void CObjectFile::ClearEntryPoint() {
    m_EntryPoint = 0;
    m_EntryPointIsSet = false;
}

int CObjectFile::GetFlags() const {
    return (RelocationCount() == 0 ? FLAG_NO_RELOCATIONS : 0) | (HasSymbols() ? 0 : FLAG_NO_SYMBOLS);
}

bool CObjectFile::TryToSetUniformMemoryOrganization() {
    if (GetMemoryOrganizationIsValid()) {
        return true;
    }
    if (SectionsCount() == 0) {
        return false;
    }
    const CSection* const first = GetSection(0);
    for (int i = 1; i < SectionsCount(); ++i) {
        if (!GetSection(i)->HasTheSameMemoryOrganization(*first)) {
            return false;
        }
    }
    InheritMemoryOrganizationValues(*first);
    return true;
}

const CMemoryOrganization& CObjectFile::GetStackMemoryOrganization() const {
    if (GetMemoryOrganizationIsValid()) {
        return *this;
    }
    if (const CMemoryOrganization* const data = FindDataMemoryOrganization()) {
        return *data;
    }
    throw general_error("Could not determine stack address space information from executable, please create at least "
                        "one empty .data section for correct function.");
}

const CMemoryOrganization& CObjectFile::GetDataAndDebugMemoryOrganization() const {
    if (GetMemoryOrganizationIsValid()) {
        return *this;
    }
    if (const CSection* const debug = FindSectionOfType(".debug_info", CSection::TYPE_DEBUG)) {
        return *debug;
    }
    if (const CMemoryOrganization* const data = FindDataMemoryOrganization()) {
        return *data;
    }
    throw general_error("Could not determine data address space information from executable, please create at least "
                        "one empty .data section for correct function.");
}

const CSection* CObjectFile::FindSectionOfType(const std::string& name, CSection::eType type) const {
    const CSection* const section = FindSection(name);
    return section != nullptr && section->GetType() == type ? section : nullptr;
}

/// The organization of ".data", or else of the first section with data, or none.
const CMemoryOrganization* CObjectFile::FindDataMemoryOrganization() const {
    if (const CSection* const data = FindSectionOfType(".data", CSection::TYPE_DATA)) {
        return data;
    }
    for (int i = 0; i < SectionsCount(); ++i) {
        const CSection::eType type = GetSection(i)->GetType();
        if (type == CSection::TYPE_DATA || type == CSection::TYPE_BSS) {
            return GetSection(i);
        }
    }
    return nullptr;
}

void CObjectFile::PopulateLineInfo() {
    m_LineTable = std::make_unique<CLineTable>(*this);
    if (!m_LineTable->PopulateFromMarluneLineSection()) {
        m_LineTable.reset();
    }
}

void CObjectFile::Free() {
    m_LineTable.reset();
    m_SymbolTables.reset();
    m_Sections.reset();
}

void CObjectFile::Clear() {
    Free();
    static_cast<CMemoryOrganization&>(*this) = CMemoryOrganization();
    m_TimeStamp = CTimeStamp();
    ClearEntryPoint();
}

} // namespace ObjectFile
