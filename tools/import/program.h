// A program of another toolchain as its file describes it: bytes at addresses, sections, symbols, an entry point.
#ifndef MARLUNE_TOOLS_IMPORT_PROGRAM_H
#define MARLUNE_TOOLS_IMPORT_PROGRAM_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "objectfile/section.h"
#include "objectfile/symbol.h"
#include "tools/import/bytesource.h"
#include "tools/import/importoptions.h"

namespace marlune::tool {

/// Bytes that follow each other at addresses and in the source.
struct CExtent {
    std::uint64_t m_Address;
    std::uint64_t m_Size;
    std::uint64_t m_Offset; // in the source
};

/// A part of a program that has a name in the file, or a run of its bytes without a name.
struct CProgramSection {
    std::string m_Name;
    ObjectFile::CSection::eType m_Type; // text, data, or bss for zeros
    std::uint64_t m_Address;
    std::uint64_t m_Size;
    std::size_t m_Key; // by which symbols refer to it

    std::uint64_t End() const { return m_Address + m_Size; }
    bool IsZero() const { return m_Type == ObjectFile::CSection::TYPE_BSS; }
};

struct CProgramSymbol {
    std::string m_Name;
    ObjectFile::CSymbol::eType m_Type; // private, public, weak or absolute
    ObjectFile::CSymbol::eUsage m_Usage;
    std::uint64_t m_Address; // an absolute symbol has a value of any meaning
    std::uint64_t m_Size;
    std::size_t m_Key; // of its section
};

/// All addresses and sizes count bytes. A reader fills the members and then calls Arrange.
class CProgram {
public:
    std::unique_ptr<CByteSource> m_Source;
    std::vector<CExtent> m_Extents;          // bytes outside all extents are zero
    std::vector<CProgramSection> m_Sections; // none in formats without names
    std::vector<CProgramSymbol> m_Symbols;
    std::optional<std::uint64_t> m_Entry;
    ObjectFile::eByteOrder m_Order = ObjectFile::BO_LITTLE;
    unsigned m_WordBytes = 1; // the factor for addresses in the file: the bytes of a word of $readmemh text

    /// Appends bytes to the source, which is a CBytePool, and to the last extent when they follow it.
    void Add(CBytePool& pool, std::uint64_t address, std::string_view bytes);

    /// Sorts extents and sections by address and drops empty extents; without sections, each extent becomes one without
    /// a name. Zeros that overlap another section are left out, with a warning: a program that copies itself elsewhere
    /// has its zeros there. Throws std::runtime_error if other sections overlap, if there are none, or if addresses
    /// need more than 64 bits.
    void Arrange(const CWarn& warn);
    /// Stores the bytes from the address on, after Arrange.
    void Read(std::uint64_t address, char* to, std::size_t count) const;

    /// "section '.text' (bytes 0x100 to 0x1ff)", for messages.
    std::string Describe(const CProgramSection& section) const;
    /// "byte 0x100", in the unit of the file's addresses.
    std::string DescribeAddress(std::uint64_t address) const;

private:
    void WarnOfLeftOut(const CProgramSection& zeros, const CProgramSection& other, const CWarn& warn) const;
};

} // namespace marlune::tool

#endif
