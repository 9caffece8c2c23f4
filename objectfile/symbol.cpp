#include "objectfile/symbol.h"

#include "objectfile/objectfile.h"

#include <iostream>
#include <utility>

namespace ObjectFile {

namespace {

constexpr std::string_view TYPE_LETTERS = " RUWXAC"; // indexed by CSymbol::eType; type 0 has no letter
constexpr std::string_view USAGE_LETTERS = "NFOI";   // indexed by CSymbol::eUsage

std::string SectionName(const CSymbol& symbol) {
    return symbol.GetSection() != nullptr ? symbol.GetSection()->GetName() : std::string();
}

} // namespace

void CExpansionTable::LoadFromStream(CInputStream& in) {
    int count = Int<int>(in.GetLine());
    if (count > 1) {
        const int length = Int<int>(in.GetLine());
        m_HeaderText = in.GetLine(length);
        count -= 2;
    }
    for (; count > 0; --count) {
        m_Lines.push_back(in.GetLine());
    }
}

void CExpansionTable::SaveToStream(COutputStream& out) const {
    out.WriteLine(Int<int>::ToString(Count(), 10), "symbol expansion data - count of lines");
    if (!m_HeaderText.empty()) {
        out.WriteLine(std::to_string(m_HeaderText.size()));
        out.WriteLine(m_HeaderText);
    }
    for (const std::string& line : m_Lines) {
        out.WriteLine(line);
    }
}

CSymbol::CSymbol(std::string name, eType type, CSection* section, unsigned long long memoryAddress)
    : m_Name(std::move(name)), m_Section(section), m_MemoryAddress(memoryAddress), m_Type(type) {}

void CSymbol::UpdateName(const std::string& name) {
    if (m_Owner != nullptr) {
        m_Owner->UpdateSymbolName(m_Name, name);
    } else {
        m_Name = name;
    }
}

void CSymbol::SetSection(CSection* section) {
    m_Section = section;
    const CObjectFile* const owner = section != nullptr ? section->GetOwner() : nullptr;
    m_SectionIndex = owner != nullptr ? owner->FindSection(section) : 0;
}

int CSymbol::GetSectionID() const {
    if (m_Section == nullptr) {
        return m_SectionIndex;
    }
    const CObjectFile* const owner = m_Section->GetOwner();
    return owner != nullptr ? owner->FindSection(m_Section) : m_SectionIndex;
}

int CSymbol::ID() const {
    return m_Owner != nullptr ? m_Owner->FindSymbol(this) : -1;
}

bool CSymbol::IsSameSymbolAs(const CSymbol* other, bool compareAddress) const {
    const bool alike = m_Name == other->m_Name && m_Type == other->m_Type;
    return alike && (!compareAddress ||
                     (m_MemoryAddress == other->m_MemoryAddress && SectionName(*this) == SectionName(*other)));
}

void CSymbol::LoadFromStream(CInputStream& in) {
    const int nameLength = Int<int>(in.GetLine());
    m_Name = in.GetLine(nameLength);
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
    if (Int<int>(in.GetLine()) != 1) {
        return; // no letter follows
    }
    const std::size_t usage = USAGE_LETTERS.find(in.GetLine(1));
    if (usage == std::string_view::npos) {
        throw in.Reject();
    }
    m_Usage = static_cast<eUsage>(usage);
    if (m_Usage == USAGE_FILE && m_Type != TYPE_ABSOLUTE) {
        std::cerr << "Warning: Symbol " << m_Name << " has usage type FILE, but is not defined as ABSOLUTE.\n";
    }
}

void CSymbol::SaveToStream(COutputStream& out) const {
    out.WriteLine(std::to_string(m_Name.size()));
    out.WriteLine(m_Name, "symbol information - name");
    out.WriteLine("1");
    out.WriteLine(m_Type == TYPE_NONE ? std::string() : std::string(1, TYPE_LETTERS[m_Type]),
                  "type: pUblic, pRivate, eXtern, Absolute, Common");
    out.WriteLine(Int<int>::ToString(GetSectionID(), 10), "section index");
    out.WriteLine(std::to_string(m_MemoryAddress), "memory address");
    out.WriteLine(Int<int>::ToString(m_BlockSize, 10), "symbol block size");
    out.WriteLine("1");
    out.WriteLine(std::string(1, USAGE_LETTERS[m_Usage]), "usage type: uNdefined, Function, Object, fIle");
    m_Expansion.SaveToStream(out);
}

} // namespace ObjectFile
