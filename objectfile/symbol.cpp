// Symbols: the names of a program image.
#include "objectfile/symbol.h"

#include <iostream>

#include "objectfile/objectfile.h"

namespace ObjectFile {

namespace {

constexpr std::string_view TYPE_LETTERS = " RUWXAC"; // indexed by CSymbol::eType; type 0 has no letter
constexpr std::string_view USAGE_LETTERS = "NFOI";   // indexed by CSymbol::eUsage

std::string SectionName(const CSymbol& symbol) {
    return symbol.GetSection() != nullptr ? symbol.GetSection()->GetName() : std::string();
}

} // namespace

CSymbol::CSymbol(const std::string& name, eType type, CSection* section, unsigned long long memoryAddress)
    : m_Name(name), m_Section(section != nullptr ? section->Watch() : std::weak_ptr<CSection>()),
      m_MemoryAddress(memoryAddress), m_Type(type), m_IsBound(section != nullptr) {}

CSymbol& CSymbol::operator=(const CSymbol& other) {
    if (this != &other) {
        Rename(other.m_Name);
        CopyFields(other);
    }
    return *this;
}

void CSymbol::CopyFields(const CSymbol& other) {
    m_Expansion = other.m_Expansion;
    m_Section = other.m_Section;
    m_MemoryAddress = other.m_MemoryAddress;
    m_SectionIndex = other.m_SectionIndex;
    m_BlockSize = other.m_BlockSize;
    m_Type = other.m_Type;
    m_Usage = other.m_Usage;
    m_IsBound = other.m_IsBound;
}

void CSymbol::UpdateName(const std::string& name) {
    Rename(CSharedText(name));
}

void CSymbol::Rename(CSharedText name) {
    if (m_Owner != nullptr) {
        m_Owner->Rename(*this, std::move(name));
    } else {
        m_Name = std::move(name);
    }
}

void CSymbol::SetSection(CSection* section) {
    if (section != nullptr) {
        section->GetIndex(); // throws before anything changes
        m_Section = section->Watch();
    } else {
        m_Section.reset();
    }
    m_IsBound = section != nullptr;
    m_SectionIndex = 0;
}

int CSymbol::GetSectionID() const {
    if (!m_IsBound) {
        return m_SectionIndex;
    }
    if (const CSection* const section = GetSection()) {
        return section->GetIndex();
    }
    return HasSection() ? -1 : 0;
}

bool CSymbol::IsSameSymbolAs(const CSymbol* other, bool compareAddress) const {
    const bool alike = GetNameView() == other->GetNameView() && m_Type == other->m_Type;
    return alike && (!compareAddress ||
                     (m_MemoryAddress == other->m_MemoryAddress && SectionName(*this) == SectionName(*other)));
}

void CSymbol::LoadFromStream(CInputStream& in) {
    CTextPool names;
    LoadFromStream(in, names);
}

void CSymbol::LoadFromStream(CInputStream& in, CTextPool& names) {
    SetSection(nullptr);
    const int nameLength = Int<int>(in.GetLine());
    Rename(names.Add(in.GetLine(nameLength)));
    Int<int>::Parse(in.GetLine(), 10); // number of type letters: one follows whatever it says
    const std::size_t type = TYPE_LETTERS.find(in.GetLine(1), TYPE_PRIVATE);
    if (type == std::string_view::npos) {
        throw in.Reject();
    }
    m_Type = static_cast<eType>(type);
    m_SectionIndex = Int<int>(in.GetLine());
    m_MemoryAddress = Int<unsigned long long>(in.GetLine());
    m_BlockSize = Int<int>(in.GetLine());
    LoadUsage(in);
    m_Expansion.LoadFromStream(in);
}

void CSymbol::LoadUsage(CInputStream& in) {
    m_Usage = USAGE_UNDEFINED;
    if (Int<int>(in.GetLine()) != 1) {
        return; // no letter follows
    }
    const std::size_t usage = USAGE_LETTERS.find(in.GetLine(1));
    if (usage == std::string_view::npos) {
        throw in.Reject();
    }
    m_Usage = static_cast<eUsage>(usage);
    if (m_Usage == USAGE_FILE && m_Type != TYPE_ABSOLUTE) {
        std::cerr << "Warning: Symbol " << GetNameView() << " has usage type FILE, but is not defined as ABSOLUTE.\n";
    }
}

void CSymbol::SaveToStream(COutputStream& out) const {
    out.WriteLine(std::to_string(GetNameView().size()));
    out.WriteLine(GetNameView(), "symbol information - name");
    out.WriteLine("1");
    out.WriteLine(m_Type == TYPE_NONE ? std::string_view() : TYPE_LETTERS.substr(m_Type, 1),
                  "type: pUblic, pRivate, eXtern, Absolute, Common");
    out.WriteLine(Int<int>::ToString(GetSectionID(), 10), "section index");
    out.WriteLine(std::to_string(m_MemoryAddress), "memory address");
    out.WriteLine(Int<int>::ToString(m_BlockSize, 10), "symbol block size");
    out.WriteLine("1");
    out.WriteLine(USAGE_LETTERS.substr(m_Usage, 1), "usage type: uNdefined, Function, Object, fIle");
    m_Expansion.SaveToStream(out);
}

} // namespace ObjectFile
