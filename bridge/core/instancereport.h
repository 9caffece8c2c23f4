// Checks and descriptions of an instance that the memory library itself does not give.
#ifndef MARLUNE_BRIDGE_CORE_INSTANCEREPORT_H
#define MARLUNE_BRIDGE_CORE_INSTANCEREPORT_H

#include <deque>
#include <string>

#include "bridge/core/instance.h"

namespace marlune::bridge {

/// Ends the simulation if LAUs are wider than a test bench's words.
void CheckWidth(const mtiRegionIdTag& region);

/// Which of the three parameters is not a literal, and its text; empty if all are valid.
std::string DescribeWrongParameter(const std::string& parameters);

/// Warns of ports that belong to no complete group, and of enables that more than one bit makes unlike what they seem.
void WarnOfPorts(const mtiRegionIdTag& region);

/// Which port has a name that is shorter than a role, and the remedy; empty if none has.
std::string DescribeShortPort(const mtiRegionIdTag& region);

/// One line: path, name for test bench access, mode, width, size and port groups.
std::string DescribeInstance(const mtiRegionIdTag& region);

/// The paths of the ten instances whose names are closest to the one that was not found.
std::string DescribeClosest(const std::deque<mtiRegionIdTag>& regions, const std::string& name);

} // namespace marlune::bridge

#endif
