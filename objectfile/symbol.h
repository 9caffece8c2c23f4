#ifndef MARLUNE_OBJECTFILE_SYMBOL_H
#define MARLUNE_OBJECTFILE_SYMBOL_H

#include "objectfile/persistentobject.h"

#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace ObjectFile {

class CObjectFile;
class CSection;
class CSymbolTable;

/// Free text lines stored with a symbol.
class CExpansionTable {
public:
    CExpansionTable() = default;
    CExpansionTable(const CExpansionTable&) = default;
    CExpansionTable(CExpansionTable&&) = default;
    CExpansionTable& operator=(const CExpansionTable&) = default;
    CExpansionTable& operator=(CExpansionTable&&) = default;
    virtual ~CExpansionTable() = default;

    /// Lines that the table's contents occupy in a file: two for a header text that is not empty, and its lines.
    int Count() const { return static_cast<int>(m_Lines.size()) + (m_HeaderText.empty() ? 0 : 2); }

    /// A header is written only when its text is not empty, but the first two lines of a table of two or more lines
    /// are always read as a header.
    void LoadFromStream(CInputStream& in);
    void SaveToStream(COutputStream& out) const;

    std::string m_HeaderText;
    std::vector<std::string> m_Lines;
};

/// Names an address of the program image.
class CSymbol {
public:
    enum eType {
        TYPE_NONE = 0,     // written without a letter
        TYPE_PRIVATE = 1,  // R: local
        TYPE_PUBLIC = 2,   // U
        TYPE_WEAK = 3,     // W
        TYPE_EXTERN = 4,   // X
        TYPE_ABSOLUTE = 5, // A
        TYPE_COMMON = 6    // C
    };
    enum eUsage {
        USAGE_UNDEFINED = 0, // N
        USAGE_FUNCTION = 1,  // F
        USAGE_OBJECT = 2,    // O
        USAGE_FILE = 3       // I
    };

    CSymbol() = default;
    CSymbol(std::string name, eType type, CSection* section = nullptr, unsigned long long memoryAddress = 0);

    const std::string& GetName() const { return m_Name; }
    /// Renames the symbol; in a table as CSymbolTable::UpdateSymbolName does.
    void UpdateName(const std::string& name);
    eType GetType() const { return m_Type; }
    void SetType(eType type) { m_Type = type; }
    eUsage GetUsageType() const { return m_Usage; }
    void SetUsageType(eUsage usage) { m_Usage = usage; }
    unsigned long long GetMemoryAddress() const { return m_MemoryAddress; }
    void SetMemoryAddress(unsigned long long address) { m_MemoryAddress = address; }
    int GetBlockSize() const { return m_BlockSize; }
    void SetBlockSize(int size) { m_BlockSize = size; }
    /// The section the symbol is bound to (borrowed), or none.
    CSection* GetSection() const { return m_Section; }
    void SetSection(CSection* section);
    /// The section's index when the symbol was bound, or as read from a file; 0 without a section.
    int GetSectionIndex() const { return m_SectionIndex; }
    /// True for the types whose symbols lie in a section: all but extern, absolute and common.
    bool HasSection() const { return m_Type != TYPE_EXTERN && m_Type != TYPE_ABSOLUTE && m_Type != TYPE_COMMON; }
    CExpansionTable& GetExpansionTable() { return m_Expansion; }
    const CExpansionTable& GetExpansionTable() const { return m_Expansion; }
    /// The table that holds the symbol, or none.
    CSymbolTable* GetOwner() const { return m_Owner; }

    /// Index of the bound section in its object file. While none is bound: the index as read from a file, otherwise 0.
    int GetSectionID() const;
    /// Index of the symbol in its table, -1 without a table.
    int ID() const;
    /// The same name and type; with `compareAddress` also the same section name and address.
    bool IsSameSymbolAs(const CSymbol* other, bool compareAddress) const;

    void LoadFromStream(CInputStream& in);
    void SaveToStream(COutputStream& out) const;

private:
    friend class CSymbolTable;

    void LoadUsage(CInputStream& in);

    std::string m_Name;
    CExpansionTable m_Expansion;
    CSymbolTable* m_Owner = nullptr;
    CSection* m_Section = nullptr;
    unsigned long long m_MemoryAddress = 0;
    int m_Index = -1; // position in m_Owner
    int m_SectionIndex = 0;
    int m_BlockSize = 0;
    eType m_Type = TYPE_NONE;
    eUsage m_Usage = USAGE_UNDEFINED;
};

/// Symbols in insertion order with an index by name.
class CSymbolTable {
public:
    CSymbolTable() = default;
    CSymbolTable(const CSymbolTable&) = delete;
    CSymbolTable& operator=(const CSymbolTable&) = delete;
    CSymbolTable(CSymbolTable&&) = delete;
    CSymbolTable& operator=(CSymbolTable&&) = delete;
    virtual ~CSymbolTable() = default;
    virtual int Count() const { return static_cast<int>(m_Symbols.size()); }
    virtual int GetLineAddress() const { return m_LineAddress; }
    /// 9 lines for each symbol, the expansion lines and 2; not the number of lines that SaveToStream writes.
    virtual int GetLineSize() const;
    virtual void LoadFromStream(CInputStream& in);
    virtual void SaveToStream(COutputStream& out) const;

    /// Takes ownership of the symbol, whatever the outcome. A private symbol whose name is in the table already is
    /// destroyed with a warning on standard error, and the answer is false; any other type throws general_error.
    bool AddSymbol(CSymbol* symbol);
    bool AddSymbol(std::unique_ptr<CSymbol> symbol);

    /// None when there is no symbol of that name.
    CSymbol* FindSymbol(const std::string& name);
    const CSymbol* FindSymbol(const std::string& name) const;
    /// The index of that very symbol, -1 when it is not in the table.
    int FindSymbol(const CSymbol* symbol) const;
    CSymbol* LookUpSymbol(const std::string& name) const;
    CSymbol* LookUpSymbol(const char* name) const;
    /// Throws std::out_of_range when there is no such symbol.
    CSymbol* GetSymbol(int index) const;
    /// Renames a symbol. Throws general_error when `oldName` is not in the table or `newName` is.
    void UpdateSymbolName(const std::string& oldName, const std::string& newName);
    /// Symbols of type extern.
    int ExternSymbolCount() const;

private:
    void Append(std::unique_ptr<CSymbol> symbol);

    std::vector<std::unique_ptr<CSymbol>> m_Symbols;
    std::unordered_map<std::string_view, CSymbol*> m_ByName; // views into the symbols' names
    int m_LineAddress = 0;
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
    /// None when there is no such table.
    CSymbolTable* Get(int index) const;
    /// The table's index, -1 when it is not in the container.
    int Find(const CSymbolTable* table) const;
    int SymbolCount() const;
    int ExternSymbolCount() const;
    CObjectFile* GetOwner() const { return m_Owner; }
    /// Destroys all tables.
    void Free() { m_Tables.clear(); }

private:
    std::vector<std::unique_ptr<CSymbolTable>> m_Tables;
    CObjectFile* m_Owner;
    int m_LineAddress;
    int m_PendingCount;
};

} // namespace ObjectFile

#endif
