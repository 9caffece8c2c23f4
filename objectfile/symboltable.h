// Symbol tables, and the record of a file that holds them all.
#ifndef MARLUNE_OBJECTFILE_SYMBOLTABLE_H
#define MARLUNE_OBJECTFILE_SYMBOLTABLE_H

#include <deque>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "objectfile/persistentobject.h"
#include "objectfile/symbol.h"

namespace ObjectFile {

class CObjectFile;

/// Symbols in insertion order with an index by name. Symbols never leave a table.
class CSymbolTable {
public:
    CSymbolTable() = default;
    CSymbolTable(const CSymbolTable&) = delete;
    CSymbolTable& operator=(const CSymbolTable&) = delete;
    CSymbolTable(CSymbolTable&&) = delete;
    CSymbolTable& operator=(CSymbolTable&&) = delete;
    virtual ~CSymbolTable() = default;
    virtual int Count() const { return static_cast<int>(Symbols().size()); }
    /// Always 0: only the container of the tables has a place of its own in a file.
    virtual int GetLineAddress() const { return 0; }
    /// 9 lines for each symbol, the expansion lines and 2; not the number of lines that SaveToStream writes.
    virtual int GetLineSize() const;
    virtual void LoadFromStream(CInputStream& in);
    virtual void SaveToStream(COutputStream& out) const;

    /// Takes ownership of the symbol in any case. If its name is in the table already, a private symbol is destroyed
    /// with a warning on standard error, and the result is false; for any other type it throws general_error.
    bool AddSymbol(CSymbol* symbol);
    bool AddSymbol(std::unique_ptr<CSymbol> symbol);

    /// None if there is no symbol of that name.
    CSymbol* FindSymbol(const std::string& name);
    const CSymbol* FindSymbol(const std::string& name) const;
    /// The index of that very symbol, -1 if it is not in the table. The pointer is not dereferenced, because the symbol
    /// may have been destroyed.
    int FindSymbol(const CSymbol* symbol) const;
    CSymbol* LookUpSymbol(const std::string& name) const;
    CSymbol* LookUpSymbol(const char* name) const;
    /// Throws std::out_of_range if there is no such symbol.
    CSymbol* GetSymbol(int index) const;
    /// Renames a symbol. Throws general_error if `oldName` is not in the table or another symbol has `newName`.
    void UpdateSymbolName(const std::string& oldName, const std::string& newName);
    /// Symbols of type extern.
    int ExternSymbolCount() const;

private:
    friend class CSymbol;

    using CSymbols = std::vector<std::unique_ptr<CSymbol>>;
    struct CIndex {
        std::map<std::string_view, CSymbol*> m_ByName;       // views of the symbols' names
        std::unordered_map<const CSymbol*, int> m_ByAddress; // of the first symbols; filled on demand
    };
    struct CContents {
        CSymbols m_Symbols;
        std::unique_ptr<CIndex> m_Index; // none while there are only a few symbols
    };

    const CSymbols& Symbols() const;
    CIndex* Index() const { return m_Contents ? m_Contents->m_Index.get() : nullptr; }
    CSymbol* Find(std::string_view name) const;
    /// Appends the symbol and takes ownership of it. If its name is in the table, the result is false and the caller
    /// keeps it.
    bool Append(std::unique_ptr<CSymbol>& symbol);
    /// Throws general_error, with nothing changed, if another symbol has the name.
    void Rename(CSymbol& symbol, CSharedText name);

    std::unique_ptr<CContents> m_Contents; // none while the table is empty: a file may hold millions of empty ones
};

/// The symbol tables of one object file in order: the record at the header's symbol table address.
class CSymbolTableContainer : public CPersistentObject {
public:
    /// `count` tables are read by LoadFromStream; the owner is borrowed.
    CSymbolTableContainer(CObjectFile* owner, int lineAddress, int count);

    int Count() const override { return static_cast<int>(m_Tables.size()); }
    int GetLineAddress() const override { return m_LineAddress; }
    void SetLineAddress(int lineAddress) override { m_LineAddress = lineAddress; }
    /// The sum of the tables' line sizes.
    int GetLineSize() const override;
    void LoadFromStream(CInputStream& in, Queue& queue) override;
    void SaveToStream(COutputStream& out, Queue& queue) override;

    /// Appends an empty table, which the container owns.
    CSymbolTable* Create();
    /// None if there is no such table.
    CSymbolTable* Get(int index);
    const CSymbolTable* Get(int index) const;
    /// The table's index, -1 if it is not in the container.
    int Find(const CSymbolTable* table) const;
    int SymbolCount() const;
    int ExternSymbolCount() const;
    CObjectFile* GetOwner() const { return m_Owner; }
    /// Destroys all tables.
    void Free() { m_Tables.clear(); }

private:
    std::deque<CSymbolTable> m_Tables; // a deque, because their addresses must not change
    CObjectFile* m_Owner;
    int m_LineAddress;
    int m_PendingCount;
};

} // namespace ObjectFile

#endif
