#ifndef MARLUNE_BRIDGE_VPI_FOREIGNLIBRARY_H
#define MARLUNE_BRIDGE_VPI_FOREIGNLIBRARY_H

#include "mti.h"

#include <string>

/// The function that elaborates an instance: its region, parameter text, generics and ports.
using CInitFunction = void (*)(mtiRegionIdT, char*, mtiInterfaceListT*, mtiInterfaceListT*);

/// Loads the library (once) and finds its function; ends the simulation when either fails. All functions that the
/// library needs are bound at once, so that one which the bridge does not serve is told here and not in the middle of a
/// run.
CInitFunction FindInitFunction(const std::string& library, const std::string& function);

#endif
