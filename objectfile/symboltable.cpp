#include "objectfile/symbol.h"

#include <algorithm>
#include <cstdint>
#include <iostream>
#include <limits>
#include <numeric>
#include <stdexcept>

namespace ObjectFile {

namespace {

std::string AlreadyPresent(const std::string& name) {
    return "Non-local symbol with name " + name + " is already present in the object file's symbol table.";
}

} // namespace

int CSymbolTable::GetLineSize() const {
    const std::int64_t lines =
        std::accumulate(m_Symbols.begin(), m_Symbols.end(), std::int64_t{9} * Count() + 2,
                        [](std::int64_t sum, const auto& symbol) { return sum + symbol->GetExpansionTable().Count(); });
    return static_cast<int>(std::min<std::int64_t>(lines, std::numeric_limits<int>::max()));
}

void CSymbolTable::LoadFromStream(CInputStream& in) {
    const int count = Int<int>(in.GetLine());
    for (int i = 0; i < count; ++i) {
        auto symbol = std::make_unique<CSymbol>();
        symbol->LoadFromStream(in);
        if (FindSymbol(symbol->GetName()) != nullptr) {
            throw in.Reject("Redefinition of symbol");
        }
        Append(std::move(symbol));
    }
}

void CSymbolTable::SaveToStream(COutputStream& out) const {
    out.WriteLine(Int<int>::ToString(Count(), 10), "*** symbol table *** - count of symbols");
    for (const auto& symbol : m_Symbols) {
        symbol->SaveToStream(out);
    }
}

bool CSymbolTable::AddSymbol(CSymbol* symbol) {
    return AddSymbol(std::unique_ptr<CSymbol>(symbol));
}

bool CSymbolTable::AddSymbol(std::unique_ptr<CSymbol> symbol) {
    const std::string& name = symbol->GetName();
    if (FindSymbol(name) == nullptr) {
        Append(std::move(symbol));
        return true;
    }
    if (symbol->GetType() != CSymbol::TYPE_PRIVATE) {
        throw general_error(AlreadyPresent(name));
    }
    std::cerr << "Warning: local/private symbol with name " << name
              << " is already present in the object file's symbol table. This is not supported by the VEXON file "
                 "format, symbol is ignored.\n";
    return false;
}

void CSymbolTable::Append(std::unique_ptr<CSymbol> symbol) {
    symbol->m_Owner = this;
    symbol->m_Index = Count();
    CSymbol* const added = m_Symbols.emplace_back(std::move(symbol)).get();
    m_ByName.emplace(added->GetName(), added);
}

CSymbol* CSymbolTable::FindSymbol(const std::string& name) {
    return LookUpSymbol(name);
}

const CSymbol* CSymbolTable::FindSymbol(const std::string& name) const {
    return LookUpSymbol(name);
}

int CSymbolTable::FindSymbol(const CSymbol* symbol) const {
    return symbol != nullptr && symbol->m_Owner == this ? symbol->m_Index : -1;
}

CSymbol* CSymbolTable::LookUpSymbol(const std::string& name) const {
    const auto found = m_ByName.find(name);
    return found == m_ByName.end() ? nullptr : found->second;
}

CSymbol* CSymbolTable::LookUpSymbol(const char* name) const {
    return LookUpSymbol(std::string(name));
}

CSymbol* CSymbolTable::GetSymbol(int index) const {
    if (index < 0 || index >= Count()) {
        throw std::out_of_range("Symbol index out of range");
    }
    return m_Symbols[static_cast<std::size_t>(index)].get();
}

void CSymbolTable::UpdateSymbolName(const std::string& oldName, const std::string& newName) {
    CSymbol* const symbol = LookUpSymbol(oldName);
    if (symbol == nullptr) {
        throw general_error("Symbol " + oldName + " does not exist");
    }
    if (oldName == newName) {
        return;
    }
    if (LookUpSymbol(newName) != nullptr) {
        throw general_error(AlreadyPresent(newName));
    }
    std::string name = newName;
    m_ByName.erase(symbol->m_Name);
    symbol->m_Name.swap(name); // oldName may have been that very string
    m_ByName.emplace(symbol->m_Name, symbol);
}

int CSymbolTable::ExternSymbolCount() const {
    return static_cast<int>(std::count_if(m_Symbols.begin(), m_Symbols.end(), [](const auto& symbol) {
        return symbol->GetType() == CSymbol::TYPE_EXTERN;
    }));
}

CSymbolTableContainer::CSymbolTableContainer(CObjectFile* owner, int lineAddress, int count)
    : m_Owner(owner), m_LineAddress(lineAddress), m_PendingCount(count) {}

int CSymbolTableContainer::GetLineSize() const {
    const std::int64_t lines =
        std::accumulate(m_Tables.begin(), m_Tables.end(), std::int64_t{0},
                        [](std::int64_t sum, const auto& table) { return sum + table->GetLineSize(); });
    return static_cast<int>(std::min<std::int64_t>(lines, std::numeric_limits<int>::max()));
}

void CSymbolTableContainer::LoadFromStream(CInputStream& in, Queue& /*queue*/) {
    for (int i = 0; i < m_PendingCount; ++i) {
        Create()->LoadFromStream(in);
    }
    m_PendingCount = -1;
}

void CSymbolTableContainer::SaveToStream(COutputStream& out, Queue& /*queue*/) {
    for (const auto& table : m_Tables) {
        table->SaveToStream(out);
    }
}

CSymbolTable* CSymbolTableContainer::Create() {
    return m_Tables.emplace_back(std::make_unique<CSymbolTable>()).get();
}

CSymbolTable* CSymbolTableContainer::Get(int index) const {
    return index >= 0 && index < Count() ? m_Tables[static_cast<std::size_t>(index)].get() : nullptr;
}

int CSymbolTableContainer::Find(const CSymbolTable* table) const {
    const auto found = std::find_if(m_Tables.begin(), m_Tables.end(),
                                    [table](const auto& candidate) { return candidate.get() == table; });
    return found == m_Tables.end() ? -1 : static_cast<int>(found - m_Tables.begin());
}

int CSymbolTableContainer::SymbolCount() const {
    return std::accumulate(m_Tables.begin(), m_Tables.end(), 0,
                           [](int sum, const auto& table) { return sum + table->Count(); });
}

int CSymbolTableContainer::ExternSymbolCount() const {
    return std::accumulate(m_Tables.begin(), m_Tables.end(), 0,
                           [](int sum, const auto& table) { return sum + table->ExternSymbolCount(); });
}

} // namespace ObjectFile
