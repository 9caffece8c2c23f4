// Elaborates instances, runs their processes, and does what the command line asks for.
#include "bridge/core/simulation.h"

#include <csignal>
#include <cstdio>
#include <cstdlib>

#include "bridge/core/failure.h"
#include "bridge/core/instancereport.h"
#include "bridge/core/testbench.h"
#include "src/flimemory/direct.h"
#include "src/flimemory/flimemory.h"
#include "src/flimemory/projectname.h"

namespace marlune::bridge {

CSimulation& GetSimulation() {
    static auto* const simulation = new CSimulation(); // never destroyed: simulators call to the very end
    return *simulation;
}

mtiInt32T CHost::Now() const {
    return 0;
}

void CHost::Sensitize(mtiProcessIdT /*process*/, mtiSignalIdT /*signal*/) {}

void CHost::Print(const char* text) const {
    std::fputs(text, stdout);
}

/// However the run ends, the dumps are written and the libraries release what they hold.
CSimulation::CSimulation() : m_Host(std::make_unique<CHost>()), m_Options(ReadCommandLine()) {
    std::atexit([] { GetSimulation().Quit(); });
    if (!m_Options.m_Dumps.empty()) { // Verilator aborts the process at a test bench's $fatal
        std::signal(SIGABRT, [](int) { GetSimulation().Quit(); });
    }
}

void CSimulation::Elaborate(mtiRegionIdTag& region, CInitFunction init, const std::string& parameters) {
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
    region.m_Parameters = parameters;
    region.m_IsMemory = init == marlune_fli_memory_init;
    if (region.m_IsMemory) {
        CheckWidth(region);
    }
    const mtiRegionIdT hidden = std::exchange(m_ByName[region.m_Name], &region);
    std::string text = parameters; // the interface has writable texts
    {
        const CCurrentInstance current(&region);
        init(&region, text.data(), nullptr, region.m_Ports.data());
    }
    if (region.m_IsMemory) {
        if (hidden != nullptr && hidden->m_IsMemory) {
            PrintWarning(region.m_Path, "'" + hidden->m_Path + "' has the same name for test bench access, '" +
                                            region.m_Name + "', and cannot be reached any more.");
        }
        WarnOfPorts(region);
        LoadFromCommandLine(region);
    }
}

void CSimulation::LoadFromCommandLine(mtiRegionIdTag& region) {
    const CCurrentInstance current(&region);
    for (CLoadOption& option : m_Options.m_Loads) {
        if (option.m_IsDone || FindInstance(option.m_Path) != &region) {
            continue;
        }
        option.m_IsDone = true;
        if (!option.m_AddressSpace) {
            const char* space = marlune_direct_only_space(option.m_File.c_str());
            if (space == nullptr) {
                Fail(region.m_Path, "+marlune_load: '" + option.m_File +
                                        "' does not have just one address space to load: name one after the file.");
            }
            option.m_AddressSpace = space;
        }
        Load(option.m_Path, option.m_File, *option.m_AddressSpace, option.m_Base, option.m_Bank, option.m_Banks);
    }
}

void CSimulation::Start() {
    m_IsStarted = true;
    const auto requireInstance = [this](const std::string& path) {
        if (FindInstance(path) == nullptr) {
            Fail("", "There is no memory '" + path + "', which the command line names. " +
                         DescribeClosest(m_Regions, FixProjectName(path)));
        }
    };
    for (const CLoadOption& option : m_Options.m_Loads) {
        requireInstance(option.m_Path);
    }
    for (const CDumpOption& option : m_Options.m_Dumps) {
        requireInstance(option.m_Path);
    }
    if (m_Options.m_IsListWanted) {
        for (const mtiRegionIdTag& region : m_Regions) {
            m_Host->Print((DescribeInstance(region) + "\n").c_str());
        }
    }
}

void CSimulation::Run(const mtiProcessIdTag& process) {
    const CCurrentInstance current(process.m_Region);
    process.m_Function(process.m_Argument);
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
    if (m_HasQuit) {
        return;
    }
    m_HasQuit = true;
    if (!m_IsStarted && !HasFailed()) { // nothing ever ran
        Start();
    }
    WriteDumps();
    for (const CCallback& callback : m_QuitCallbacks) {
        callback.m_Function(callback.m_Argument);
    }
}

void CSimulation::WriteDumps() {
    for (const CDumpOption& option : m_Options.m_Dumps) {
        const mtiRegionIdT region = FindInstance(option.m_Path);
        if (region == nullptr) {
            continue; // reported at the start
        }
        if (region->m_IsMemory && !region->m_Processes.empty()) { // not if its elaboration failed
            marlune_direct_commit(region->m_Processes.back().m_Argument);
        }
        Dump(option.m_Path, option.m_File, option.m_First, option.m_Last);
    }
}

} // namespace marlune::bridge
