// The functions of the foreign language interface, for tests.
#include "tests/simulator/simulator.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <string_view>

namespace {

CSimulator* g_Current = nullptr;

constexpr char STD_LOGIC[] = "UX01ZWLH-";

std::string Positions(const std::string& letters) {
    std::string positions;
    for (const char c : letters) {
        positions += static_cast<char>(std::strchr(STD_LOGIC, c) - STD_LOGIC);
    }
    return positions;
}

/// A value as the interface hands it over: a position, or the address of an array of them.
std::string ElementText(mtiSignalIdT signal, mtiLongT value) {
    const char position = static_cast<char>(value);
    std::string_view text(&position, 1);
    if (signal->m_Type->m_Kind == MTI_TYPE_ARRAY) {
        text = {reinterpret_cast<const char*>(value), // NOLINT(performance-no-int-to-ptr)
                static_cast<std::size_t>(std::max(signal->m_Type->m_Length, 0))};
    }
    return std::string(text);
}

void Log(const std::string& line) {
    CSimulator::Current().m_Log.push_back(line);
}

} // namespace

CSimulator::CSimulator() {
    g_Current = this;
}

CSimulator::~CSimulator() {
    for (void* buffer : m_Lent) {
        std::free(buffer);
    }
    g_Current = nullptr;
}

CSimulator& CSimulator::Current() {
    return *g_Current;
}

mtiSignalIdT CSimulator::AddSignal(const std::string& name, int length) {
    const mtiSignalIdT signal = AddSignal(name, length == 0 ? MTI_TYPE_ENUM : MTI_TYPE_ARRAY, MTI_TYPE_ENUM);
    signal->m_Type->m_Length = length;
    signal->m_Value.assign(static_cast<std::size_t>(std::max(length, 1)), '\0');
    return signal;
}

mtiSignalIdT CSimulator::AddSignal(const std::string& name, mtiTypeKindT kind, mtiTypeKindT elementKind) {
    m_Types.push_back({elementKind});
    m_Types.push_back({kind, 1, &m_Types.back()});
    return &(m_Signals[name] = {{}, name, &m_Types.back(), std::string(1, '\0'), {}});
}

mtiSignalIdT CSimulator::Signal(const std::string& name) {
    const auto signal = m_Signals.find(name);
    return signal == m_Signals.end() ? nullptr : &signal->second;
}

std::string CSimulator::Value(const std::string& name) {
    std::string letters;
    for (const char position : m_Signals.at(name).m_Value) {
        letters += STD_LOGIC[static_cast<unsigned char>(position)];
    }
    return letters;
}

void CSimulator::Elaborate(CInit init, const std::string& path, const std::string& parameters,
                           const std::vector<std::string>& ports, const std::string& scope) {
    std::vector<std::string> names = ports; // the interface's names are writable
    std::deque<mtiInterfaceListT> list;
    for (std::string& name : names) {
        const mtiSignalIdT signal = Signal(scope + name);
        list.push_back({name.data(), signal != nullptr ? signal->m_Type : nullptr, MTI_DIR_IN, {}, nullptr});
        list.back().u.port = signal;
        if (list.size() > 1) {
            list[list.size() - 2].nxt = &list.back();
        }
    }
    m_Regions.push_back({path});
    std::string text = parameters;
    init(&m_Regions.back(), text.data(), nullptr, list.empty() ? nullptr : &list.front());
}

void CSimulator::Set(const CChanges& changes) {
    CChanges positions;
    for (const auto& [name, letters] : changes) {
        positions.emplace_back(name, Positions(letters));
    }
    RunDeltas(positions);
}

void CSimulator::RunDeltas(CChanges changes) {
    while (!changes.empty()) {
        std::vector<mtiProcessIdT> woken;
        for (const auto& [name, value] : changes) {
            mtiSignalIdTag& signal = m_Signals.at(name);
            if (signal.m_Value != value) {
                signal.m_Value = value;
                woken.insert(woken.end(), signal.m_Sensitive.begin(), signal.m_Sensitive.end());
            }
        }
        std::sort(woken.begin(), woken.end());
        woken.erase(std::unique(woken.begin(), woken.end()), woken.end());
        for (const mtiProcessIdT process : woken) {
            process->m_Function(process->m_Argument);
        }
        changes = std::exchange(m_Scheduled, {});
    }
}

void CSimulator::RunCallbacks(CCallbacks& callbacks) {
    const CCallbacks run = std::exchange(callbacks, {});
    m_QuitCallbacks.clear();
    m_RestartCallbacks.clear();
    for (auto& [name, signal] : m_Signals) {
        signal.m_Sensitive.clear(); // the processes are gone
    }
    for (const auto& [function, argument] : run) {
        function(argument);
    }
}

