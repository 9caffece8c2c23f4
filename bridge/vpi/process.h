#ifndef MARLUNE_BRIDGE_VPI_PROCESS_H
#define MARLUNE_BRIDGE_VPI_PROCESS_H

#include "bridge/vpi/vpi.h"
#include "mti.h"

#include <vector>

/// A process of the foreign language interface: a function that runs after events on signals. When exactly is decided
/// by CSimulator::Wake.
struct mtiProcessIdTag {
    mtiProcessIdTag(mtiVoidFuncPtrT function, void* argument) : m_Function(function), m_Argument(argument) {}

    mtiProcessIdTag(const mtiProcessIdTag&) = delete; // its address is the handle
    mtiProcessIdTag& operator=(const mtiProcessIdTag&) = delete;

    /// Makes events on the signal wake the process; a second time does nothing.
    void Sensitize(mtiSignalIdT signal);

    void Run() const { m_Function(m_Argument); }

    bool m_IsMarked = false; ///< the mark that CSimulator sets at a wake and takes off again

private:
    mtiVoidFuncPtrT m_Function;
    void* m_Argument;
    std::vector<mtiSignalIdT> m_Signals;
};

#endif
