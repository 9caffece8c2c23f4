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

/// An image file that cannot be used. The message names the file, and the line (counted from 1) if there is one.
class CImageError : public std::runtime_error {
public:
    CImageError(const std::string& path, std::optional<long> line, const std::string& text);

    const std::optional<long> m_Line; // counted from 1
    const std::string m_Text;         // without file and line
};

/// Loads options.m_File. A text object file or an ELF file of the toolchain is loaded as a simulator does, and a
/// program of another toolchain is imported. Throws CImageError with the exact reason, which a simulator does not show.
/// Without `warn`, warnings go to standard error.
std::unique_ptr<ObjectFile::CObjectFile> LoadImage(const COptions& options, const CWarn& warn = nullptr);
/// Is options.m_File a program of another toolchain?
bool IsImported(const COptions& options);
/// What options.m_File is: "text object file", "Intel HEX file". Throws CImageError if that cannot be told.
std::string KindOfImage(const COptions& options);

/// Writes a warning about a file to standard error.
void Warn(const std::string& path, const std::string& text);

/// In bytes; 0 if the file does not exist.
std::uint64_t FileSize(const std::string& path);

/// "text", "data", "bss", "debug", "info".
std::string TypeName(ObjectFile::CSection::eType type);
/// Bits of one LAU; 0 if the section's organization allows none.
std::uint64_t LauBits(const ObjectFile::CSection& section);
/// LAUs that the section occupies.
std::uint64_t LauCount(const ObjectFile::CSection& section);
/// Why every load skips the section ("stack section"), or an empty text.
std::string ReasonLeftOut(const ObjectFile::CSection& section);

} // namespace marlune::tool

#endif
