// The formats of programs, and how a file's own is recognised.
#ifndef MARLUNE_TOOLS_IMPORT_FORMAT_H
#define MARLUNE_TOOLS_IMPORT_FORMAT_H

#include <string>
#include <vector>

#include "tools/import/importoptions.h"
#include "tools/import/readers.h"

namespace marlune::tool {

/// A format that is imported.
struct CFormat {
    eFormat m_Format;
    const char* m_Name;    // on the command line
    const char* m_Title;   // for people
    CReader* m_Read;       // null if this build leaves it out
    const char* m_Library; // what such a build lacks
};

/// All of them, including those left out of this build.
const std::vector<CFormat>& Formats();
/// Not for eFormat::OBJECT.
const CFormat& FormatRow(eFormat format);
/// "elf, ihex", of those in this build (or of those left out of it).
std::string FormatNames(bool available);

/// The format of a file by its contents. Throws std::runtime_error, which lists all formats, if they fit none or two.
eFormat RecogniseFormat(const std::string& path);
/// The machine number in an ELF file's header, 0 if it has none.
unsigned ElfMachine(const std::string& path);

} // namespace marlune::tool

#endif
