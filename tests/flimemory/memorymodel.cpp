// A memory as the rules of ports describe it, and random traffic for one under test.
#include "tests/flimemory/memorymodel.h"

#include <algorithm>
#include <string_view>

#include <gtest/gtest.h>

#include "tests/flimemory/library.h"

namespace {

constexpr std::size_t CELL_BITS = 1024;

const char* const PORTS[] = {"CLK",  "a_RE0", "b_WE0", "c_WE0", "c_CS0", "s_RE0", "s_WE0", "s_CS0", "a_RA0", "b_WA0",
                             "c_A0", "s_RA0", "s_WA0", "s_A0",  "a_Q0",  "b_D0",  "c_D0",  "c_Q0",  "s_D0",  "s_Q0"};

bool IsAddress(const std::string& port) {
    return port.find("A0") != std::string::npos;
}

bool IsOutput(const std::string& port) {
    return port.find("Q0") != std::string::npos;
}

/// The length of a port's array, 0 for a single std_logic.
int LengthOf(const std::string& port, const CShape& shape) {
    if (IsAddress(port)) {
        return shape.m_AddressBits;
    }
    if (IsOutput(port) || port.find("D0") != std::string::npos) {
        return shape.m_DataBits;
    }
    return port[0] == 's' ? 2 : 0; // enables
}

} // namespace

CMemoryModel::CMemoryModel(CSimulator& simulator, const CShape& shape, std::string path, std::string scope)
    : m_Shape(shape), m_Scope(std::move(scope)), m_Simulator(simulator), m_Path(std::move(path)) {}

void CMemoryModel::Wake() {
    if (m_Simulator.m_Now != m_LastTime) { // so that time 0 is never one of an edge
        m_LastTime = m_Simulator.m_Now;
        m_IsEdge = !m_IsEdge && IsOne("CLK");
        if (m_IsEdge) {
            Commit();
        }
    }
    if (m_IsEdge) {
        Serve();
    }
}

void CMemoryModel::Commit() {
    m_Outputs = m_Samples;
    m_Samples.clear();
    for (const auto& [prefix, write] : m_Pending) {
        if (write.first >= m_Shape.m_Size) {
            Complain(write.first, "Not writing anything.");
        } else {
            SetCell(write.first, write.second);
        }
    }
    m_Pending.clear();
}

void CMemoryModel::Serve() {
    Read("a", "a_RA0");
    Read("s", "s_RA0");
    for (const std::string prefix : {"c", "s"}) {
        if (IsOne(prefix + "_CS0")) {
            Read(prefix, prefix + "_A0");
        }
    }
    Record("b", "b_WA0", true);
    Record("s", "s_WA0", true);
    Record("c", "c_A0", IsOne("c_CS0"));
    Record("s", "s_A0", IsOne("s_CS0"));
}

std::string CMemoryModel::Cell(std::uint64_t address) const {
    const auto cell = m_Cells.find(address);
    return cell == m_Cells.end() ? std::string(CELL_BITS, '0') : cell->second;
}

void CMemoryModel::SetCell(std::uint64_t address, const std::string& value) {
    const std::size_t kept = m_Shape.m_ByteBitWidth <= 64 && m_Shape.m_Size != 0xFFFFFFFF ? 64 : CELL_BITS;
    const std::string low = value.substr(value.size() - std::min(value.size(), kept));
    m_Cells[address] = std::string(CELL_BITS - low.size(), '0') + low;
}

void CMemoryModel::Complain(std::uint64_t address, const std::string& effect) {
    m_Transcript += "error: '" + m_Path +
                    "': Access outside of memory, address: " + std::to_string(static_cast<int>(address)) +
                    ", max value: " + std::to_string(static_cast<int>(m_Shape.m_Size)) + ". " + effect + "\n";
}

std::string CMemoryModel::Bits(const std::string& signal) const {
    std::string bits = m_Simulator.Value(m_Scope + signal);
    for (char& bit : bits) {
        bit = bit == '1' ? '1' : '0';
    }
    return bits;
}

void CMemoryModel::Read(const std::string& prefix, const std::string& addressSignal) {
    const auto address = std::stoull(Bits(addressSignal), nullptr, 2);
    const std::size_t width = m_Driven.at(prefix).size();
    std::string word(width, '0');
    if (address >= m_Shape.m_Size) {
        Complain(address, "Returning 0.");
    } else {
        word = Cell(address).substr(CELL_BITS - width);
    }
    if (m_Shape.m_Synchronous) {
        m_Samples[prefix] = word;
        word = m_Outputs.emplace(prefix, std::string(width, '0')).first->second;
    }
    m_Driven[prefix] = word;
}

void CMemoryModel::Record(const std::string& prefix, const std::string& address, bool selected) {
    if (selected && IsOne(prefix + "_WE0")) {
        m_Pending[prefix] = {std::stoull(Bits(address), nullptr, 2), Bits(prefix + "_D0")};
    } else {
        m_Pending.erase(prefix);
    }
}

