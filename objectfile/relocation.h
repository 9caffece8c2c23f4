// Relocations: which bit fields of a section wait for the address of a symbol.
#ifndef MARLUNE_OBJECTFILE_RELOCATION_H
#define MARLUNE_OBJECTFILE_RELOCATION_H

#include <memory>
#include <vector>

#include "objectfile/persistentobject.h"

namespace ObjectFile {

class CSymbol;
class CSymbolTable;

/// Describes the bit field of a section's contents that receives a value once the address of a symbol is known.
class CRelocation {
public:
    enum eFlags : unsigned int {
        FLAG_RELATIVE = 1, // letter R, otherwise A
        FLAG_F = 2,        // letter F
        FLAG_SIGNED = 4,   // letter S
        FLAG_MASK = 16     // letter M
    };

    CRelocation() = default;
    /// Copies all fields. With `table` the symbol is looked up there by name; throws general_error if it is missing.
    CRelocation(const CRelocation& other, const CSymbolTable* table);

    /// Ten lines.
    void LoadFromStream(CInputStream& in);
    /// Throws general_error without a bound symbol, whose name the last line quotes.
    void SaveToStream(COutputStream& out) const;

    /// Index of the bound symbol in its table, or the stored index if none is bound.
    int GetSymbolID() const;
    bool IsSigned() const { return (m_Flags & FLAG_SIGNED) != 0; }

    unsigned long long m_Address = 0; // byte index into the section's contents
    unsigned int m_Flags = 0;
    int m_SizeInBytes = 0; // bytes that hold the field
    int m_LowBit = 0;      // position of the field's first character in the text of those bytes
    int m_HighBit = 0;     // and of its last, included
    int m_OffsetValue = 0; // this and the next two are for whoever computes the value
    int m_ShiftAmount = 0;
    unsigned long long m_Mask = 0;
    int m_SymbolIndex = -1;      // used while no symbol is bound
    CSymbol* m_Symbol = nullptr; // borrowed

private:
    void LoadFlags(CInputStream& in);
};

/// The relocations of one section in order.
class CRelocationTable : public CPersistentObject {
public:
    CRelocationTable() = default;
    /// `pendingCount` relocations are read by LoadFromStream.
    CRelocationTable(int lineAddress, int pendingCount) : m_LineAddress(lineAddress), m_PendingCount(pendingCount) {}
    /// Copies every relocation of `other`; throws as the copy of a relocation does.
    CRelocationTable(const CRelocationTable& other, const CSymbolTable* table);
    CRelocationTable(const CRelocationTable&) = delete;
    CRelocationTable& operator=(const CRelocationTable&) = delete;
    CRelocationTable(CRelocationTable&&) = delete;
    CRelocationTable& operator=(CRelocationTable&&) = delete;
    ~CRelocationTable() override { Free(); }

    int Count() const override { return static_cast<int>(m_Relocations.size()); }
    int GetLineAddress() const override { return m_LineAddress; }
    void SetLineAddress(int lineAddress) override { m_LineAddress = lineAddress; }
    int GetLineSize() const override { return LINES_PER_RELOCATION * Count(); }
    void LoadFromStream(CInputStream& in, Queue& queue) override;
    void SaveToStream(COutputStream& out, Queue& queue) override;

    /// Appends a relocation with default values; the table owns it.
    CRelocation* Create();
    /// Appends a copy with the same symbol; the table owns it.
    CRelocation* Add(const CRelocation& relocation);
    /// None if there is no such relocation.
    CRelocation* Get(int index) const;
    /// The index of that very object, -1 if it is not in the table.
    int Find(const CRelocation* relocation) const;
    /// Destroys all relocations.
    void Free() { m_Relocations.clear(); }

private:
    static constexpr int LINES_PER_RELOCATION = 10;

    std::vector<std::unique_ptr<CRelocation>> m_Relocations;
    int m_LineAddress = 0;
    int m_PendingCount = -1;
};

} // namespace ObjectFile

#endif
