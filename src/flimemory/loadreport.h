// Descriptions of what a load has stored, for our simulator side's messages.
#ifndef MARLUNE_FLIMEMORY_LOADREPORT_H
#define MARLUNE_FLIMEMORY_LOADREPORT_H

#include <set>
#include <string>

#include "objectfile/objectfile.h"
#include "src/flimemory/loadplan.h"

namespace marlune::foreign {

/// The address spaces of the image that have something to load.
std::set<std::string> LoadableSpaces(const ObjectFile::CObjectFile& image);

/// A warning if a load of the address space stored nothing (with the address spaces that the image has) or only a part
/// of a section, else nothing.
std::string DescribeLoad(const ObjectFile::CObjectFile& image, const std::string& addressSpace,
                         const CLoadResult& result);

} // namespace marlune::foreign

#endif
