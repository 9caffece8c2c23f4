// What kind of file is it?
#ifndef MARLUNE_OBJECTFILE_OBJECTFILEUTILS_H
#define MARLUNE_OBJECTFILE_OBJECTFILEUTILS_H

#include <string>

namespace ObjectFile {

/// Is it an ELF file, or does it begin with the magic line of a text object file? False for a file that cannot be read;
/// the reason goes to standard output.
bool IsObjectFile(const std::string& path);
/// The same for the archive magic, without ELF.
bool IsArchive(const std::string& path);

} // namespace ObjectFile

#endif
