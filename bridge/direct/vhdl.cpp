// The functions that the packages in hdl/ghdl/ call: directly served memories, and test bench access to all memories.
#include <algorithm>
#include <cstdint>
#include <deque>
#include <sstream>
#include <string>
#include <vector>

#include "bridge/core/failure.h"
#include "bridge/core/foreigntext.h"
#include "bridge/core/testbench.h"
#include "bridge/direct/entry.h"
#include "bridge/direct/instance.h"
#include "bridge/direct/vhdlarray.h"
#include "src/flimemory/direct.h"
#include "src/flimemory/logicelements.h"

namespace marlune::bridge {

namespace {

/// A memory instance in GHDL. It wakes with each event on CLK and on its inputs, as the process of an FLI simulator
/// does.
class CVhdlInstance {
public:
    CVhdlInstance(const std::string& path, const std::string& parameters, const std::vector<CDirectPort>& ports)
        : m_Instance(path, parameters, ports) {}

    /// The time is in femtoseconds. Returns whether an output was driven for the first time or to another value. If so,
    /// all outputs that have ever been driven are written.
    bool Wake(std::int64_t time, bool clockIsOne, const CVhdlArray& inputs, const CVhdlArray& outputs) {
        if (time != m_Time) {
            m_Time = time;
            ++m_Number;
            m_BeganLow = !clockIsOne;
        } else if (m_BeganLow && clockIsOne) {
            WarnOfMissedEdge();
        }
        CheckLength("inputs", inputs.GetLength(), m_Instance.GetInputWidth());
        CheckLength("outputs", outputs.GetLength(), m_Instance.GetOutputWidth());
        m_Instance.SetInputs(ToBits(inputs));
        const int result = m_Instance.Wake(m_Number, clockIsOne ? MARLUNE_DIRECT_HIGH : MARLUNE_DIRECT_LOW);
        if (result == MARLUNE_DIRECT_NO_EDGE || (result == MARLUNE_DIRECT_SERVED && !HasNewOutput())) {
            return false;
        }
        WriteOutputs(outputs);
        return true;
    }

private:
    /// The first evaluation at a time decides whether it is that of an edge.
    void WarnOfMissedEdge() {
        if (!m_HasWarned) {
            m_HasWarned = true;
            PrintWarning(
                m_Instance.GetPath(),
                "CLK rises at " + std::to_string(m_Time) +
                    " fs, one or more delta cycles after CLK or an input has changed at that time: this edge is "
                    "missed, and so is each one like it. Register the inputs on the very signal that is CLK.");
        }
    }

    /// A copied entity may lack a port in one of the two places.
    void CheckLength(const char* what, std::uint32_t length, std::uint32_t listed) const {
        if (length != listed) {
            Fail(m_Instance.GetPath(), "The " + std::string(what) + " of wake have " + std::to_string(length) +
                                           " elements, and the ports that open_memory lists have " +
                                           std::to_string(listed) + ".");
        }
    }

    const std::uint32_t* ToBits(const CVhdlArray& inputs) {
        constexpr int WORD_BITS = 32;
        const auto* elements = reinterpret_cast<const unsigned char*>(inputs.m_Base);
        int left = static_cast<int>(inputs.GetLength());
        m_InputBits.resize(static_cast<std::size_t>(left + WORD_BITS - 1) / WORD_BITS);
        for (std::uint32_t& word : m_InputBits) {
            const int taken = std::min(left, WORD_BITS);
            left -= taken;
            word = static_cast<std::uint32_t>(marlune::fli::NumberOfElements(elements + left, taken));
        }
        return m_InputBits.data();
    }

    bool HasNewOutput() {
        std::size_t driven = 0;
        for (const mtiSignalIdT signal : m_Instance.GetOutputSignals()) {
            driven += signal->m_Place.is_driven;
        }
        return driven != m_DrivenOutputs;
    }

    /// The others keep their 'U'.
    void WriteOutputs(const CVhdlArray& outputs) {
        m_DrivenOutputs = 0;
        auto* const end = reinterpret_cast<unsigned char*>(outputs.m_Base) + outputs.GetLength();
        for (const mtiSignalIdT signal : m_Instance.GetOutputSignals()) {
            if (signal->m_Place.is_driven != 0) {
                ++m_DrivenOutputs;
                m_Instance.GetElements(signal->m_Place, end);
            }
        }
    }

