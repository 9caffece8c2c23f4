// How the object-file library reaches the ELF importer.
#include "objectfile/elfimport.h"

#include "elftovexon/elftovexon.h"

namespace ObjectFile {

bool IsElfFile(const std::string& path) {
    return ElfToVexon::IsElfFile(path.c_str());
}

void LoadElfFile(const std::string& path, CObjectFile& target) {
    ElfToVexon converter(path.c_str(), &target);
    target.Free();
    target.ClearEntryPoint();
    converter.Convert();
    converter.ReleaseConvertedVexon();
}

} // namespace ObjectFile
