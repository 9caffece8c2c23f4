// What a load has stored, for messages of the simulator's side.
#ifndef MARLUNE_FLIMEMORY_LOADREPORT_H
#define MARLUNE_FLIMEMORY_LOADREPORT_H

#include <set>
#include <string>

#include "objectfile/objectfile.h"
#include "src/flimemory/loadplan.h"

namespace marlune::foreign {

/// A load that succeeded, as it was asked for. The image is borrowed.
struct CPastLoad {
    const ObjectFile::CObjectFile* m_Image;
    std::string m_AddressSpace;
    CLoadWindow m_Window;
    CLoadTarget m_Target;
};

/// The address spaces of the image from which a load would take something, if it took everything.
std::set<std::string> LoadableSpaces(const ObjectFile::CObjectFile& image);

bool HasStoredNothing(const CPastLoad& load);

/// Why a load has stored nothing, with the address spaces that the image has.
std::string DescribeEmptyLoad(const CPastLoad& load);

} // namespace marlune::foreign

#endif
