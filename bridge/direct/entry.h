// What all functions have in common that a design calls directly.
#ifndef MARLUNE_BRIDGE_DIRECT_ENTRY_H
#define MARLUNE_BRIDGE_DIRECT_ENTRY_H

#include <exception>

#include "bridge/core/failure.h"

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

} // namespace marlune::bridge

#endif
