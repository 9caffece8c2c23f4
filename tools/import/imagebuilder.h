// Builds the LAUs of an image from a program's bytes.
#ifndef MARLUNE_TOOLS_IMPORT_IMAGEBUILDER_H
#define MARLUNE_TOOLS_IMPORT_IMAGEBUILDER_H

#include <memory>

#include "objectfile/objectfile.h"
#include "tools/import/importoptions.h"
#include "tools/import/program.h"

namespace marlune::tool {

/// An image with one absolute section for each of the program's, in LAUs of options.m_Width bits (8 if not given).
/// Bytes form a LAU in the order of options.m_Order or of the program, and the sections have that byte order: a load
/// flips the bits of a little-endian section, so the cells hold the numbers that a processor of that byte order reads.
///
/// A LAU in which two sections meet belongs to the first of them, or to the one that is not all zeros. Bytes of a LAU
/// that the program does not give are 0, and `warn` is told so. Arranges the program. Throws std::runtime_error if
/// sections overlap or LAU addresses need more than 32 bits.
std::unique_ptr<ObjectFile::CObjectFile> BuildImage(CProgram& program, const CImportOptions& options,
                                                    const CWarn& warn);

} // namespace marlune::tool

#endif
