// Conversion of section contents.
#ifndef MARLUNE_ELFTOVEXON_ELFCONTENTS_H
#define MARLUNE_ELFTOVEXON_ELFCONTENTS_H

#include <cstddef>
#include <string_view>

#include "objectfile/sectiondata.h"
#include "objectfile/utils.h"

namespace marlune::elf {

/// The bytes of the file that hold a LAU of `bits` bits: 1, 2, 4 or 8, and 0 above 64 bits.
int FileBytesPerLau(int bits);

/// Appends the LAUs in `contents`, each in `fileBytes` bytes, as ElfToVexon::ConvertByteToVexon writes them. They have
/// 1 to 64 bits, as many as those of `data`. If `contents` ends within a LAU, zeros complete it.
void AddContents(ObjectFile::CSectionData& data, std::string_view contents, std::size_t fileBytes,
                 ObjectFile::eByteOrder order);

} // namespace marlune::elf

#endif
