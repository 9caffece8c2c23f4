// Conversion of section contents.
#ifndef MARLUNE_ELFTOVEXON_ELFCONTENTS_H
#define MARLUNE_ELFTOVEXON_ELFCONTENTS_H

#include <cstddef>
#include <string_view>

#include "objectfile/sectiondata.h"
#include "objectfile/utils.h"

namespace marlune::elf {

/// File bytes that hold one memory byte of `bits` bits: 1, 2, 4 or 8, and 0 above 64 bits.
int FileBytesPerByte(int bits);

/// Appends the memory bytes in `contents`, each in `fileBytes` bytes, as ElfToVexon::ConvertByteToVexon writes them.
/// The data's byte bit-size is 1 to 64. A last memory byte that `contents` holds in part is filled up with zeros.
void AddContents(ObjectFile::CSectionData& data, std::string_view contents, std::size_t fileBytes,
                 ObjectFile::eByteOrder order);

} // namespace marlune::elf

#endif
