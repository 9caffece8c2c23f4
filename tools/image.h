// The file that a command works on.
#ifndef MARLUNE_TOOLS_IMAGE_H
#define MARLUNE_TOOLS_IMAGE_H

#include <memory>
#include <optional>
#include <stdexcept>
#include <string>

#include "objectfile/objectfile.h"
#include "tools/commands.h"

namespace marlune::tool {

/// An image file that cannot be used. The message names the file, and the line counted from 1 where there is one.
class CImageError : public std::runtime_error {
public:
    CImageError(const std::string& path, std::optional<long> line, const std::string& text);

    const std::optional<long> m_Line; // counted from 1
    const std::string m_Text;         // without file and line
};

/// Loads options.m_File: a text object file or an ELF file of the toolchain, as a simulator does, and programs of any
/// other toolchain by way of an import. Throws CImageError with the exact reason, which a simulator does not show.
/// Without `warn`, warnings go to standard error.
std::unique_ptr<ObjectFile::CObjectFile> LoadImage(const COptions& options, const CWarn& warn = nullptr);
/// Is options.m_File a program of another toolchain?
bool IsImported(const COptions& options);
/// What options.m_File is: "text object file", "Intel HEX file". Throws CImageError when that cannot be said.
std::string KindOfImage(const COptions& options);

/// Writes a warning about a file on standard error.
void Warn(const std::string& path, const std::string& text);

/// In bytes; 0 when the file is not there.
std::uint64_t FileSize(const std::string& path);

/// "text", "data", "bss", "debug", "info".
std::string TypeName(ObjectFile::CSection::eType type);
/// Bits of one LAU; 0 when the section's organization allows none.
std::uint64_t LauBits(const ObjectFile::CSection& section);
/// LAUs that the section occupies.
std::uint64_t LauCount(const ObjectFile::CSection& section);
/// Why a load leaves the section out whatever the memory ("stack section"), or an empty text.
std::string ReasonLeftOut(const ObjectFile::CSection& section);

} // namespace marlune::tool

#endif
