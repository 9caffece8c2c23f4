// The ELF importer.
#ifndef MARLUNE_ELFTOVEXON_ELFTOVEXON_H
#define MARLUNE_ELFTOVEXON_ELFTOVEXON_H

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include <elf.h>

#include "elftovexon/elffile.h"
#include "elftovexon/segmentindex.h"
#include "objectfile/objectfile.h"
#include "objectfile/sharedtext.h"

/// Base of the converters into the object model.
class Converter {
public:
    Converter() = default;
    Converter(const Converter&) = delete;
    Converter& operator=(const Converter&) = delete;
    Converter(Converter&&) = delete;
    Converter& operator=(Converter&&) = delete;
    virtual ~Converter() = default;
};

/// Converts a 64-bit ELF file of the toolchain into an object file. Its errors are CGeneralErrors unless said
/// otherwise.
///
/// A LAU of an address space has 1 to 64 bits, and is stored in 1, 2, 4 or 8 bytes of the file. In a big-endian file
/// only 16-bit values are in that byte order: those of the file header and of the address space table, and the section
/// index of a symbol. All others are little-endian like the host.
class ElfToVexon : public Converter {
public:
    /// Reads and checks the file; the converter creates and owns the converted object.
    explicit ElfToVexon(const char* fileName);
    /// The same; converts into `target`, which is borrowed.
    ElfToVexon(const char* fileName, ObjectFile::CObjectFile* target);
    /// The same for a file that is open already.
    ElfToVexon(ObjectFile::CFileHandle file, std::string fileName, ObjectFile::CObjectFile* target);

    /// Does the file begin with the ELF magic? False if it cannot be read.
    static bool IsElfFile(const char* path);
    /// The same for an open file, whose position does not change.
    static bool IsElfFile(std::FILE& file);

    /// Fills the object file. Besides CGeneralError the object model's errors pass: general_error for two non-local
    /// symbols of one name, std::out_of_range for a relocation section whose name has fewer than five characters.
    /// After an error the object is partly filled.
    void Convert();
    /// Writes the converted object as a text object file; as CObjectFile::SaveFile.
    bool SaveToFile(const char* name);
    /// Hands the converted object over to the caller, who deletes it (or had passed it in and owns it anyway). The
    /// converter continues with an empty one of its own.
    ObjectFile::CObjectFile* ReleaseConvertedVexon();

    /// Is it an executable, its sections thus at absolute addresses?
    bool IsExec() const { return m_Header.e_type == ET_EXEC; }
    /// Has it several address spaces?
    bool IsHarvard() const { return m_AddressSpaces.size() > 1; }

    const std::string& GetSectionName(unsigned index) const;
    /// The first section of that name. If there is none, prints so to standard output and returns -1.
    int GetSectionIndexOfName(const std::string& name) const;
    /// The position of the section's contents record; symbol tables and relocation sections have none, which throws.
    int GetIndexContentOfSection(int index) const;
    /// `size` bytes of a section's contents from `offset` on; nothing for a size below 1. A view into the converter's
    /// copy of the file.
    std::string_view GetVectorPieceOfSize(int section, int offset, int size) const;
    /// The bytes from `*offset` up to the terminator; moves the offset after that.
    std::string_view GetVectorPieceTerminatedBy(int section, unsigned* offset, char terminator) const;
    /// The string at that offset of the section ".strtab".
    std::string GetSymbolName(unsigned offset) const;
    /// The section's physical address in LAUs: from the segment that holds it, or its own address if there is none.
    int GetLoadAddress(int sectionIndex) const;

    /// Writes the `bits` digits of the LAU at `data` to `out` (no terminating zero) and returns `out`. For BO_BIG the
    /// last of its file bytes holds the low bits and the most significant digit comes first; for any other order the
    /// first file byte holds the low bits and the least significant digit comes first.
    static char* ConvertByteToVexon(const unsigned char* data, int bits, ObjectFile::eByteOrder order, char* out);
    /// CRelocation's flags. `reversed` says whether the shift is negated and the mask counts from the top.
    static unsigned ConvertRelocationType(const Elf64_Rela* entry, bool& reversed);

private:
    struct CSectionContents {
        std::string_view m_Bytes; // empty for SHT_NOBITS
        int m_Section;
    };
    struct AddressSpace {
        ObjectFile::CMemoryOrganization m_Named; // only holds the name, which copies share
        std::uint16_t m_First;                   // carried, without a use here
        std::uint16_t m_WordBitSize;
        std::uint16_t m_ByteBitSize;
        std::uint16_t m_BigEndian; // 0: little-endian
    };
    struct RelocationContents {
        int m_Section;
        std::vector<Elf64_Rela> m_Entries;
    };

    // Reading
    void LoadFile();
    void ReadHeader();
    void ReadTables();
    void ReadSection(int index);
    void ReadSymbols(const Elf64_Shdr& section);
    void ReadAddressSpaces(int section);
    void ReadSectionNames();
    bool IsBigEndian() const { return m_Header.e_ident[EI_DATA] == ELFDATA2MSB; }
    std::uint16_t FileOrder(std::uint16_t value) const;
    bool HasPhysicalAddresses() const;

    // Conversion
    void ConvertFileHeader();
    void ConvertSections();
    void ConvertContents(int index, ObjectFile::CSection& section) const;
    void ConvertSymbols();
    void ConvertRelocations();
    ObjectFile::CMemoryOrganization OrganizationOf(const Elf64_Shdr& section) const;
    std::unique_ptr<ObjectFile::CSymbol> ConvertSymbol(const Elf64_Sym& entry);
    ObjectFile::CSharedText SymbolName(const Elf64_Sym& entry);
    ObjectFile::CSharedText SymbolString(unsigned offset);
    static std::string_view TerminatedPiece(std::string_view bytes, unsigned* offset, char terminator);
    void PlaceSymbol(const Elf64_Sym& entry, ObjectFile::CSymbol& symbol);
    ObjectFile::CSection* ConvertedSection(unsigned index);
    ObjectFile::CRelocation ConvertRelocation(const Elf64_Rela& entry, int bitsPerByte);
    ObjectFile::CSymbol* RelocationSymbol(const Elf64_Rela& entry);

    std::string m_FileName;
    marlune::elf::CElfFile m_File;
    std::unique_ptr<ObjectFile::CObjectFile> m_Owned; // none when converting into an object passed in
    ObjectFile::CObjectFile* m_Target;
    Elf64_Ehdr m_Header{};
    ObjectFile::eByteOrder m_ByteOrder = ObjectFile::BO_UNDEFINED; // set by ConvertFileHeader
    std::vector<Elf64_Phdr> m_ProgramHeaders;
    std::optional<marlune::elf::CSegmentIndex> m_LoadSegments; // none when all addresses are virtual ones
    std::optional<marlune::elf::CSegmentIndex> m_TlsSegments;  // the same
    std::vector<Elf64_Shdr> m_SectionHeaders;
    std::vector<CSectionContents> m_Contents; // in the order of their sections
    std::vector<AddressSpace> m_AddressSpaces;
    std::vector<Elf64_Sym> m_Symbols;
    std::vector<RelocationContents> m_Relocations;
    std::vector<std::string> m_SectionNames;
    std::map<std::string_view, int> m_SectionIndices; // the first of each name

    // While symbols are converted
    std::unordered_map<unsigned, ObjectFile::CSection*> m_ConvertedSections; // by ELF index
    std::shared_ptr<const std::string> m_SymbolStrings; // the names' section, shared with the symbols
};

#endif
