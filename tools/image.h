#ifndef MARLUNE_TOOLS_IMAGE_H
#define MARLUNE_TOOLS_IMAGE_H

#include <memory>
#include <optional>
#include <stdexcept>
#include <string>

#include "objectfile/objectfile.h"

namespace marlune::tool {

/// An image file that cannot be used. The message names the file, and the line counted from 1 where there is one.
class CImageError : public std::runtime_error {
public:
    CImageError(const std::string& path, std::optional<long> line, const std::string& text);

    const std::optional<long> m_Line; // counted from 1
    const std::string m_Text;         // without file and line
};

/// Loads an ELF or a text object file. Throws CImageError with the exact reason, which a simulator does not show.
std::unique_ptr<ObjectFile::CObjectFile> LoadImage(const std::string& path);

/// In bytes; 0 when the file is not there.
std::uint64_t FileSize(const std::string& path);

/// "text", "data", "bss", "debug", "info".
std::string TypeName(ObjectFile::CSection::eType type);
/// Bits of one LAU; 0 when the section's organization allows none.
std::uint64_t UnitBits(const ObjectFile::CSection& section);
/// LAUs that the section occupies.
std::uint64_t UnitCount(const ObjectFile::CSection& section);
/// Why a load leaves the section out whatever the memory ("stack section"), or an empty text.
std::string ReasonLeftOut(const ObjectFile::CSection& section);

} // namespace marlune::tool

#endif
