// The functions that hdl/marlune_dpi.sv calls for a directly served memory.
#include <cstdint>
#include <cstring>
#include <deque>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "bridge/core/failure.h"
#include "bridge/core/foreigntext.h"
#include "bridge/core/testbench.h"
#include "bridge/core/text.h"
#include "bridge/direct/entry.h"
#include "bridge/direct/instance.h"
#include "src/flimemory/direct.h"
#include "src/flimemory/flimemory.h"

namespace marlune::bridge {

namespace {

/// A time as the module gives it: the bits of $realtime. Times are only compared, and bits compare faster.
using CTime = std::uint64_t;
constexpr CTime START = 0;
constexpr CTime NEVER = ~CTime{0};

CTime TimeOf(double realTime) {
    CTime time = 0;
    static_assert(sizeof time == sizeof realTime);
    std::memcpy(&time, &realTime, sizeof time);
    return time;
}

/// Counts the requests for a look. All modules of a model share the variable that receives it, so it never returns to a
/// value that one of them has seen.
std::uint32_t g_Turn = 0;

/// Numbers the outputs in the order in which modules receive them.
std::uint64_t g_Stamp = 0;

/// A memory instance in a simulator without delta cycles. Its module reports each rise of CLK and each change of an
/// input, and looks at CLK when it is asked to. The wake-ups of the instance's process follow from that:
///
/// - When CLK rises, the process wakes with the inputs' values from before the edge. Registers of the same clock change
///   later in the same time, as in the next delta cycle.
/// - An input that changes at the time of an edge wakes it again.
/// - An input that changes at another time rarely matters. The first such time after an edge is never that of an edge,
///   whatever the level of CLK. At a further one the level matters, and the module is asked to look at it.
///
/// The module does not report that CLK falls, because that would cost as much as an edge. CLK falls once between two
/// rises, and the fall is assumed to have a time of its own.
class CSvInstance {
public:
    CSvInstance(const std::string& path, const std::string& parameters, const std::vector<CDirectPort>& ports)
        : m_Instance(path, parameters, ports) {}

    void Rise(CTime time) {
        if (time == m_RiseTime) {
            FailForTime(time);
        }
        m_RiseTime = time;
        m_LookTime = NEVER;
        m_IsLow = false;
        if (time == START || (time == m_Time && m_IsEdge)) { // the simulator reported the inputs first
            return;
        }
        Evaluate(time, MARLUNE_DIRECT_ROSE);
        m_HasJustRisen = true;
    }

    void SetInputs(CTime time, const std::uint32_t* inputs) {
        const bool hasChanged = m_Instance.SetInputs(inputs);
        if (!hasChanged && !m_HasJustRisen) {
            return;
        }
        if (time == m_Time) {
            m_HasJustRisen = false;
            if (m_IsEdge && m_Instance.Wake(m_Number, MARLUNE_DIRECT_HIGH) == MARLUNE_DIRECT_CHANGED) {
                ++g_Turn;
            }
        } else if (m_IsEdge || m_IsLow || time == START) {
            Evaluate(time, MARLUNE_DIRECT_LOW);
        } else if (time != m_LookTime) {
            m_LookTime = time;
            ++g_Turn;
        }
    }

    void Look(CTime time, bool clockIsOne) {
        if (time == m_LookTime) {
            m_LookTime = NEVER;
            m_IsLow = !clockIsOne;
            Evaluate(time, clockIsOne ? MARLUNE_DIRECT_HIGH : MARLUNE_DIRECT_LOW);
        }
    }

    std::uint64_t GetOutputs(std::uint32_t* outputs) {
        m_Instance.GetOutputs(outputs);
        return ++g_Stamp;
    }

private:
    void Evaluate(CTime time, marlune_direct_clock clock) {
        m_Time = time;
        m_Number += time == START ? 0 : 1;
        m_IsEdge = m_Instance.Wake(m_Number, clock) != MARLUNE_DIRECT_NO_EDGE;
    }

