// Relocations: the bit fields of a section that wait for the address of a symbol.
#include "objectfile/relocation.h"

#include <algorithm>

#include "objectfile/symboltable.h"

namespace ObjectFile {

CRelocation::CRelocation(const CRelocation& other, const CSymbolTable* table) : CRelocation(other) {
    if (table == nullptr || m_Symbol == nullptr) {
        return;
    }
    const std::string name = m_Symbol->GetName();
    CSymbol* const found = table->LookUpSymbol(name);
    if (found == nullptr) {
        throw general_error("Symbol " + name + " does not exist");
    }
    m_Symbol = found;
}

void CRelocation::LoadFromStream(CInputStream& in) {
    m_Address = Int<unsigned long long>(in.GetLine());
    LoadFlags(in);
    m_SizeInBytes = Int<int>(in.GetLine());
    if (m_SizeInBytes < 1) {
        throw in.Reject();
    }
    m_LowBit = Int<int>(in.GetLine());
    m_HighBit = Int<int>(in.GetLine());
    m_OffsetValue = Int<int>(in.GetLine());
    m_ShiftAmount = Int<int>(in.GetLine());
    m_Mask = Int<unsigned long long>(in.GetLine());
    m_SymbolIndex = Int<int>(in.GetLine());
}

void CRelocation::LoadFlags(CInputStream& in) {
    const int count = Int<int>(in.GetLine());
    const std::string letters = in.GetLine();
    if (count < 1 || static_cast<std::size_t>(count) > letters.size()) {
        throw in.Reject();
    }
    m_Flags = 0;
    bool absolute = false;
    for (int i = 0; i < count; ++i) {
        switch (letters[static_cast<std::size_t>(i)]) {
        case 'A':
            absolute = true;
            break;
        case 'R':
            m_Flags |= FLAG_RELATIVE;
            break;
        case 'F':
            m_Flags |= FLAG_F;
            break;
        case 'S':
            m_Flags |= FLAG_SIGNED;
            break;
        case 'M':
            m_Flags |= FLAG_MASK;
            break;
        default:
            throw in.Reject();
        }
    }
    const bool relative = (m_Flags & FLAG_RELATIVE) != 0;
    if (absolute == relative) {
        throw in.Reject();
    }
}

void CRelocation::SaveToStream(COutputStream& out) const {
    if (m_Symbol == nullptr) {
        throw general_error("Relocation has no symbol");
    }
    std::string letters = (m_Flags & FLAG_RELATIVE) != 0 ? "R" : "A";
    letters += (m_Flags & FLAG_F) != 0 ? "F" : "";
    letters += (m_Flags & FLAG_SIGNED) != 0 ? "S" : "";
    letters += (m_Flags & FLAG_MASK) != 0 ? "M" : "";
    out.WriteLine(std::to_string(m_Address), "*** relocation info *** - relocation memory address");
    out.WriteLine(std::to_string(letters.size()));
    out.WriteLine(letters, "relocation flags");
    out.WriteLine(Int<int>::ToString(m_SizeInBytes, 10), "relocation size in bytes");
    out.WriteLine(Int<int>::ToString(m_LowBit, 10), "low bit");
    out.WriteLine(Int<int>::ToString(m_HighBit, 10), "high bit (included)");
    out.WriteLine(Int<int>::ToString(m_OffsetValue, 10), "offset value");
    out.WriteLine(Int<int>::ToString(m_ShiftAmount, 10), "shift amount");
    out.WriteLine(std::to_string(m_Mask), "mask");
    out.WriteLine(Int<int>::ToString(GetSymbolID(), 10), "symbol index (name " + m_Symbol->GetName() + ")");
}

int CRelocation::GetSymbolID() const {
    return m_Symbol != nullptr ? m_Symbol->ID() : m_SymbolIndex;
}

CRelocationTable::CRelocationTable(const CRelocationTable& other, const CSymbolTable* table)
    : m_LineAddress(other.m_LineAddress) {
    for (const auto& relocation : other.m_Relocations) {
        m_Relocations.push_back(std::make_unique<CRelocation>(*relocation, table));
    }
}

void CRelocationTable::LoadFromStream(CInputStream& in, Queue& /*queue*/) {
    for (int i = 0; i < m_PendingCount; ++i) {
        Create()->LoadFromStream(in);
    }
    m_PendingCount = -1;
}

void CRelocationTable::SaveToStream(COutputStream& out, Queue& /*queue*/) {
    for (const auto& relocation : m_Relocations) {
        relocation->SaveToStream(out);
    }
}

CRelocation* CRelocationTable::Create() {
    return m_Relocations.emplace_back(std::make_unique<CRelocation>()).get();
}

CRelocation* CRelocationTable::Add(const CRelocation& relocation) {
    return m_Relocations.emplace_back(std::make_unique<CRelocation>(relocation, nullptr)).get();
}

CRelocation* CRelocationTable::Get(int index) const {
    return index >= 0 && index < Count() ? m_Relocations[static_cast<std::size_t>(index)].get() : nullptr;
}

int CRelocationTable::Find(const CRelocation* relocation) const {
    const auto found = std::find_if(m_Relocations.begin(), m_Relocations.end(),
                                    [relocation](const auto& candidate) { return candidate.get() == relocation; });
    return found == m_Relocations.end() ? -1 : static_cast<int>(found - m_Relocations.begin());
}

} // namespace ObjectFile
