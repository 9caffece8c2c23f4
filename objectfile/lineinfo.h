// The assembly line table: which source line an address comes from.
#ifndef MARLUNE_OBJECTFILE_LINEINFO_H
#define MARLUNE_OBJECTFILE_LINEINFO_H

#include <string>
#include <vector>

namespace ObjectFile {

class CObjectFile;
class CSection;
class CSectionData;

/// One row of the assembly line table.
struct CLineInfo {
    unsigned long long m_Address = 0; // in LAUs
    int m_Line = 0;                   // source line
    int m_FileIndex = 0;              // into the table's file names
    bool m_EndOfSequence = false;     // last row of a compilation unit
};

/// Maps memory addresses to source lines of the assembly input: the section ".marlune_line", decoded.
/// The table holds the section only while PopulateFromMarluneLineSection runs. The reading operations take the position
/// of a byte in the section and return the position after what they read. They throw general_error without a section
/// and for malformed contents, and std::out_of_range at the section's end.
class CLineTable {
public:
    /// The object file is borrowed.
    explicit CLineTable(const CObjectFile& objectFile) : m_ObjectFile(&objectFile) {}

    /// Decodes the section, starting from empty lists. False if there is none, it has no data, or it is malformed,
    /// which a warning on standard error reports. Rows and names decoded before the error stay.
    bool PopulateFromMarluneLineSection();

    const std::vector<CLineInfo>& GetRows() const { return m_Rows; }
    const std::vector<std::string>& GetFileNames() const { return m_FileNames; }

    /// One compilation unit; its file numbers start at `fileBase`.
    int PopulateFromLineCU(int position, int fileBase);
    int ReadLineCUHeader(int position, unsigned long long* startAddress, int* cuSize);
    int ReadLineCUItems(int position, int fileBase, unsigned long long startAddress);
    int ReadStartAddress(int position, unsigned long long* address) const;
    int ReadByte(int position, char* value) const;
    int ReadStringZero(int position, std::string* text) const;
    int ReadNumAsStringZero(int position, long long* value) const;

private:
    /// Throws general_error while there is none.
    const CSection& Section() const;
    std::string SignificantDigits(int position) const;
    bool Decode();

    const CObjectFile* m_ObjectFile;
    const CSection* m_Section = nullptr; // with contents; while the table is decoded
    std::vector<CLineInfo> m_Rows;
    std::vector<std::string> m_FileNames;
};

} // namespace ObjectFile

#endif
