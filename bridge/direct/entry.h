// What all functions that a design calls directly have in common.
#ifndef MARLUNE_BRIDGE_DIRECT_ENTRY_H
#define MARLUNE_BRIDGE_DIRECT_ENTRY_H

#include <exception>

#include "bridge/core/failure.h"
#include "bridge/core/simulation.h"

namespace marlune::bridge {

/// Runs the body of such a function. Nothing is thrown into the simulator: an exception ends the simulation.
template <typename TBody>
auto RunEntry(TBody&& body) {
    try {
        return body();
    } catch (const std::exception& error) {
        Fail("", error.what());
    }
}

/// To be called whenever an instance runs. By the first time, all instances have been elaborated.
inline void StartOnce() {
    static CSimulation& simulation = GetSimulation();
    if (!simulation.IsStarted()) {
        simulation.Start();
    }
}

} // namespace marlune::bridge

#endif
