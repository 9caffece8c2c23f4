// A memory instance whose simulator calls it directly and hands over the values of its ports.
#ifndef MARLUNE_BRIDGE_DIRECT_INSTANCE_H
#define MARLUNE_BRIDGE_DIRECT_INSTANCE_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "bridge/core/simulation.h"
#include "src/flimemory/direct.h"

namespace marlune::bridge {

/// A port other than CLK, as a description of the instance gives it. One whose name ends in "Q0" is an output.
struct CDirectPort {
    std::string m_Name;
    std::uint32_t m_Width;   // in bits
    bool m_IsScalar = false; // a single std_logic and no vector
};

/// The values of all inputs are in one bit vector and those of all outputs in another, each in the order of the ports,
/// the first in the most significant bits. The simulator's vectors consist of words of 32 bits, the least significant
/// first.
class CDirectInstance {
public:
    /// Elaborates the instance. An error ends the simulation.
    CDirectInstance(const std::string& path, const std::string& parameters, const std::vector<CDirectPort>& ports);

    CDirectInstance(const CDirectInstance&) = delete; // the memory library keeps addresses of its members
    CDirectInstance& operator=(const CDirectInstance&) = delete;

    const std::string& GetPath() const { return m_Region.m_Path; }

    const std::vector<mtiSignalIdT>& GetOutputSignals() const { return m_OutputSignals; }

    // In bits.
    std::uint32_t GetInputWidth() const { return m_InputWidth; }
    std::uint32_t GetOutputWidth() const { return m_OutputWidth; }

    /// Sets the values of the inputs. Returns whether one that wakes the instance has changed. Bits above them are
    /// ignored.
    bool SetInputs(const std::uint32_t* inputs) {
        std::uint64_t changed = 0;
        const std::uint32_t words = m_InputWords;
        for (std::uint32_t word = 0; word < words; word += 2) {
            const std::uint64_t high = word + 1 < words ? inputs[word + 1] : 0;
            const std::uint64_t pair = high << WORD_BITS | inputs[word];
            changed |= (pair ^ m_Inputs[word / 2]) & m_WakingBits[word / 2];
            m_Inputs[word / 2] = pair;
        }
        return changed != 0;
    }

    void GetOutputs(std::uint32_t* outputs) const {
        for (std::uint32_t word = 0; word < m_OutputWords; ++word) {
            outputs[word] = static_cast<std::uint32_t>(m_Outputs[word / 2] >> word % 2 * WORD_BITS);
        }
    }

    /// Writes the elements of one output to an array of all of them, which ends at `end`.
    void GetElements(const marlune_direct_signal& place, unsigned char* end) const;

    /// Wakes the instance's process. `number` stands for the time: it is 0 at time 0 and differs from one time to the
    /// next. Returns a marlune_direct_result.
    int Wake(std::uint32_t number, marlune_direct_clock clock) {
        const CCurrentInstance current(&m_Region);
        return marlune_direct_wake(m_Process, number, clock, m_Inputs.data(), m_Outputs.data());
    }

private:
    static constexpr std::uint32_t WORD_BITS = 32;

    mtiRegionIdTag& m_Region;
    void* m_Process = nullptr; // the argument of the memory library's process
    std::uint32_t m_InputWidth = 0;
    std::uint32_t m_OutputWidth = 0;
    std::uint32_t m_InputWords = 0; // of the simulator's vectors
    std::uint32_t m_OutputWords = 0;
    std::vector<std::uint64_t> m_Inputs;
    std::vector<std::uint64_t> m_WakingBits; // of the inputs
    std::vector<std::uint64_t> m_Outputs;
    std::vector<mtiSignalIdT> m_OutputSignals;
};

} // namespace marlune::bridge

#endif
