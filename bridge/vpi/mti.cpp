// The functions of the foreign language interface that the bridge serves. exports.map lists them.
#include "mti.h"

#include "bridge/vpi/bridge.h"
#include "bridge/vpi/failure.h"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string_view>

#include <strings.h>

// The names of design objects and regions

mtiSignalIdT mti_FindPort(mtiInterfaceListT* ports, char* name) {
    for (; ports != nullptr; ports = ports->nxt) {
        if (strcasecmp(ports->name, name) == 0) { // GHDL gives lower case
            return ports->u.port;
        }
    }
    return nullptr;
}

char* mti_GetRegionFullName(mtiRegionIdT region) {
    return strdup(region->m_FullName.c_str());
}

void mti_VsimFree(void* memory) {
    std::free(memory);
} // from malloc or strdup

char* mti_GetSignalName(mtiSignalIdT signal) {
    return const_cast<char*>(signal->GetName().c_str()); // NOLINT(cppcoreguidelines-pro-type-const-cast)
}

// Processes, time and callbacks

mtiProcessIdT mti_CreateProcess(char* /*name*/, mtiVoidFuncPtrT function, void* argument) {
    return GetBridge().CreateProcess(function, argument);
}

void mti_Sensitize(mtiProcessIdT process, mtiSignalIdT signal, mtiProcessTriggerT trigger) {
    if (trigger != MTI_EVENT) {
        Fail("mti_Sensitize: VPI tells of events on signals only, not of their activity.");
    }
    process->Sensitize(signal);
}

mtiInt32T mti_Now() {
    t_vpi_time now{vpiSimTime, 0, 0, 0};
    vpi_get_time(nullptr, &now);
    return static_cast<mtiInt32T>(now.low);
}

void mti_AddQuitCB(mtiVoidFuncPtrT function, void* argument) {
    GetBridge().AddQuitCallback(function, argument);
}

void mti_AddRestartCB(mtiVoidFuncPtrT /*function*/, void* /*argument*/) {} // no simulator behind VPI restarts

// Drivers

mtiDriverIdT mti_CreateDriver(mtiSignalIdT signal) {
    return GetBridge().CreateDriver(signal);
}

void mti_SetDriverOwner(mtiDriverIdT /*driver*/, mtiProcessIdT /*process*/) {} // it matters to resolution only

void mti_ScheduleDriver(mtiDriverIdT driver, mtiLongT value, mtiDelayT delay, mtiDriverModeT /*mode*/) {
    if (delay != 0) { // without one, both modes are the same
        Fail("mti_ScheduleDriver: the bridge drives without delay only.");
    }
    driver->m_Signal->Drive(value);
}

// Types and values

mtiTypeIdT mti_GetSignalType(mtiSignalIdT signal) {
    return signal->GetType();
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

mtiInt32T mti_GetSignalValue(mtiSignalIdT signal) {
    if (signal->GetType()->m_Kind == MTI_TYPE_ARRAY) {
        Fail("mti_GetSignalValue: signal '" + signal->GetName() + "' is an array.");
    }
    unsigned char position = 0;
    signal->Read(&position);
    return position;
}

void* mti_GetArraySignalValue(mtiSignalIdT signal, void* buffer) {
    if (buffer == nullptr) {
        buffer = std::malloc(static_cast<std::size_t>(signal->GetWidth()));
        if (buffer == nullptr) {
            Fail("Out of memory.");
        }
    }
    signal->Read(static_cast<unsigned char*>(buffer));
    return buffer;
}

void mti_SetSignalValue(mtiSignalIdT signal, mtiLongT value) {
    signal->Drive(value);
}

// Messages

void mti_PrintFormatted(const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    std::va_list again;
    va_copy(again, arguments);
    std::string text(static_cast<std::size_t>(std::vsnprintf(nullptr, 0, format, arguments)), ' ');
    std::vsnprintf(text.data(), text.size() + 1, format, again);
    va_end(again);
    va_end(arguments);
    char plain[] = "%s";
    vpi_printf(plain, text.c_str());
}

/// There is no Tcl here. A library sets a variable to tell scripts why it is about to stop: that text is printed.
void mti_Command(const char* command) {
    constexpr std::string_view DECLARE = "global ";
    constexpr std::string_view SET = "set MTI_ERROR_MSG \"";
    const std::string_view text = command;
    if (text.substr(0, SET.size()) == SET) {
        PrintError(std::string(text.substr(SET.size(), text.rfind('"') - SET.size())));
    } else if (text.substr(0, DECLARE.size()) != DECLARE) {
        Fail("mti_Command: there is no Tcl to run '" + std::string(text) + "'.");
    }
}

void mti_FatalError() {
    Stop();
}
