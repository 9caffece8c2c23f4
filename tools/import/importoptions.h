// What a user says about a program of another toolchain: which memory it is for, and what its addresses mean.
#ifndef MARLUNE_TOOLS_IMPORT_IMPORTOPTIONS_H
#define MARLUNE_TOOLS_IMPORT_IMPORTOPTIONS_H

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "objectfile/utils.h"

namespace marlune::tool {

/// The formats of programs. All but OBJECT are imported, except for ELF files of our own toolchain.
enum class eFormat { OBJECT, ELF, IHEX, SREC, READMEMH, BINARY };

/// Addresses are those of the file: they count bytes, or words in $readmemh text.
struct CImportOptions {
    std::optional<eFormat> m_Format;               // recognised by content if not given
    std::optional<std::string> m_Space;            // address space that the memory loads
    std::optional<std::uint32_t> m_Width;          // bits of one LAU, that is of one cell, 1 to 1024
    std::optional<std::uint64_t> m_Base;           // address that becomes 0
    std::optional<ObjectFile::eByteOrder> m_Order; // in which bytes form a LAU; the file's own if not given
    std::optional<std::uint64_t> m_Entry;          // entry point; the file's own if not given
};

/// The bits of a LAU. Without a width it is a byte, so that addresses are those of the file.
inline std::uint32_t LauBits(const CImportOptions& options) {
    return options.m_Width.value_or(8);
}

/// Receives warnings about a program that can be used nevertheless: a sentence without the file's name.
using CWarn = std::function<void(const std::string& text)>;

} // namespace marlune::tool

#endif
