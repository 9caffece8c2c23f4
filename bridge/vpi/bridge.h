#ifndef MARLUNE_BRIDGE_VPI_BRIDGE_H
#define MARLUNE_BRIDGE_VPI_BRIDGE_H

#include "bridge/vpi/process.h"
#include "bridge/vpi/signal.h"
#include "bridge/vpi/simulator.h"

#include <deque>
#include <memory>
#include <string>
#include <vector>

/// An instance that a foreign library models. It lives to the end of the run, as all that has a handle does.
struct mtiRegionIdTag {
    std::string m_FullName; ///< "/tb/memory"
    std::deque<mtiSignalIdTag> m_Signals;
    std::vector<mtiInterfaceListT> m_Ports; ///< a linked list in the order of the signals
};

/// One simulation: its instances and what the libraries created for them.
class CBridge {
public:
    CBridge() = default;

    /// Finds and elaborates all instances, once the simulator has built the design.
    void Elaborate();

    /// Runs the quit callbacks.
    void Quit();

    CSimulator& GetSimulator() { return *m_Simulator; }

    /// The path of the instance that is being elaborated, without its leading '/'; empty at other times.
    const std::string& GetElaboratedPath() const { return m_ElaboratedPath; }

    mtiProcessIdT CreateProcess(mtiVoidFuncPtrT function, void* argument);
    mtiDriverIdT CreateDriver(mtiSignalIdT signal);
    void AddQuitCallback(mtiVoidFuncPtrT function, void* argument);

private:
    struct SCallback {
        mtiVoidFuncPtrT m_Function;
        void* m_Argument;
    };

    void ElaborateScope(vpiHandle scope);
    void ElaborateInstance(vpiHandle scope, const std::string& foreignText);
    void ListPorts(vpiHandle scope, mtiRegionIdTag& region);

    std::unique_ptr<CSimulator> m_Simulator;
    std::string m_ElaboratedPath;
    std::deque<mtiRegionIdTag> m_Regions;
    std::deque<mtiProcessIdTag> m_Processes;
    std::deque<mtiDriverIdTag> m_Drivers;
    std::vector<SCallback> m_QuitCallbacks;
};

/// The one bridge of the process: VPI callbacks and FLI functions have no other way to it.
CBridge& GetBridge();

#endif
