// Symbols: the names of a program image.
#ifndef MARLUNE_OBJECTFILE_SYMBOL_H
#define MARLUNE_OBJECTFILE_SYMBOL_H

#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "objectfile/expansiontable.h"
#include "objectfile/sharedtext.h"
#include "objectfile/utils.h"

namespace ObjectFile {

class CSection;
class CSymbolTable;

/// Names an address of the program image.
///
/// A table owns the symbols in it. A copy of such a symbol is a symbol of its own that is in no table.
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
    CSymbol(const std::string& name, eType type, CSection* section = nullptr, unsigned long long memoryAddress = 0);
    CSymbol(CSharedText name, eType type) : m_Name(std::move(name)), m_Type(type) {}
    CSymbol(const CSymbol& other) : m_Name(other.m_Name) { CopyFields(other); }
    /// Copies everything including the name. A symbol in a table stays there and is renamed as by UpdateName, which may
    /// throw; then nothing changes.
    CSymbol& operator=(const CSymbol& other);
    ~CSymbol() = default;

    std::string GetName() const { return m_Name.String(); }
    /// The same without a copy; valid until the symbol is renamed.
    std::string_view GetNameView() const { return m_Name.View(); }
    /// Renames the symbol. In a table no other symbol may have that name: throws general_error.
    void UpdateName(const std::string& name);
    eType GetType() const { return m_Type; }
    void SetType(eType type) { m_Type = type; }
    eUsage GetUsageType() const { return m_Usage; }
    void SetUsageType(eUsage usage) { m_Usage = usage; }
    unsigned long long GetMemoryAddress() const { return m_MemoryAddress; }
    void SetMemoryAddress(unsigned long long address) { m_MemoryAddress = address; }
    int GetBlockSize() const { return m_BlockSize; }
    void SetBlockSize(int size) { m_BlockSize = size; }
    /// The section that the symbol is bound to (borrowed); none also once that section has been destroyed.
    CSection* GetSection() const { return m_Section.lock().get(); }
    /// Binds the symbol; null unbinds it. Throws std::out_of_range for a section that its object file does not hold;
    /// then nothing changes.
    void SetSection(CSection* section);
    /// True for the types whose symbols lie in a section: all but extern, absolute and common.
    bool HasSection() const { return m_Type != TYPE_EXTERN && m_Type != TYPE_ABSOLUTE && m_Type != TYPE_COMMON; }
    CExpansionTable& GetExpansionTable() { return m_Expansion; }
    const CExpansionTable& GetExpansionTable() const { return m_Expansion; }
    /// The table that holds the symbol, or none.
    CSymbolTable* GetOwner() const { return m_Owner; }

    /// Index of the bound section in its object file. While none is bound: the index as read from a file, otherwise 0.
    /// It is -1, which no file may hold, for a symbol that lies in a section and whose section was destroyed.
    int GetSectionID() const;
    /// Index of the symbol in its table, -1 without a table.
    int ID() const { return m_Index; }
    /// The same name and type; with `compareAddress` also the same section name and address.
    bool IsSameSymbolAs(const CSymbol* other, bool compareAddress) const;

    void LoadFromStream(CInputStream& in);
    void SaveToStream(COutputStream& out) const;

private:
    friend class CSymbolTable;

    /// Copies all but the name and the place in a table.
    void CopyFields(const CSymbol& other);
    void Rename(CSharedText name);
    void LoadFromStream(CInputStream& in, CTextPool& names);
    void LoadUsage(CInputStream& in);

    CSharedText m_Name;
    CExpansionTable m_Expansion;
    CSymbolTable* m_Owner = nullptr;
    std::weak_ptr<CSection> m_Section;
    unsigned long long m_MemoryAddress = 0;
    int m_Index = -1;       // position in m_Owner
    int m_SectionIndex = 0; // as read from a file
    int m_BlockSize = 0;
    eType m_Type = TYPE_NONE;
    eUsage m_Usage = USAGE_UNDEFINED;
    bool m_IsBound = false; // to m_Section, which may have been destroyed since
};

} // namespace ObjectFile

#endif
