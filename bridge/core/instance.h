// An instance that a foreign library models, and its process.
#ifndef MARLUNE_BRIDGE_CORE_INSTANCE_H
#define MARLUNE_BRIDGE_CORE_INSTANCE_H

#include <deque>
#include <string>
#include <utility>
#include <vector>

#include "bridge/core/signal.h"
#include "mti.h"
#include "src/flimemory/projectname.h"

/// A process: a function that runs after events on signals. The host decides when exactly.
struct mtiProcessIdTag {
    mtiVoidFuncPtrT m_Function;
    void* m_Argument;
    mtiRegionIdT m_Region; // the instance that created it
};

/// An instance. It lives until the end of the run, like everything that has a handle.
struct mtiRegionIdTag {
    explicit mtiRegionIdTag(std::string path) : m_Path(std::move(path)), m_Name(marlune::FixProjectName(m_Path)) {}

    /// The path as messages show it, "tb.memory" or "tb/memory".
    std::string m_Path;
    /// The memory library's name for it, "tb_memory".
    std::string m_Name;
    std::string m_Parameters;
    bool m_IsMemory = false;              // of our own memory library
    std::deque<mtiSignalIdTag> m_Signals; // the ports, in the entity's order
    std::vector<mtiInterfaceListT> m_Ports;
    std::deque<mtiProcessIdTag> m_Processes;
};

#endif
