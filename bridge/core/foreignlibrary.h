// Foreign libraries: loading them and finding their functions.
#ifndef MARLUNE_BRIDGE_CORE_FOREIGNLIBRARY_H
#define MARLUNE_BRIDGE_CORE_FOREIGNLIBRARY_H

#include <string>

#include "bridge/core/simulation.h"

namespace marlune::bridge {

/// Loads the library (once) and finds its function. If either fails, the simulation ends with a message that names the
/// instance of the path. All functions that the library needs are bound at once, so that a missing one is reported now
/// and not in the middle of a run.
CInitFunction FindInitFunction(const std::string& library, const std::string& function, const std::string& path);

} // namespace marlune::bridge

#endif