CTestedMemory::CTestedMemory(CSimulator& simulator, std::mt19937& random, const CShape& shape, const std::string& path,
                             const std::string& scope, bool isDirect)
    : m_Model(simulator, shape, path, scope), m_Simulator(simulator), m_Random(random) {
    const std::vector<std::string> ports(std::begin(PORTS), std::end(PORTS));
    for (const std::string& port : ports) {
        simulator.AddSignal(scope + port, LengthOf(port, shape));
    }
    for (const char* prefix : {"a", "c", "s"}) {
        m_Model.m_Driven[prefix] = simulator.Value(scope + prefix + "_Q0");
    }
    simulator.Elaborate(MemoryInit(), "/" + path,
                        std::to_string(static_cast<int>(shape.m_Synchronous)) + " " +
                            std::to_string(shape.m_ByteBitWidth) + " " + std::to_string(shape.m_Size),
                        ports, scope);
    if (isDirect) {
        ServeDirectly(ports);
    }
}

void CTestedMemory::ServeDirectly(const std::vector<std::string>& ports) {
    std::uint32_t bits = 0;
    for (const std::string& port : ports) {
        mtiSignalIdT signal = m_Simulator.Signal(m_Model.m_Scope + port);
        const auto width = static_cast<std::uint32_t>(signal->m_Value.size());
        const std::uint32_t lowest = std::min(width, 64U);
        signal->m_Place = {bits / 64,
                           bits % 64,
                           width,
                           signal->m_Type->m_Kind == MTI_TYPE_ENUM ? 1U : 0U,
                           ~std::uint64_t{0} >> (64 - lowest),
                           bits % 64 + lowest > 64 ? 1U : 0U,
                           0};
        bits += width;
        m_Signals.push_back(signal);
    }
    m_Inputs.resize(bits / 64 + 1);
    m_Outputs.resize(bits / 64 + 1);
    mtiProcessIdTag& process = m_Simulator.m_Processes.back();
    m_Process = std::exchange(process.m_Argument, this);
    process.m_Function = WakeDirectly;
    EntryPoint(marlune_direct_bind, "marlune_direct_bind")(m_Process);
}

void CTestedMemory::WakeDirectly(void* memory) {
    constexpr char ONE = 3;
    auto& self = *static_cast<CTestedMemory*>(memory);
    const auto forEachBit = [](mtiSignalIdT signal, std::vector<std::uint64_t>& words, auto&& visit) {
        std::uint32_t place = signal->m_Place.word * 64 + signal->m_Place.shift + signal->m_Place.width;
        for (char& element : signal->m_Value) {
            --place;
            visit(element, words[place / 64], std::uint64_t{1} << place % 64);
        }
    };
    for (const mtiSignalIdT signal : self.m_Signals) {
        forEachBit(signal, self.m_Inputs, [](char element, std::uint64_t& word, std::uint64_t bit) {
            word = element == ONE ? word | bit : word & ~bit;
        });
    }
    const bool clock = self.m_Signals[0]->m_Value[0] == ONE;
    const int result = EntryPoint(marlune_direct_wake, "marlune_direct_wake")(
        self.m_Process, static_cast<std::uint32_t>(self.m_Simulator.m_Now),
        clock ? MARLUNE_DIRECT_HIGH : MARLUNE_DIRECT_LOW, self.m_Inputs.data(), self.m_Outputs.data());
    for (const mtiSignalIdT signal : self.m_Signals) {
        if (result != MARLUNE_DIRECT_NO_EDGE && signal->m_Place.is_driven != 0) {
            std::string value;
            forEachBit(signal, self.m_Outputs, [&](char, std::uint64_t word, std::uint64_t bit) {
                value += static_cast<char>((word & bit) != 0 ? ONE : ONE - 1);
            });
            self.m_Simulator.m_Scheduled.emplace_back(signal->m_Name, value);
        }
    }
}

void CTestedMemory::Step() {
    m_Simulator.AdvanceTo(m_Simulator.m_Now + static_cast<int>(m_Random() % 4));
    for (auto deltas = 1 + m_Random() % 3; deltas > 0; --deltas) {
        if (ChangeInputs()) {
            m_Model.Wake();
        }
        Compare();
    }
}

void CTestedMemory::Compare() {
    for (const auto& [prefix, word] : m_Model.m_Driven) {
        ASSERT_EQ(m_Simulator.Value(m_Model.m_Scope + prefix + "_Q0"), word) << prefix << " at " << m_Simulator.m_Now;
    }
    ASSERT_EQ(m_Simulator.TakeTranscript(), std::exchange(m_Model.m_Transcript, "")) << "at " << m_Simulator.m_Now;
}

/// Changes some inputs; whether one of them wakes the process, which a read enable does not.
bool CTestedMemory::ChangeInputs() {
    bool wakes = false;
    CSimulator::CChanges changes;
    for (const std::string name : PORTS) {
        if (!IsOutput(name) && m_Random() % 3 != 0) {
            const std::string old = m_Simulator.Value(m_Model.m_Scope + name);
            const std::string letters = RandomLetters(old.size(), IsAddress(name));
            changes.emplace_back(m_Model.m_Scope + name, letters);
            wakes |= name.find("RE0") == std::string::npos && letters != old;
        }
    }
    m_Simulator.Set(changes);
    return wakes;
}

/// Addresses fall into a few places, low and high, so that cells are met again.
std::string CTestedMemory::RandomLetters(std::size_t length, bool isAddress) {
    constexpr std::string_view ANY = "0000111111111UXZWLH-";
    std::string letters;
    const auto high = m_Random() % 5 == 0 ? '1' : '0';
    for (std::size_t i = 0; i < length; ++i) {
        letters += isAddress && length - i > 2 ? high : ANY[m_Random() % ANY.size()];
    }
    return letters;
}
