// Makes an image from the file of another toolchain: the readers and the builder in one call.
#ifndef MARLUNE_TOOLS_IMPORT_IMPORTER_H
#define MARLUNE_TOOLS_IMPORT_IMPORTER_H

#include <memory>
#include <string>

#include "objectfile/objectfile.h"
#include "tools/import/importoptions.h"

namespace marlune::tool {

/// Reads a program of the format, which is not OBJECT, and makes an image of it. Throws CReadError for an error in a
/// line of a text format and std::runtime_error for any other error.
std::unique_ptr<ObjectFile::CObjectFile> ImportProgram(const std::string& path, eFormat format,
                                                       const CImportOptions& options, const CWarn& warn);

} // namespace marlune::tool

#endif