void CSimulator::Reset() {
    m_Now = 0;
    m_Drivers.clear();
    m_Processes.clear();
    m_Regions.clear();
    m_Signals.clear();
    m_Types.clear();
}

void* CSimulator::Lend(const std::string& content) {
    void* buffer = std::malloc(content.size() + 1);
    std::memcpy(buffer, content.c_str(), content.size() + 1);
    m_Lent.insert(buffer);
    return buffer;
}

// The interface

mtiSignalIdT mti_FindPort(mtiInterfaceListT* ports, char* name) {
    for (; ports != nullptr; ports = ports->nxt) {
        if (std::strcmp(ports->name, name) == 0) {
            return ports->u.port;
        }
    }
    return nullptr;
}

char* mti_GetRegionFullName(mtiRegionIdT region) {
    return static_cast<char*>(CSimulator::Current().Lend(region->m_Path));
}

void mti_VsimFree(void* memory) {
    if (CSimulator::Current().m_Lent.erase(memory) != 1) {
        throw std::logic_error("freed what was not lent");
    }
    std::free(memory);
}

mtiProcessIdT mti_CreateProcess(char* name, mtiVoidFuncPtrT function, void* argument) {
    Log(std::string("process ") + (name == nullptr ? "without name" : name));
    CSimulator::Current().m_Processes.push_back({function, argument});
    return &CSimulator::Current().m_Processes.back();
}

void mti_Sensitize(mtiProcessIdT process, mtiSignalIdT signal, mtiProcessTriggerT trigger) {
    Log("sensitize " + signal->m_Name + (trigger == MTI_EVENT ? "" : " on activity"));
    signal->m_Sensitive.push_back(process);
}

mtiDriverIdT mti_CreateDriver(mtiSignalIdT signal) {
    Log("driver " + signal->m_Name);
    CSimulator::Current().m_Drivers.push_back({signal});
    return &CSimulator::Current().m_Drivers.back();
}

void mti_SetDriverOwner(mtiDriverIdT driver, mtiProcessIdT process) {
    Log("owner " + driver->m_Signal->m_Name);
    driver->m_Owner = process;
}

mtiInt32T mti_Now() {
    return CSimulator::Current().m_Now;
}

void mti_AddQuitCB(mtiVoidFuncPtrT function, void* argument) {
    Log("quit callback");
    CSimulator::Current().m_QuitCallbacks.emplace_back(function, argument);
}

void mti_AddRestartCB(mtiVoidFuncPtrT function, void* argument) {
    Log("restart callback");
    CSimulator::Current().m_RestartCallbacks.emplace_back(function, argument);
}

mtiTypeIdT mti_GetSignalType(mtiSignalIdT signal) {
    return signal->m_Type;
}

mtiTypeKindT mti_GetTypeKind(mtiTypeIdT type) {
    return type->m_Kind;
}

mtiTypeIdT mti_GetArrayElementType(mtiTypeIdT type) {
    return type->m_Element;
}

mtiInt32T mti_TickLength(mtiTypeIdT type) {
    return type->m_Length;
}

char* mti_GetSignalName(mtiSignalIdT signal) {
    return signal->m_Name.data();
}

mtiInt32T mti_GetSignalValue(mtiSignalIdT signal) {
    return signal->m_Value[0];
}

void* mti_GetArraySignalValue(mtiSignalIdT signal, void* buffer) {
    if (buffer != nullptr) {
        throw std::logic_error("the library brings no buffer of its own");
    }
    return CSimulator::Current().Lend(signal->m_Value);
}

void mti_SetSignalValue(mtiSignalIdT signal, mtiLongT value) {
    signal->m_Value = ElementText(signal, value);
    ++signal->m_Assignments;
}

void mti_ScheduleDriver(mtiDriverIdT driver, mtiLongT value, mtiDelayT delay, mtiDriverModeT mode) {
    if (delay != 0 || mode != MTI_INERTIAL) {
        Log("delay " + std::to_string(delay) + " mode " + std::to_string(mode));
    }
    const mtiSignalIdT signal = driver->m_Signal;
    CSimulator::Current().m_Scheduled.emplace_back(signal->m_Name, ElementText(signal, value));
    ++signal->m_Assignments;
}

void mti_PrintFormatted(const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    char line[4096];
    std::vsnprintf(line, sizeof line, format, arguments);
    va_end(arguments);
    CSimulator::Current().m_Transcript += line;
}

void mti_Command(const char* command) {
    Log(command);
}

void mti_FatalError() {
    Log("fatal");
}
