// The functions of the foreign language interface, for benchmarks.
#include "bench/flimemory/stubsimulator.h"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "src/flimemory/flimemory.h"

int g_StubNow = 0;

namespace {

void* g_LastArgument = nullptr;
std::string g_Path;
mtiTypeIdTag g_ElementType = {MTI_TYPE_ENUM, 1};

} // namespace

CStubInstance::CStubInstance(const std::string& path, const std::string& parameters, const std::vector<CPort>& ports) {
    std::deque<mtiInterfaceListT> list;
    for (const CPort& port : ports) {
        const bool isBit = port.m_Length == 0;
        m_Signals.push_back({port.m_Name,
                             {isBit ? MTI_TYPE_ENUM : MTI_TYPE_ARRAY, port.m_Length},
                             std::vector<unsigned char>(static_cast<std::size_t>(isBit ? 1 : port.m_Length), 2)});
        list.push_back({m_Signals.back().m_Name.data(), &m_Signals.back().m_Type, MTI_DIR_IN, {}, nullptr});
        list.back().u.port = &m_Signals.back();
        if (list.size() > 1) {
            list[list.size() - 2].nxt = &list.back();
        }
    }
    g_Path = path;
    std::string text = parameters;
    marlune_fli_memory_init(nullptr, text.data(), nullptr, &list.front());
    m_Process = g_LastArgument;
}

CStubInstance::~CStubInstance() {
    CleanCallback(m_Process);
}

mtiSignalIdTag& CStubInstance::Signal(const std::string& name) {
    for (mtiSignalIdTag& signal : m_Signals) {
        if (signal.m_Name == name) {
            return signal;
        }
    }
    std::abort();
}

void CStubInstance::Clock() {
    m_Signals.front().m_Value[0] = 2;
    ++g_StubNow;
    marlune_fli_memory_process(m_Process);
    m_Signals.front().m_Value[0] = 3;
    ++g_StubNow;
    marlune_fli_memory_process(m_Process);
}

mtiSignalIdT mti_FindPort(mtiInterfaceListT* ports, char* name) {
    for (; ports != nullptr; ports = ports->nxt) {
        if (std::strcmp(ports->name, name) == 0) {
            return ports->u.port;
        }
    }
    return nullptr;
}

char* mti_GetRegionFullName(mtiRegionIdT /*region*/) {
    return g_Path.data();
}
void mti_VsimFree(void* /*memory*/) {}
mtiProcessIdT mti_CreateProcess(char* /*name*/, mtiVoidFuncPtrT /*function*/, void* argument) {
    g_LastArgument = argument;
    return nullptr;
}
void mti_Sensitize(mtiProcessIdT /*process*/, mtiSignalIdT /*signal*/, mtiProcessTriggerT /*trigger*/) {}
mtiDriverIdT mti_CreateDriver(mtiSignalIdT signal) {
    return reinterpret_cast<mtiDriverIdT>(signal);
}
void mti_SetDriverOwner(mtiDriverIdT /*driver*/, mtiProcessIdT /*process*/) {}
mtiInt32T mti_Now() {
    return g_StubNow;
}
void mti_AddQuitCB(mtiVoidFuncPtrT /*function*/, void* /*argument*/) {}
void mti_AddRestartCB(mtiVoidFuncPtrT /*function*/, void* /*argument*/) {}
mtiTypeIdT mti_GetSignalType(mtiSignalIdT signal) {
    return &signal->m_Type;
}
mtiTypeKindT mti_GetTypeKind(mtiTypeIdT type) {
    return type->m_Kind;
}
mtiTypeIdT mti_GetArrayElementType(mtiTypeIdT /*type*/) {
    return &g_ElementType;
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
void* mti_GetArraySignalValue(mtiSignalIdT signal, void* /*buffer*/) {
    return signal->m_Value.data();
}
void mti_SetSignalValue(mtiSignalIdT /*signal*/, mtiLongT /*value*/) {}
void mti_ScheduleDriver(mtiDriverIdT /*driver*/, mtiLongT /*value*/, mtiDelayT /*delay*/, mtiDriverModeT /*mode*/) {}
void mti_PrintFormatted(const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    std::vfprintf(stderr, format, arguments);
    va_end(arguments);
}
void mti_Command(const char* command) {
    std::fprintf(stderr, "%s\n", command);
}
void mti_FatalError() {
    std::abort();
}
