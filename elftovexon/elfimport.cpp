// How the object-file library reaches the ELF importer: implements objectfile/elfimport.h.
#include "objectfile/elfimport.h"

#include <utility>

#include "elftovexon/elftovexon.h"

namespace ObjectFile {

bool IsElfFile(const std::string& path) {
    return ElfToVexon::IsElfFile(path.c_str());
}

bool IsElfFile(std::FILE& file) {
    return ElfToVexon::IsElfFile(file);
}

void LoadElfFile(CFileHandle file, const std::string& path, CObjectFile& target) {
    ElfToVexon converter(std::move(file), path, &target);
    target.Clear();
    converter.Convert();
    converter.ReleaseConvertedVexon();
}

} // namespace ObjectFile
