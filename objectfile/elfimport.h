// The two things that the object-file library asks of the ELF importer, which lies above it.
#ifndef MARLUNE_OBJECTFILE_ELFIMPORT_H
#define MARLUNE_OBJECTFILE_ELFIMPORT_H

#include <string>

namespace ObjectFile {

class CObjectFile;

/// Does the file begin like an ELF file? False when it cannot be opened.
bool IsElfFile(const std::string& path);

/// Converts an ELF file into `target`; its errors pass to the caller.
void LoadElfFile(const std::string& path, CObjectFile& target);

} // namespace ObjectFile

#endif
