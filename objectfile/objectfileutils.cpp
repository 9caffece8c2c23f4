// What kind of file is it?
#include "objectfile/objectfileutils.h"

#include <iostream>

#include "objectfile/elfimport.h"
#include "objectfile/objectfile.h"

namespace ObjectFile {

namespace {

bool BeginsWithLine(const std::string& path, const char* magic) {
    return CInputStream(path, '\n').GetLine() == magic;
}

/// The answer of a probe; any exception counts as no and is reported on standard output.
template <typename TProbe>
bool Ask(TProbe probe) {
    try {
        return probe();
    } catch (const std::exception& error) {
        std::cout << error.what() << '\n' << std::flush;
        return false;
    }
}

} // namespace

bool IsObjectFile(const std::string& path) {
    return Ask([&] { return IsElfFile(path) || BeginsWithLine(path, VEXON_OBJECT_MAGIC); });
}

bool IsArchive(const std::string& path) {
    return Ask([&] { return BeginsWithLine(path, VEXON_ARCHIVE_MAGIC); });
}

} // namespace ObjectFile