    [[noreturn]] void FailForTime(CTime time) {
        std::ostringstream text;
        double realTime = 0;
        std::memcpy(&realTime, &time, sizeof realTime);
        text << "CLK rises twice at time " << realTime
             << ". A main program of one's own must advance the time between evaluations of the model, by timeInc.";
        Fail(m_Instance.GetPath(), text.str());
    }

    CDirectInstance m_Instance;
    CTime m_Time = NEVER;        // of the last evaluation
    std::uint32_t m_Number = 0;  // for the memory library: of that time
    bool m_IsEdge = false;       // the result of the last evaluation
    CTime m_RiseTime = NEVER;    // of the last rise
    bool m_HasJustRisen = false; // the inputs have not been reported since
    bool m_IsLow = false;        // CLK is known to have fallen since
    CTime m_LookTime = NEVER;    // at which a look has been asked for
};

/// "TOP.tb.ram.memory" becomes "tb.ram": the first name is that of a Verilator model, and the last one that of the
/// module in hdl/marlune_dpi.sv.
std::string PathOfScope(std::string scope) {
    constexpr std::string_view MODEL = "TOP.";
    scope.erase(scope.rfind('.'));
    return BeginsWith(scope, MODEL) ? scope.substr(MODEL.size()) : scope;
}

/// The ports of the names, which are separated by blanks. The widths are in the opposite order.
std::vector<CDirectPort> PortsOf(const char* names, const std::uint32_t* widths) {
    std::vector<CDirectPort> ports;
    std::istringstream text(names);
    for (std::string name; text >> name;) {
        ports.push_back({name, 0});
    }
    for (std::size_t i = 0; i < ports.size(); ++i) {
        ports[i].m_Width = widths[ports.size() - 1 - i];
    }
    return ports;
}

CSvInstance& InstanceOf(void* memory) {
    return *static_cast<CSvInstance*>(memory);
}

} // namespace

} // namespace marlune::bridge

using namespace marlune::bridge; // the entry points have no namespace

extern "C" {

/// Elaborates the memory of a scope. If `parameters` is empty, they follow from the numbers. The handle is valid until
/// the end of the run.
void* marlune_sv_open(const char* scope, const char* parameters, unsigned mode, unsigned dataBits, unsigned addressBits,
                      const char* names, const std::uint32_t* widths) {
    return RunEntry([&]() -> void* {
        static std::deque<CSvInstance> instances;
        const std::string text = *parameters != '\0' ? parameters : DefaultParameters(mode, dataBits, addressBits);
        return &instances.emplace_back(PathOfScope(scope), text, PortsOf(names, widths));
    });
}

/// Loads an image. It takes the place of the memory library's function, which does not print the warning.
void marlune_dpi_memory_init(char const* name, char const* fileName, char const* addressSpace, unsigned int cellBase,
                             unsigned int lowAddress, unsigned int highAddress, unsigned int phase,
                             unsigned int stride) {
    LoadByName(name, fileName, addressSpace, cellBase, lowAddress, highAddress, phase, stride);
}

/// CLK rises. Writes the outputs; returns their stamp.
std::uint64_t marlune_sv_rise(void* memory, double now, std::uint32_t* outputs) {
    StartOnce();
    InstanceOf(memory).Rise(TimeOf(now));
    return InstanceOf(memory).GetOutputs(outputs);
}

/// The inputs have these values. The number that it returns changes when the module is to look.
std::uint32_t marlune_sv_inputs(void* memory, double now, std::uint64_t /*stamp*/, const std::uint32_t* inputs) {
    InstanceOf(memory).SetInputs(TimeOf(now), inputs);
    return g_Turn;
}

/// The level of CLK once the time step has settled. Writes the outputs; returns their stamp.
std::uint64_t marlune_sv_look(void* memory, double now, unsigned char clock, std::uint32_t* outputs) {
    InstanceOf(memory).Look(TimeOf(now), clock != 0);
    return InstanceOf(memory).GetOutputs(outputs);
}

} // extern "C"
