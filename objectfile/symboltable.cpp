// Symbol tables, and the record of a file that holds them all.
#include "objectfile/symboltable.h"

#include <algorithm>
#include <cstdint>
#include <iostream>
#include <limits>
#include <numeric>
#include <stdexcept>

namespace ObjectFile {

namespace {

constexpr int MAX_SEARCHED = 8; // symbols that are searched one by one

std::string AlreadyPresent(std::string_view name) {
    return "Non-local symbol with name " + std::string(name) + " is already present in the object file's symbol table.";
}

int LineCount(std::int64_t lines) {
    return static_cast<int>(std::min<std::int64_t>(lines, std::numeric_limits<int>::max()));
}

} // namespace

const CSymbolTable::CSymbols& CSymbolTable::Symbols() const {
    static const CSymbols NONE;
    return m_Contents ? m_Contents->m_Symbols : NONE;
}

int CSymbolTable::GetLineSize() const {
    return LineCount(std::accumulate(
        Symbols().begin(), Symbols().end(), std::int64_t{9} * Count() + 2,
        [](std::int64_t sum, const auto& symbol) { return sum + symbol->GetExpansionTable().Count(); }));
}

void CSymbolTable::LoadFromStream(CInputStream& in) {
    const int count = Int<int>(in.GetLine());
    CTextPool names;
    for (int i = 0; i < count; ++i) {
        auto symbol = std::make_unique<CSymbol>();
        symbol->LoadFromStream(in, names);
        if (!Append(symbol)) {
            throw in.Reject("Redefinition of symbol");
        }
    }
}

void CSymbolTable::SaveToStream(COutputStream& out) const {
    out.WriteLine(Int<int>::ToString(Count(), 10), "*** symbol table *** - count of symbols");
    for (const auto& symbol : Symbols()) {
        symbol->SaveToStream(out);
    }
}

bool CSymbolTable::AddSymbol(CSymbol* symbol) {
    return AddSymbol(std::unique_ptr<CSymbol>(symbol));
}

bool CSymbolTable::AddSymbol(std::unique_ptr<CSymbol> symbol) {
    if (Append(symbol)) {
        return true;
    }
    const std::string_view name = symbol->GetNameView();
    if (symbol->GetType() != CSymbol::TYPE_PRIVATE) {
        throw general_error(AlreadyPresent(name));
    }
    std::cerr << "Warning: local/private symbol with name " << name
              << " is already present in the object file's symbol table. This is not supported by the VEXON file "
                 "format, symbol is ignored.\n";
    return false;
}

bool CSymbolTable::Append(std::unique_ptr<CSymbol>& symbol) {
    if (!m_Contents) {
        m_Contents = std::make_unique<CContents>();
    }
    CSymbols& symbols = m_Contents->m_Symbols;
    auto& index = m_Contents->m_Index;
    if (!index && Count() >= MAX_SEARCHED) {
        index = std::make_unique<CIndex>();
        std::for_each(symbols.begin(), symbols.end(),
                      [&](const auto& known) { index->m_ByName.emplace(known->GetNameView(), known.get()); });
    }
    const bool isNew = index ? index->m_ByName.emplace(symbol->GetNameView(), symbol.get()).second
                             : Find(symbol->GetNameView()) == nullptr;
    if (isNew) {
        symbol->m_Owner = this;
        symbol->m_Index = Count();
        symbols.push_back(std::move(symbol));
    }
    return isNew;
}

CSymbol* CSymbolTable::Find(std::string_view name) const {
    if (const CIndex* const index = Index()) {
        const auto found = index->m_ByName.find(name);
        return found == index->m_ByName.end() ? nullptr : found->second;
    }
    const auto found = std::find_if(Symbols().begin(), Symbols().end(),
                                    [name](const auto& symbol) { return symbol->GetNameView() == name; });
    return found == Symbols().end() ? nullptr : found->get();
}

CSymbol* CSymbolTable::FindSymbol(const std::string& name) {
    return Find(name);
}

const CSymbol* CSymbolTable::FindSymbol(const std::string& name) const {
    return Find(name);
}

int CSymbolTable::FindSymbol(const CSymbol* symbol) const {
    if (CIndex* const index = Index()) {
        auto& indices = index->m_ByAddress;
        while (indices.size() < Symbols().size()) {
            const std::size_t next = indices.size();
            indices.emplace(Symbols()[next].get(), static_cast<int>(next));
        }
        const auto found = indices.find(symbol);
        return found == indices.end() ? -1 : found->second;
    }
    const auto found = std::find_if(Symbols().begin(), Symbols().end(),
                                    [symbol](const auto& candidate) { return candidate.get() == symbol; });
    return found == Symbols().end() ? -1 : static_cast<int>(found - Symbols().begin());
}

CSymbol* CSymbolTable::LookUpSymbol(const std::string& name) const {
    return Find(name);
}

CSymbol* CSymbolTable::LookUpSymbol(const char* name) const {
    return Find(name);
}

CSymbol* CSymbolTable::GetSymbol(int index) const {
    if (index < 0 || index >= Count()) {
        throw std::out_of_range("Symbol index out of range");
    }
    return Symbols()[static_cast<std::size_t>(index)].get();
}

void CSymbolTable::UpdateSymbolName(const std::string& oldName, const std::string& newName) {
    CSymbol* const symbol = Find(oldName);
    if (symbol == nullptr) {
        throw general_error("Symbol " + oldName + " does not exist");
    }
    Rename(*symbol, CSharedText(newName));
}

void CSymbolTable::Rename(CSymbol& symbol, CSharedText name) {
    if (CSymbol* const present = Find(name.View()); present != nullptr && present != &symbol) {
        throw general_error(AlreadyPresent(name.View()));
    }
    CIndex* const index = Index();
    if (index == nullptr) {
        symbol.m_Name = std::move(name);
        return;
    }
    auto entry = index->m_ByName.extract(symbol.GetNameView()); // while the characters that it views still exist
    symbol.m_Name = std::move(name);
    entry.key() = symbol.GetNameView();
    index->m_ByName.insert(std::move(entry));
}

int CSymbolTable::ExternSymbolCount() const {
    return static_cast<int>(std::count_if(Symbols().begin(), Symbols().end(), [](const auto& symbol) {
        return symbol->GetType() == CSymbol::TYPE_EXTERN;
    }));
}

CSymbolTableContainer::CSymbolTableContainer(CObjectFile* owner, int lineAddress, int count)
    : m_Owner(owner), m_LineAddress(lineAddress), m_PendingCount(count) {}

int CSymbolTableContainer::GetLineSize() const {
    return LineCount(
        std::accumulate(m_Tables.begin(), m_Tables.end(), std::int64_t{0},
                        [](std::int64_t sum, const CSymbolTable& table) { return sum + table.GetLineSize(); }));
}

void CSymbolTableContainer::LoadFromStream(CInputStream& in, Queue& /*queue*/) {
    for (int i = 0; i < m_PendingCount; ++i) {
        Create()->LoadFromStream(in);
    }
    m_PendingCount = -1;
}

void CSymbolTableContainer::SaveToStream(COutputStream& out, Queue& /*queue*/) {
    for (const CSymbolTable& table : m_Tables) {
        table.SaveToStream(out);
    }
}

CSymbolTable* CSymbolTableContainer::Create() {
    return &m_Tables.emplace_back();
}

CSymbolTable* CSymbolTableContainer::Get(int index) {
    return index >= 0 && index < Count() ? &m_Tables[static_cast<std::size_t>(index)] : nullptr;
}

const CSymbolTable* CSymbolTableContainer::Get(int index) const {
    return index >= 0 && index < Count() ? &m_Tables[static_cast<std::size_t>(index)] : nullptr;
}

int CSymbolTableContainer::Find(const CSymbolTable* table) const {
    const auto found = std::find_if(m_Tables.begin(), m_Tables.end(),
                                    [table](const CSymbolTable& candidate) { return &candidate == table; });
    return found == m_Tables.end() ? -1 : static_cast<int>(found - m_Tables.begin());
}

int CSymbolTableContainer::SymbolCount() const {
    return std::accumulate(m_Tables.begin(), m_Tables.end(), 0,
                           [](int sum, const CSymbolTable& table) { return sum + table.Count(); });
}

int CSymbolTableContainer::ExternSymbolCount() const {
    return std::accumulate(m_Tables.begin(), m_Tables.end(), 0,
                           [](int sum, const CSymbolTable& table) { return sum + table.ExternSymbolCount(); });
}

} // namespace ObjectFile
