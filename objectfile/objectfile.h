// Program images.
#ifndef MARLUNE_OBJECTFILE_OBJECTFILE_H
#define MARLUNE_OBJECTFILE_OBJECTFILE_H

#include <memory>
#include <optional>
#include <string>

#include "objectfile/lineinfo.h"
#include "objectfile/memoryorganization.h"
#include "objectfile/section.h"
#include "objectfile/sectioncontainer.h"
#include "objectfile/symbol.h"
#include "objectfile/symboltable.h"

namespace ObjectFile {

/// First line of a text object file and of an archive.
extern const char* const VEXON_OBJECT_MAGIC;
extern const char* const VEXON_ARCHIVE_MAGIC;

/// Why a text object file could not be read.
struct CReadFailure {
    std::string m_Reason;      // the message of the exception that LoadFromStream throws, without "Line n: "
    std::optional<int> m_Line; // zero-based number of the line at fault, if there is one
};

/// One program image. It owns its sections, symbol tables and line table.
class CObjectFile : public CMemoryOrganization {
public:
    enum eFlags {
        FLAG_NO_RELOCATIONS = 2, // letter X
        FLAG_NO_SYMBOLS = 8      // letter S
    };

    /// The memory organization is not valid.
    CObjectFile();
    CObjectFile(int wordBitSize, int bytesPerWord, eByteOrder order, const std::string& addressSpaceName);
    CObjectFile(const CObjectFile&) = delete;
    CObjectFile& operator=(const CObjectFile&) = delete;
    CObjectFile(CObjectFile&&) = delete;
    CObjectFile& operator=(CObjectFile&&) = delete;
    ~CObjectFile();

    int SectionsCount() const;
    /// Throws std::out_of_range if there is no such section.
    CSection* GetSection(int index);
    const CSection* GetSection(int index) const;
    /// The first section of that name, or none.
    CSection* FindSection(const std::string& name);
    const CSection* FindSection(const std::string& name) const;
    /// The section's index; throws std::out_of_range if it is not in this object file. The pointer is not dereferenced
    /// before that is known.
    int FindSection(const CSection* section) const;
    /// Appends the section and takes ownership of it.
    void AddSection(CSection* section);
    /// Removes and destroys the section; symbols bound to it become unbound. Does nothing for a section that this
    /// object file does not hold.
    void DeleteSection(CSection* section);
    /// Appends a new section with the given memory organization; the object file owns it.
    CSection* CreateSection(CSection::eType type, const std::string& name, const CMemoryOrganization& organization);
    /// The same with the memory organization of the object file.
    CSection* CreateSection(CSection::eType type, const std::string& name);
    /// Marks every section's address as absolute.
    void SetSectionsAreAllocated();

    int SymbolTablesCount() const;
    /// Throws std::out_of_range if there is no such table.
    CSymbolTable* GetSymbolTable(int index);
    const CSymbolTable* GetSymbolTable(int index) const;
    /// Appends an empty table; the object file owns it.
    CSymbolTable* CreateSymbolTable();

    const CTimeStamp& GetTimeStamp() const { return m_TimeStamp; }
    bool GetEntryPointIsSet() const { return m_EntryPointIsSet; }
    unsigned long long GetEntryPoint() const { return m_EntryPoint; }
    /// A byte address; marks the entry point as set.
    void SetEntryPoint(unsigned long long address);
    void ClearEntryPoint();
    /// The path given to LoadFile.
    const std::string& GetFileName() const { return m_FileName; }
    void SetFileName(const std::string& name) { m_FileName = name; }

    /// eFlags, computed from the contents.
    int GetFlags() const;
    /// True when the object file's memory organization is valid or all sections (at least one) share one, which it
    /// then inherits.
    bool TryToSetUniformMemoryOrganization();
    /// The organization of the stack or of the data: the object file's own, or that of a fitting section. Throws
    /// general_error if there is none. Borrowed from this object.
    const CMemoryOrganization& GetStackMemoryOrganization() const;
    const CMemoryOrganization& GetDataAndDebugMemoryOrganization() const;

    /// Decodes the assembly line section, if there is one.
    void PopulateLineInfo();
    /// The decoded line table, or none.
    const CLineTable* GetLineTable() const { return m_LineTable.get(); }

    /// Assigns line addresses to all records; returns the number of lines of the file.
    int RemapToFile();
    /// Binds symbols to sections and relocations to symbols by their indices; throws syntax_error (line 0) for an index
    /// that does not exist. Those already bound keep their section or symbol, which must be in this object file (for a
    /// relocation: in its first symbol table).
    void CheckLinks();

    /// Writes the text form; takes the current time as time stamp. Throws general_error when records overlap.
    void SaveToStream(COutputStream& out);
    /// Throws file_error if the file cannot be opened; false if not all of it could be written (a full disk).
    bool SaveFile(const std::string& path);
    /// Replaces the contents by those of the text form. After an exception the object is partly filled.
    void LoadFromStream(CInputStream& in);
    /// The same with a result instead of an exception; nothing on success.
    std::optional<CReadFailure> ReadFromStream(CInputStream& in);
    /// Loads a text object file or an ELF file. Throws file_error if it cannot be opened (OpenRegularFile). Any error
    /// in a text file is reported on standard error and thrown as a plain std::exception; those of an ELF file are
    /// thrown unchanged.
    void LoadFile(const std::string& path);
    /// Destroys sections, symbol tables and line table.
    void Free();
    /// Makes it like a new object, except for the file name.
    void Clear();

private:
    /// The section container, created if absent.
    CSectionContainer& Sections();
    bool HasSymbols() const;
    int RelocationCount() const;
    void SaveHeader(COutputStream& out);
    void LoadHeader(CInputStream& in, CPersistentObject::Queue& queue);
    void LoadRecords(CInputStream& in);
    void LinkRecords();
    const CSection* FindSectionOfType(const std::string& name, CSection::eType type) const;
    const CMemoryOrganization* FindDataMemoryOrganization() const;

    std::unique_ptr<CSectionContainer> m_Sections;
    std::unique_ptr<CSymbolTableContainer> m_SymbolTables;
    std::unique_ptr<CLineTable> m_LineTable;
    CTimeStamp m_TimeStamp;
    bool m_EntryPointIsSet = false;
    unsigned long long m_EntryPoint = 0;
    std::string m_FileName;
};

} // namespace ObjectFile

#endif
