// What a load has stored, for messages of the simulator's side.
#ifndef MARLUNE_FLIMEMORY_LOADREPORT_H
#define MARLUNE_FLIMEMORY_LOADREPORT_H

#include <set>
#include <string>

#include "objectfile/objectfile.h"

namespace marlune::foreign {

/// The address spaces of the image from which a load would take something, if it took everything.
std::set<std::string> LoadableSpaces(const ObjectFile::CObjectFile& image);

/// Why a load of the address space has stored nothing, with the address spaces that the image has.
std::string DescribeEmptyLoad(const ObjectFile::CObjectFile& image, const std::string& addressSpace);

} // namespace marlune::foreign

#endif
