// What the object-file library asks of the ELF importer, which lies above it and implements it in
// elftovexon/elfimport.cpp.
#ifndef MARLUNE_OBJECTFILE_ELFIMPORT_H
#define MARLUNE_OBJECTFILE_ELFIMPORT_H

#include <cstdio>
#include <string>

#include "objectfile/regularfile.h"

namespace ObjectFile {

class CObjectFile;

/// Does the file begin like an ELF file? False if it cannot be opened.
bool IsElfFile(const std::string& path);
/// The same for an open file, whose position does not change.
bool IsElfFile(std::FILE& file);

/// Converts the ELF file, which was opened as `path`, into `target`. Throws what ElfToVexon throws.
void LoadElfFile(CFileHandle file, const std::string& path, CObjectFile& target);

} // namespace ObjectFile

#endif
