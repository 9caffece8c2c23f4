// Lays out the ports of a directly served instance, and elaborates it.
#include "bridge/direct/instance.h"

#include <algorithm>
#include <cstddef>

#include "bridge/core/simulation.h"
#include "src/flimemory/direct.h"
#include "src/flimemory/flimemory.h"
#include "src/flimemory/logicelements.h"
#include "src/flimemory/ports.h"

namespace marlune::bridge {

namespace {

// Of the memory library's vectors.
constexpr std::uint32_t VECTOR_WORD_BITS = 64;

std::vector<std::uint64_t> Words(std::uint32_t bits) {
    return std::vector<std::uint64_t>((bits + VECTOR_WORD_BITS - 1) / VECTOR_WORD_BITS);
}

marlune_direct_signal PlaceAt(std::uint32_t offset, std::uint32_t width, bool isScalar) {
    marlune_direct_signal place{};
    place.word = offset / VECTOR_WORD_BITS;
    place.shift = offset % VECTOR_WORD_BITS;
    place.width = width;
    place.is_scalar = isScalar ? 1 : 0;
    place.mask = ~std::uint64_t{0} >> (VECTOR_WORD_BITS - std::min(width, VECTOR_WORD_BITS));
    place.is_split = place.shift + std::min(width, VECTOR_WORD_BITS) > VECTOR_WORD_BITS ? 1 : 0;
    return place;
}

bool IsOutput(const std::string& name) {
    return foreign::fli::HasRole(name, "Q0");
}

void SetBits(std::vector<std::uint64_t>& words, const marlune_direct_signal& place) {
    const std::uint32_t offset = place.word * VECTOR_WORD_BITS + place.shift;
    for (std::uint32_t bit = offset; bit < offset + place.width; ++bit) {
        words[bit / VECTOR_WORD_BITS] |= std::uint64_t{1} << bit % VECTOR_WORD_BITS;
    }
}

} // namespace

CDirectInstance::CDirectInstance(const std::string& path, const std::string& parameters,
                                 const std::vector<CDirectPort>& ports)
    : m_Region(GetSimulation().AddInstance(path)) {
    for (const CDirectPort& port : ports) {
        (IsOutput(port.m_Name) ? m_OutputWidth : m_InputWidth) += port.m_Width;
    }
    std::uint32_t inputsLeft = m_InputWidth;
    std::uint32_t outputsLeft = m_OutputWidth;
    std::vector<mtiSignalIdT> inputs;
    m_Region.m_Signals.emplace_back("CLK"); // its value comes with each call
    for (const CDirectPort& port : ports) { // the order matters if two ports have the same role
        const bool isOutput = IsOutput(port.m_Name);
        std::uint32_t& left = isOutput ? outputsLeft : inputsLeft; // the bits of the ports that follow
        left -= port.m_Width;
        auto& signals = m_Region.m_Signals;
        mtiSignalIdTag& signal = port.m_IsScalar ? signals.emplace_back(port.m_Name)
                                                 : signals.emplace_back(port.m_Name, static_cast<int>(port.m_Width));
        signal.m_Place = PlaceAt(left, port.m_Width, port.m_IsScalar);
        (isOutput ? m_OutputSignals : inputs).push_back(&signal);
    }
    m_InputWords = (m_InputWidth + WORD_BITS - 1) / WORD_BITS;
    m_OutputWords = (m_OutputWidth + WORD_BITS - 1) / WORD_BITS;
    m_Inputs = m_WakingBits = Words(m_InputWidth);
    m_Outputs = Words(m_OutputWidth);
    GetSimulation().Elaborate(m_Region, marlune_fli_memory_init, parameters);
    m_Process = m_Region.m_Processes.back().m_Argument;
    marlune_direct_bind(m_Process);
    for (const mtiSignalIdT signal : inputs) {
        if (signal->m_IsUsed) {
            SetBits(m_WakingBits, signal->m_Place);
        }
    }
}

void CDirectInstance::GetElements(const marlune_direct_signal& place, unsigned char* end) const {
    const std::uint32_t offset = place.word * VECTOR_WORD_BITS + place.shift;
    unsigned char* const first = end - offset - place.width;
    for (std::uint32_t done = 0; done < place.width;) {
        const std::uint32_t from = offset + done;
        const std::uint32_t count = std::min(place.width - done, VECTOR_WORD_BITS - from % VECTOR_WORD_BITS);
        done += count;
        marlune::fli::ElementsOfNumber(m_Outputs[from / VECTOR_WORD_BITS] >> from % VECTOR_WORD_BITS,
                                       first + (place.width - done), static_cast<int>(count));
    }
}

} // namespace marlune::bridge
