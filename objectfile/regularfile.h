// Opening the files that images are read from.
#ifndef MARLUNE_OBJECTFILE_REGULARFILE_H
#define MARLUNE_OBJECTFILE_REGULARFILE_H

#include <cstdio>
#include <memory>
#include <string>

namespace ObjectFile {

struct CFileCloser {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using CFileHandle = std::unique_ptr<std::FILE, CFileCloser>;

/// Opens a file for reading, unbuffered; none if it cannot be opened. A directory, a pipe or a device counts as such a
/// file, because reading one may never end. So does a file of more than 64 MiB that holds data for less than a
/// sixteenth of its size: the rest is holes, which take no space on disk but would take memory here.
CFileHandle OpenRegularFile(const std::string& path);

} // namespace ObjectFile

#endif
