// One simulation: its instances, and what foreign libraries created for them.
#ifndef MARLUNE_BRIDGE_CORE_SIMULATION_H
#define MARLUNE_BRIDGE_CORE_SIMULATION_H

#include <deque>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "bridge/core/commandline.h"
#include "bridge/core/instance.h"
#include "mti.h"

namespace marlune::bridge {

/// The function that elaborates an instance: its region, parameter text, generics and ports.
using CInitFunction = void (*)(mtiRegionIdT, char*, mtiInterfaceListT*, mtiInterfaceListT*);

/// What a simulator does for the instances. The base class is for one that calls them directly.
class CHost {
public:
    CHost() = default;
    virtual ~CHost() = default;
    CHost(const CHost&) = delete;
    CHost& operator=(const CHost&) = delete;

    /// The time in the simulator's unit, low 32 bits.
    virtual mtiInt32T Now() const;

    /// Makes events on the signal wake the process.
    virtual void Sensitize(mtiProcessIdT process, mtiSignalIdT signal);

    /// Prints to the simulator's transcript.
    virtual void Print(const char* text) const;
};

class CSimulation {
public:
    CSimulation();

    /// Replaces the host of all instances.
    void SetHost(std::unique_ptr<CHost> host) { m_Host = std::move(host); }
    CHost& GetHost() { return *m_Host; }

    /// Adds an instance. Its ports must be added to m_Signals before it is elaborated.
    mtiRegionIdTag& AddInstance(const std::string& path) { return m_Regions.emplace_back(path); }

    std::deque<mtiRegionIdTag>& GetInstances() { return m_Regions; }

    /// The instance that the library knows by the name: the last one elaborated, or null.
    mtiRegionIdT GetInstance(const std::string& name) const {
        const auto found = m_ByName.find(name);
        return found != m_ByName.end() ? found->second : nullptr;
    }

    /// Elaborates an instance with its ports, and loads the images that the command line gives it. An error ends the
    /// simulation.
    void Elaborate(mtiRegionIdTag& region, CInitFunction init, const std::string& parameters);

    /// To be called when all instances have been elaborated and none has run. Checks the paths on the command line, and
    /// prints the list of memories if it asks for one.
    void Start();
    bool IsStarted() const { return m_IsStarted; }

    /// Runs a process.
    void Run(const mtiProcessIdTag& process);

    mtiProcessIdT CreateProcess(mtiVoidFuncPtrT function, void* argument);
    mtiDriverIdT CreateDriver(mtiSignalIdT signal);
    void AddQuitCallback(mtiVoidFuncPtrT function, void* argument);

    /// Writes the dumps that the command line asks for, and runs the quit callbacks. Does so once.
    void Quit();

private:
    void LoadFromCommandLine(mtiRegionIdTag& region);
    void WriteDumps();

    struct CCallback {
        mtiVoidFuncPtrT m_Function;
        void* m_Argument;
    };

    std::unique_ptr<CHost> m_Host;
    std::deque<mtiRegionIdTag> m_Regions;
    std::map<std::string, mtiRegionIdT> m_ByName; // the library's name; of instances that share one, the last
    std::deque<mtiDriverIdTag> m_Drivers;
    std::vector<CCallback> m_QuitCallbacks;
    COptions m_Options;
    bool m_IsStarted = false;
    bool m_HasQuit = false;
};

/// The one simulation of the process. It is global because the simulator's callbacks and the functions of the interface
/// get no argument that could lead to it.
CSimulation& GetSimulation();

/// The instance that is being elaborated or is running, or null. Errors name it.
inline mtiRegionIdT g_Current = nullptr;

/// Its path, or nothing.
inline std::string GetCurrentPath() {
    return g_Current != nullptr ? g_Current->m_Path : "";
}

/// Makes an instance the current one while it exists.
class CCurrentInstance {
public:
    explicit CCurrentInstance(mtiRegionIdT region) : m_Before(std::exchange(g_Current, region)) {}
    ~CCurrentInstance() { g_Current = m_Before; }
    CCurrentInstance(const CCurrentInstance&) = delete;
    CCurrentInstance& operator=(const CCurrentInstance&) = delete;

private:
    mtiRegionIdT m_Before;
};

} // namespace marlune::bridge

#endif
