#include "bridge/core/simulation.h"

#include <cstdio>
#include <cstdlib>

namespace marlune::bridge {

CSimulation& GetSimulation() {
    static CSimulation* const simulation = new CSimulation(); // never destroyed: simulators call to the very end
    return *simulation;
}

mtiInt32T CHost::Now() const {
    return 0;
}

void CHost::Sensitize(mtiProcessIdT /*process*/, mtiSignalIdT /*signal*/) {}

void CHost::Print(const char* text) const {
    std::fputs(text, stdout);
}

/// However the run ends, the libraries release what they hold.
CSimulation::CSimulation() : m_Host(std::make_unique<CHost>()) {
    std::atexit([] { GetSimulation().Quit(); });
}

void CSimulation::Elaborate(mtiRegionIdTag& region, CInitFunction init, std::string parameters) {
    for (mtiSignalIdTag& signal : region.m_Signals) {
        mtiInterfaceListT entry{};
        entry.name = signal.m_Name.data();
        entry.type = &signal.m_Type;
        entry.u.port = &signal;
        region.m_Ports.push_back(entry);
    }
    for (std::size_t next = 1; next < region.m_Ports.size(); ++next) {
        region.m_Ports[next - 1].nxt = &region.m_Ports[next];
    }
    g_Current = &region;
    init(&region, parameters.data(), nullptr, region.m_Ports.data());
    g_Current = nullptr;
}

void CSimulation::Run(const mtiProcessIdTag& process) {
    g_Current = process.m_Region;
    process.m_Function(process.m_Argument);
    g_Current = nullptr;
}

mtiProcessIdT CSimulation::CreateProcess(mtiVoidFuncPtrT function, void* argument) {
    return &g_Current->m_Processes.emplace_back(mtiProcessIdTag{function, argument, g_Current});
}

mtiDriverIdT CSimulation::CreateDriver(mtiSignalIdT signal) {
    return &m_Drivers.emplace_back(mtiDriverIdTag{signal});
}

void CSimulation::AddQuitCallback(mtiVoidFuncPtrT function, void* argument) {
    m_QuitCallbacks.push_back({function, argument});
}

void CSimulation::Quit() {
    const std::vector<CCallback> callbacks = std::move(m_QuitCallbacks);
    m_QuitCallbacks.clear();
    for (const CCallback& callback : callbacks) {
        callback.m_Function(callback.m_Argument);
    }
}

} // namespace marlune::bridge
