// Sections: the pieces of a program image.
#ifndef MARLUNE_OBJECTFILE_SECTION_H
#define MARLUNE_OBJECTFILE_SECTION_H

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "objectfile/memoryorganization.h"
#include "objectfile/relocation.h"
#include "objectfile/sectiondata.h"

namespace ObjectFile {

class CObjectFile;
class CSectionContainer;
class CSymbolTable;

/// Name of the section that holds the assembly line table.
extern const char* const VEXON_LINE_SEC_NAME;
/// Name that the toolchain gives to the address space table of an ELF file.
extern const char* const VEXON_AS_SEC_NAME;

/// A named, contiguous piece of the program image with its own memory organization, placement and contents.
class CSection : public CMemoryOrganization {
public:
    enum eType {
        TYPE_NONE = 0,  // cannot be saved
        TYPE_TEXT = 1,  // T
        TYPE_DATA = 2,  // D
        TYPE_BSS = 3,   // B: zeros of the stated size, no data lines in the file
        TYPE_DEBUG = 4, // G
        TYPE_INFO = 5   // I
    };

    /// `owner` is the object file that holds the section; borrowed, may be none.
    explicit CSection(CObjectFile* owner = nullptr);
    CSection(eType type, std::string name, const CMemoryOrganization& organization, CObjectFile* owner = nullptr);
    CSection(const CSection&) = delete;
    CSection& operator=(const CSection&) = delete;
    CSection(CSection&&) = delete;
    CSection& operator=(CSection&&) = delete;
    ~CSection();

    const std::string& GetName() const { return m_Name; }
    void SetName(const std::string& name);
    eType GetType() const { return m_Type; }
    void SetType(eType type) { m_Type = type; }
    /// In bytes; 0 means none.
    unsigned int GetByteAddressAlignment() const { return m_ByteAddressAlignment; }
    void SetByteAddressAlignment(unsigned int alignment) { m_ByteAddressAlignment = alignment; }
    bool GetMemoryByteAddressIsAbsolute() const { return m_MemoryByteAddressIsAbsolute; }
    void SetMemoryByteAddressIsAbsolute(bool absolute) { m_MemoryByteAddressIsAbsolute = absolute; }
    /// In bytes (LAUs).
    unsigned long long GetMemoryByteAddress() const { return m_MemoryByteAddress; }
    void SetMemoryByteAddress(unsigned long long address) { m_MemoryByteAddress = address; }
    /// The object file that holds the section, or none.
    CObjectFile* GetOwner() const { return m_Owner; }
    /// The section's index in its object file, 0 without one. Throws std::out_of_range if that does not hold it.
    int GetIndex() const;
    /// Expires with the section; it does not keep the section alive.
    std::weak_ptr<CSection> Watch();

    /// The contents, or none.
    CSectionData* GetSectionData() { return m_Data.get(); }
    const CSectionData* GetSectionData() const { return m_Data.get(); }
    int GetSectionDataByteCount() const { return m_Data ? m_Data->GetByteCount() : 0; }
    /// Number of data lines.
    int GetSectionDataWordCount() const { return m_Data ? m_Data->Count() : 0; }
    /// Creates empty contents in the section's current memory organization if there are none; returns the contents.
    CSectionData* CreateSectionData();
    /// Appends binary digits (CSectionData::Add), creating the contents if absent.
    void AddData(const char* bits);
    /// Appends bytes as eight digits each: bit 7 first for BO_BIG, bit 0 first for BO_LITTLE. Throws general_error for
    /// BO_UNDEFINED unless the count is 0. All digits are appended at once, whatever the size of the section's bytes.
    void AddBinaryData(const char* bytes, unsigned int count);
    void AddBinaryData(const std::vector<char>& bytes);
    /// The inverse of AddBinaryData; throws general_error for BO_UNDEFINED.
    std::vector<char> GetBinaryData() const;
    /// Empties the contents, and with ClearAll also the relocation table; the records themselves stay.
    void ClearData();
    void ClearAll();
    /// Destroys contents and relocation table.
    void Free();

    /// The relocations, or none.
    CRelocationTable* GetRelocationTable() { return m_Relocations.get(); }
    const CRelocationTable* GetRelocationTable() const { return m_Relocations.get(); }
    int RelocationCount() const { return m_Relocations ? m_Relocations->Count() : 0; }
    /// None if there is no such relocation.
    CRelocation* GetRelocation(int index) const { return m_Relocations ? m_Relocations->Get(index) : nullptr; }
    /// Appends a copy, creating the table if absent, and returns the copy.
    CRelocation* AddRelocation(const CRelocation& relocation);

    /// Writes `value` into the relocation's bit field. A value that does not fit is cut with a warning on standard
    /// error, which needs a bound symbol. Throws std::out_of_range for bytes outside the contents or bit positions
    /// outside the bytes; nothing is written then.
    void SetRelocData(const CRelocation* relocation, long long value);
    /// The value to write into an unsigned or signed field: cut, with a warning, when it does not fit. Fields of
    /// 64 bits or more are not checked.
    static long long CheckUnsignedRelocationSizeAndTrunc(const CRelocation* relocation, long long value);
    static long long CheckSignedRelocationSizeAndTrunc(const CRelocation* relocation, long long value);

    /// Ends the process with exit status 1 and a message if an absolute address is not a multiple of the alignment.
    void CheckAbsoluteSectionAddressAlignment() const;
    /// True for the section ".stack" (".heap"); with `checkSymbols` only when the object file's first symbol table
    /// also says so: its start symbol at 0 and its end symbol at the section's byte count.
    bool IsStack(bool checkSymbols) const;
    bool IsHeap(bool checkSymbols) const;

    /// Appends a deep copy of this section to `target`, which owns it, and returns it. With `table` the relocations'
    /// symbols are looked up there by name (general_error if one is missing; nothing is appended then).
    CSection* Copy(CObjectFile& target, const CSymbolTable* table) const;

    /// The 17 header lines; contents and relocations are queued as records of their own.
    void SaveToStream(COutputStream& out, CPersistentObject::Queue& queue);
    void LoadFromStream(CInputStream& in, CPersistentObject::Queue& queue);

private:
    friend class CSectionContainer;

    void LoadType(CInputStream& in);
    void LoadDataHeader(CInputStream& in, CPersistentObject::Queue& queue);
    bool IsBoundedBy(const char* startName, const char* endName) const;

    std::string m_Name;
    std::unique_ptr<CSectionData> m_Data;
    std::unique_ptr<CRelocationTable> m_Relocations;
    CObjectFile* m_Owner;
    CSectionContainer* m_Container = nullptr;
    std::uint64_t m_Number = 0;       // ascends in m_Container
    std::shared_ptr<CSection> m_Self; // owns nothing; made when the section is first watched
    unsigned long long m_MemoryByteAddress = 0;
    unsigned int m_ByteAddressAlignment = 0;
    eType m_Type = TYPE_NONE;
    bool m_MemoryByteAddressIsAbsolute = false;
};

} // namespace ObjectFile

#endif