    CDirectInstance m_Instance;
    std::int64_t m_Time = 0;
    std::uint32_t m_Number = 0; // for the memory library: of that time
    bool m_BeganLow = false;    // CLK was not 1 at the first event of that time, which is not 0
    bool m_HasWarned = false;
    std::vector<std::uint32_t> m_InputBits;
    std::size_t m_DrivenOutputs = 0;
};

std::deque<CVhdlInstance> g_Instances;

/// ":tb:ram:clk" becomes "tb/ram": the path of a port without the port's name.
std::string PathOfPort(std::string path) {
    path.erase(path.rfind(':'));
    path.erase(0, 1);
    for (char& character : path) {
        character = character == ':' ? '/' : character;
    }
    return path;
}

/// Ports as "name:length" for a vector and "name" for a single std_logic, separated by blanks.
std::vector<CDirectPort> PortsOf(const std::string& description) {
    std::vector<CDirectPort> ports;
    std::istringstream text(description);
    for (std::string port; text >> port;) {
        const std::size_t colon = port.find(':');
        const bool isScalar = colon == std::string::npos;
        const auto width = isScalar ? 1 : static_cast<std::uint32_t>(std::stoul(port.substr(colon + 1)));
        ports.push_back({port.substr(0, colon), width, isScalar});
    }
    return ports;
}

/// An address or another number of 32 bits, given as that many elements.
std::uint32_t NumberOf(const CVhdlArray& elements) {
    const auto* first = reinterpret_cast<const unsigned char*>(elements.m_Base);
    return static_cast<std::uint32_t>(marlune::fli::NumberOfElements(first, static_cast<int>(elements.GetLength())));
}

/// The value that the elements stand for. If there are more than a cell has bits, the first ones are lost.
CCellValue ValueOf(const CVhdlArray& elements) {
    const auto* first = reinterpret_cast<const unsigned char*>(elements.m_Base);
    const auto word = marlune::fli::WordOfElements(first, static_cast<int>(elements.GetLength()));
    CCellValue value{};
    for (unsigned limb = 0; limb < value.size(); ++limb) {
        value[limb].aval = word.Limb(limb);
    }
    return value;
}

/// The elements that stand for the low bits of the value; those beyond its width become '0'.
void WriteValue(const CCellValue& value, const CVhdlArray& elements) {
    constexpr std::uint32_t VALUE_BITS = 1024;
    marlune_int<VALUE_BITS, true> word;
    for (unsigned limb = 0; limb < value.size(); ++limb) {
        word.SetLimb(limb, value[limb].aval);
    }
    const std::uint32_t written = std::min(elements.GetLength(), VALUE_BITS);
    auto* const first = reinterpret_cast<unsigned char*>(elements.m_Base);
    auto* const end = first + elements.GetLength();
    std::fill(first, end - written, marlune::fli::POSITION_0);
    marlune::fli::ElementsOfWord(word, end - written, static_cast<int>(written));
}

} // namespace

} // namespace marlune::bridge

using namespace marlune::bridge; // the entry points have no namespace

extern "C" {

/// Elaborates the memory whose clock has this path. If `parameters` is empty, they follow from the numbers. Returns the
/// memory's number.
std::int32_t marlune_vhdl_open(const CVhdlArray* clockPath, const CVhdlArray* parameters, std::int32_t mode,
                               std::int32_t dataBits, std::int32_t addressBits, const CVhdlArray* ports) {
    return RunEntry([&] {
        std::string text = parameters->GetText();
        if (text.empty()) {
            text = DefaultParameters(static_cast<unsigned>(mode), static_cast<unsigned>(dataBits),
                                     static_cast<unsigned>(addressBits));
        }
        g_Instances.emplace_back(PathOfPort(clockPath->GetText()), text, PortsOf(ports->GetText()));
        return static_cast<std::int32_t>(g_Instances.size() - 1);
    });
}

/// An event on CLK or an input. `changed` tells whether the outputs were written.
void marlune_vhdl_wake(std::int32_t memory, std::int64_t now, unsigned char clock, const CVhdlArray* inputs,
                       const CVhdlArray* outputs, unsigned char* changed) {
    RunEntry([&] {
        StartOnce();
        CVhdlInstance& instance = g_Instances[static_cast<std::size_t>(memory)];
        *changed = instance.Wake(now, clock == marlune::fli::POSITION_1, *inputs, *outputs) ? 1 : 0;
    });
}

// Addresses and counts have 32 bits.

void marlune_vhdl_load(const CVhdlArray* path, const CVhdlArray* file, const CVhdlArray* addressSpace,
                       const CVhdlArray* base, const CVhdlArray* bank, const CVhdlArray* banks) {
    RunEntry([&] {
        Load(path->GetText(), file->GetText(), addressSpace->GetText(), NumberOf(*base), NumberOf(*bank),
             NumberOf(*banks));
    });
}

void marlune_vhdl_poke(const CVhdlArray* path, const CVhdlArray* address, const CVhdlArray* value) {
    RunEntry([&] { Poke(path->GetText(), NumberOf(*address), ValueOf(*value)); });
}

void marlune_vhdl_peek(const CVhdlArray* path, const CVhdlArray* address, const CVhdlArray* value) {
    RunEntry([&] { WriteValue(Peek(path->GetText(), NumberOf(*address)), *value); });
}

} // extern "C"
