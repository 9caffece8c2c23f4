// The functions of the foreign language interface that the bridge offers. exports.map lists them.
#include "mti.h"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string_view>

#include <strings.h>

#include "bridge/core/failure.h"
#include "bridge/core/instancereport.h"
#include "bridge/core/simulation.h"
#include "bridge/core/text.h"

using marlune::bridge::BeginsWith;
using marlune::bridge::GetSimulation;

namespace {

/// Ends the simulation; the message names the instance that is being elaborated or runs.
[[noreturn]] void Fail(const std::string& text) {
    marlune::bridge::Fail(marlune::bridge::GetCurrentPath(), text);
}

/// A further line for some of the memory library's messages, or nothing.
std::string Explain(std::string_view message) {
    constexpr std::string_view LITERAL = "include/number_cast(";
    constexpr std::string_view NO_MEMORY = "General error: Cannot find memory object with name '";

    const mtiRegionIdT current = marlune::bridge::g_Current;
    if (BeginsWith(message, LITERAL) && current != nullptr) {
        return "\n  " + marlune::bridge::DescribeWrongParameter(current->m_Parameters);
    }
    if (BeginsWith(message, NO_MEMORY)) {
        message.remove_prefix(NO_MEMORY.size());
        const std::string name(message.substr(0, message.rfind('\'')));
        return "\n  " + marlune::bridge::DescribeClosest(GetSimulation().GetInstances(), name);
    }
    if (message == "basic_string::substr" && current != nullptr && current->m_Processes.empty()) {
        return "\n  " + marlune::bridge::DescribeShortPort(*current);
    }
    if (message == "std::exception") {
        return "\n  The image is malformed: 'marlune-image check FILE' finds the line.";
    }
    if (BeginsWith(message, "General error: Incorrect architecture") ||
        BeginsWith(message, "General error: Unsupported ELF class")) {
        return "\n  Convert programs of other toolchains: 'marlune-image convert FILE IMAGE --space NAME --width "
               "BITS'.";
    }
    return "";
}

/// The value of a signal that the simulator holds.
marlune::bridge::CSignalValue& ValueOf(mtiSignalIdT signal) {
    if (signal->m_Value == nullptr) {
        Fail("Signal '" + signal->m_Name + "' is served by direct calls only.");
    }
    return *signal->m_Value;
}

/// Assigns a value as the interface passes it: a position, or an array's address as a number.
void Drive(mtiSignalIdT signal, mtiLongT value) {
    const auto position = static_cast<unsigned char>(value);
    ValueOf(signal).Drive(signal->m_Type.m_Kind == MTI_TYPE_ARRAY
                              ? reinterpret_cast<const unsigned char*>(value) // NOLINT(performance-no-int-to-ptr)
                              : &position);
}

} // namespace

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
    return strdup(("/" + region->m_Path).c_str());
}

void mti_VsimFree(void* memory) {
    std::free(memory); // from malloc or strdup
}

char* mti_GetSignalName(mtiSignalIdT signal) {
    return signal->m_Name.data();
}

// Processes, time and callbacks

mtiProcessIdT mti_CreateProcess(char* /*name*/, mtiVoidFuncPtrT function, void* argument) {
    return GetSimulation().CreateProcess(function, argument);
}

void mti_Sensitize(mtiProcessIdT process, mtiSignalIdT signal, mtiProcessTriggerT trigger) {
    if (trigger != MTI_EVENT) {
        Fail("mti_Sensitize: only events on signals wake a process here, not their activity.");
    }
    signal->m_IsUsed = true;
    GetSimulation().GetHost().Sensitize(process, signal);
}

mtiInt32T mti_Now() {
    return GetSimulation().GetHost().Now();
}

void mti_AddQuitCB(mtiVoidFuncPtrT function, void* argument) {
    GetSimulation().AddQuitCallback(function, argument);
}

void mti_AddRestartCB(mtiVoidFuncPtrT /*function*/, void* /*argument*/) {} // no simulator that is served here restarts

// Drivers

mtiDriverIdT mti_CreateDriver(mtiSignalIdT signal) {
    signal->m_IsUsed = true;
    return GetSimulation().CreateDriver(signal);
}

void mti_SetDriverOwner(mtiDriverIdT /*driver*/, mtiProcessIdT /*process*/) {} // it matters to resolution only

void mti_ScheduleDriver(mtiDriverIdT driver, mtiLongT value, mtiDelayT delay, mtiDriverModeT /*mode*/) {
    if (delay != 0) { // without one, both modes are the same
        Fail("mti_ScheduleDriver: the bridge drives without delay only.");
    }
    Drive(driver->m_Signal, value);
}

// Types and values

mtiTypeIdT mti_GetSignalType(mtiSignalIdT signal) {
    return &signal->m_Type;
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
    if (signal->m_Type.m_Kind == MTI_TYPE_ARRAY) {
        Fail("mti_GetSignalValue: signal '" + signal->m_Name + "' is an array.");
    }
    unsigned char position = 0;
    ValueOf(signal).Read(&position);
    return position;
}

void* mti_GetArraySignalValue(mtiSignalIdT signal, void* buffer) {
    if (buffer == nullptr) {
        buffer = std::malloc(static_cast<std::size_t>(signal->m_Type.m_Length));
        if (buffer == nullptr) {
            Fail("Out of memory.");
        }
    }
    ValueOf(signal).Read(static_cast<unsigned char*>(buffer));
    return buffer;
}

void mti_SetSignalValue(mtiSignalIdT signal, mtiLongT value) {
    Drive(signal, value);
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
    GetSimulation().GetHost().Print(text.c_str());
}

/// There is no Tcl here. A library sets a variable to tell scripts why it is about to stop; its text is printed.
void mti_Command(const char* command) {
    constexpr std::string_view DECLARE = "global ";
    constexpr std::string_view SET = "set MTI_ERROR_MSG \"";
    const std::string_view text = command;
    if (BeginsWith(text, SET)) {
        const std::string message(text.substr(SET.size(), text.rfind('"') - SET.size()));
        marlune::bridge::PrintError(marlune::bridge::GetCurrentPath(), message + Explain(message));
    } else if (!BeginsWith(text, DECLARE)) {
        Fail("mti_Command: there is no Tcl to run '" + std::string(text) + "'.");
    }
}

void mti_FatalError() {
    marlune::bridge::Stop();
}
