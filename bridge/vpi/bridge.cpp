#include "bridge/vpi/bridge.h"

#include "bridge/vpi/failure.h"
#include "bridge/vpi/foreignlibrary.h"
#include "bridge/vpi/foreigntext.h"

#include <algorithm>

CBridge& GetBridge() {
    static CBridge bridge;
    return bridge;
}

void CBridge::Elaborate() {
    t_vpi_vlog_info info{};
    vpi_get_vlog_info(&info);
    const std::string product = info.product != nullptr ? info.product : "";
    m_Simulator = MakeSimulator(product);
    if (m_Simulator == nullptr) {
        Fail("The bridge does not know the simulator '" + product + "'.");
    }
    ElaborateScope(nullptr);
}

void CBridge::ElaborateScope(vpiHandle scope) {
    for (vpiHandle inner : m_Simulator->GetScopes(scope)) {
        if (const auto foreignText = m_Simulator->FindForeignText(inner)) {
            ElaborateInstance(inner, *foreignText);
        }
        ElaborateScope(inner);
    }
}

void CBridge::ElaborateInstance(vpiHandle scope, const std::string& foreignText) {
    mtiRegionIdTag& region = m_Regions.emplace_back();
    m_ElaboratedPath = m_Simulator->GetPath(scope);
    std::replace(m_ElaboratedPath.begin(), m_ElaboratedPath.end(), '.', '/');
    region.m_FullName = "/" + m_ElaboratedPath;

    auto foreign = ParseForeignText(foreignText);
    if (!foreign) {
        Fail("The foreign attribute '" + foreignText + "' is not of the form 'init_function library; parameters'.");
    }
    ListPorts(scope, region);
    const CInitFunction init = FindInitFunction(foreign->m_Library, foreign->m_Function);
    init(&region, foreign->m_Parameters.data(), nullptr, region.m_Ports.data());
    m_ElaboratedPath.clear();
}

void CBridge::ListPorts(vpiHandle scope, mtiRegionIdTag& region) {
    for (const SPort& port : m_Simulator->GetPorts(scope)) {
        mtiSignalIdTag& signal = region.m_Signals.emplace_back(port.m_Name, port.m_Object, m_Simulator->GetLiterals());
        if (!signal.IsSupported()) {
            Fail("Port '" + port.m_Name + "' is neither a std_logic nor a vector of it.");
        }
        mtiInterfaceListT entry{};
        entry.name = const_cast<char*>(signal.GetName().c_str()); // NOLINT(cppcoreguidelines-pro-type-const-cast)
        entry.type = signal.GetType();
        entry.port_dir = port.m_Direction;
        entry.u.port = &signal;
        region.m_Ports.push_back(entry);
    }
    for (std::size_t next = 1; next < region.m_Ports.size(); ++next) {
        region.m_Ports[next - 1].nxt = &region.m_Ports[next];
    }
}

void CBridge::Quit() {
    for (const auto& [function, argument] : m_QuitCallbacks) {
        function(argument);
    }
    m_QuitCallbacks.clear();
}

mtiProcessIdT CBridge::CreateProcess(mtiVoidFuncPtrT function, void* argument) {
    return &m_Processes.emplace_back(function, argument);
}

mtiDriverIdT CBridge::CreateDriver(mtiSignalIdT signal) {
    return &m_Drivers.emplace_back(mtiDriverIdTag{signal});
}

void CBridge::AddQuitCallback(mtiVoidFuncPtrT function, void* argument) {
    m_QuitCallbacks.push_back({function, argument});
}

namespace {

PLI_INT32 OnStart(t_cb_data*) {
    GetBridge().Elaborate();
    return 0;
}

PLI_INT32 OnEnd(t_cb_data*) {
    GetBridge().Quit();
    return 0;
}

void RegisterCallbacks() {
    t_cb_data start{cbStartOfSimulation, OnStart, nullptr, nullptr, nullptr, 0, nullptr};
    vpi_register_cb(&start);
    t_cb_data end{cbEndOfSimulation, OnEnd, nullptr, nullptr, nullptr, 0, nullptr};
    vpi_register_cb(&end);
}

} // namespace

/// What the simulator calls after it has loaded the bridge.
extern "C" {
extern void (*vlog_startup_routines[])();
void (*vlog_startup_routines[])() = {RegisterCallbacks, nullptr};
}
