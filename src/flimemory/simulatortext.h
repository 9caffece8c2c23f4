// Texts for the simulator, which takes them as writable.
#ifndef MARLUNE_FLIMEMORY_SIMULATORTEXT_H
#define MARLUNE_FLIMEMORY_SIMULATORTEXT_H

namespace marlune {

/// A text argument for the simulator: older editions of its header declare such arguments without const. The simulator
/// only reads them.
inline char* SimulatorText(const char* text) {
    return const_cast<char*>(text); // NOLINT(cppcoreguidelines-pro-type-const-cast)
}

} // namespace marlune

#endif
