#include "src/flimemory/processinfo.h"

#include <map>
#include <random>
#include <set>

#include <gtest/gtest.h>

#include "tests/flimemory/library.h"

namespace {

/// How the instance under test is made. Prefix "a" has a read port, "b" a write port, "c" a shared port, and "s" one of
/// each, which share their data signals and their state.
struct CShape {
    bool m_Synchronous;
    unsigned m_ByteBitWidth;
    std::uint64_t m_Size;
    int m_DataBits; // 0: a single std_logic
    int m_AddressBits;
};

/// What a memory instance does, told over signal values as text; written without a look at the library's own types.
class CModel {
public:
    CModel(const CShape& shape, CSimulator& simulator) : m_Shape(shape), m_Simulator(simulator) {}

    void Edge() {
        m_Outputs = m_Samples;
        m_Samples.clear();
        for (const auto& [prefix, write] : m_Pending) {
            if (write.first >= m_Shape.m_Size) {
                Complain(write.first, "Not writing anything.");
            } else {
                const bool cut =
                    m_Shape.m_ByteBitWidth <= 64 && m_Shape.m_Size != 0xFFFFFFFF && write.second.size() > 64;
                m_Cells[write.first] =
                    cut ? std::string(write.second.size() - 64, '0') + write.second.substr(write.second.size() - 64)
                        : write.second;
            }
        }
        m_Pending.clear();
        Passes();
    }

    void Passes() {
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

    std::map<std::string, std::string> m_Driven; // by prefix
    std::string m_Transcript;

private:
    std::string Bits(const std::string& signal) const {
        std::string bits = m_Simulator.Value(signal);
        for (char& bit : bits) {
            bit = bit == '1' ? '1' : '0';
        }
        return bits;
    }

    bool IsOne(const std::string& signal) const { return std::stoul(Bits(signal), nullptr, 2) == 1; }

    void Read(const std::string& prefix, const std::string& addressSignal) {
        const auto address = std::stoull(Bits(addressSignal), nullptr, 2);
        const std::string zero(m_Driven.at(prefix).size(), '0');
        std::string word = zero;
        if (address >= m_Shape.m_Size) {
            Complain(address, "Returning 0.");
        } else if (m_Cells.count(address) == 1) {
            word = m_Cells.at(address);
        }
        if (m_Shape.m_Synchronous) {
            m_Samples[prefix] = word;
            word = m_Outputs.emplace(prefix, zero).first->second;
        }
        m_Driven[prefix] = word;
    }

    void Record(const std::string& prefix, const std::string& address, bool selected) {
        if (selected && IsOne(prefix + "_WE0")) {
            m_Pending[prefix] = {std::stoull(Bits(address), nullptr, 2), Bits(prefix + "_D0")};
        } else {
            m_Pending.erase(prefix);
        }
    }

    void Complain(std::uint64_t address, const std::string& effect) {
        m_Transcript +=
            "error: 'top/mem': Access outside of memory, address: " + std::to_string(static_cast<int>(address)) +
            ", max value: " + std::to_string(static_cast<int>(m_Shape.m_Size)) + ". " + effect + "\n";
    }

    const CShape m_Shape;
    CSimulator& m_Simulator;
    std::map<std::uint64_t, std::string> m_Cells;
    std::map<std::string, std::string> m_Samples;
    std::map<std::string, std::string> m_Outputs;
    std::map<std::string, std::pair<std::uint64_t, std::string>> m_Pending;
};

class CTraffic {
public:
    explicit CTraffic(const CShape& shape) : m_Shape(shape), m_Model(shape, m_Simulator) {
        m_Simulator.AddSignal("CLK", 0);
        for (const char* name : {"a_RE0", "b_WE0", "c_WE0", "c_CS0", "s_RE0", "s_WE0", "s_CS0"}) {
            m_Simulator.AddSignal(name, name[0] == 's' ? 2 : 0);
        }
        for (const char* name : {"a_RA0", "b_WA0", "c_A0", "s_RA0", "s_WA0", "s_A0"}) {
            m_Simulator.AddSignal(name, shape.m_AddressBits);
        }
        for (const char* name : {"a_Q0", "b_D0", "c_D0", "c_Q0", "s_D0", "s_Q0"}) {
            m_Simulator.AddSignal(name, shape.m_DataBits);
            m_Model.m_Driven[std::string(1, name[0])] = m_Simulator.Value(name);
        }
        m_Model.m_Driven.erase("b");
        m_Simulator.Elaborate(MemoryInit(), "/top/mem",
                              std::to_string(static_cast<int>(shape.m_Synchronous)) + " " +
                                  std::to_string(shape.m_ByteBitWidth) + " " + std::to_string(shape.m_Size),
                              {"CLK",  "a_RE0", "b_WE0", "c_WE0", "c_CS0", "s_RE0", "s_WE0", "s_CS0", "a_RA0", "b_WA0",
                               "c_A0", "s_RA0", "s_WA0", "s_A0",  "a_Q0",  "b_D0",  "c_D0",  "c_Q0",  "s_D0",  "s_Q0"});
    }
    ~CTraffic() { m_Simulator.Quit(); }

    void Run(int edges) {
        for (int edge = 0; edge < edges; ++edge) {
            m_Simulator.AdvanceTo(m_Simulator.m_Now + 4);
            Change(); // between edges: nothing happens
            m_Simulator.AdvanceTo(m_Simulator.m_Now + 1);
            m_Simulator.Set({{"CLK", "1"}});
            m_Model.Edge();
            Compare(edge);
            for (auto deltas = m_Random() % 3; deltas > 0; --deltas) {
                if (Change()) {
                    m_Model.Passes();
                }
                Compare(edge);
            }
            m_Simulator.AdvanceTo(m_Simulator.m_Now + 5);
            m_Simulator.Set({{"CLK", "0"}});
            Compare(edge);
        }
        EXPECT_TRUE(m_Simulator.m_Lent.empty());
    }

private:
    void Compare(int edge) {
        for (const auto& [prefix, word] : m_Model.m_Driven) {
            ASSERT_EQ(m_Simulator.Value(prefix + "_Q0"), word) << prefix << " at edge " << edge;
        }
        ASSERT_EQ(m_Simulator.TakeTranscript(), std::exchange(m_Model.m_Transcript, "")) << "at edge " << edge;
    }

    /// Changes some inputs; whether one of them wakes the process.
    bool Change() {
        bool wakes = false;
        CSimulator::CChanges changes;
        for (const char* name : {"a_RE0", "b_WE0", "c_WE0", "c_CS0", "s_RE0", "s_WE0", "s_CS0", "a_RA0", "b_WA0",
                                 "c_A0", "s_RA0", "s_WA0", "s_A0", "b_D0", "c_D0", "s_D0"}) {
            if (m_Random() % 3 != 0) {
                const bool isAddress = std::string(name).find("A0") != std::string::npos;
                changes.emplace_back(name, RandomLetters(m_Simulator.Value(name).size(), isAddress));
                wakes |= std::string(name).find("RE0") == std::string::npos &&
                         m_Simulator.Value(name) != changes.back().second;
            }
        }
        m_Simulator.Set(changes);
        return wakes;
    }

    /// Addresses fall into a few places, low and high, so that cells are met again.
    std::string RandomLetters(std::size_t length, bool isAddress) {
        std::string letters;
        const auto high = m_Random() % 5 == 0 ? '1' : '0';
        for (std::size_t i = 0; i < length; ++i) {
            letters += isAddress && length - i > 2 ? high : "0011111X0H"[m_Random() % 10];
        }
        return letters;
    }

    CSimulator m_Simulator;
    CShape m_Shape;
    CModel m_Model;
    std::mt19937 m_Random{5};
};

TEST(Process, AgreesWithAModelUnderRandomTraffic) {
    for (const bool synchronous : {false, true}) {
        for (const CShape& shape : {CShape{synchronous, 8, 1000, 32, 10}, CShape{synchronous, 1, 2, 0, 1},
                                    CShape{synchronous, 64, 1024, 100, 10}, CShape{synchronous, 128, 30, 128, 5},
                                    CShape{synchronous, 32, 0xFFFFFFFF, 40, 32}}) {
            SCOPED_TRACE(std::to_string(shape.m_DataBits) + " bits, synchronous " + std::to_string(synchronous));
            CTraffic(shape).Run(400);
        }
    }
}

class CSmallMemory : public testing::Test {
protected:
    CSmallMemory() {
        for (const char* name : {"CLK", "r_RE0", "w_WE0"}) {
            m_Simulator.AddSignal(name, 0);
        }
        for (const char* name : {"r_RA0", "w_WA0", "r_Q0", "w_D0"}) {
            m_Simulator.AddSignal(name, 4);
        }
        Elaborate();
        m_Simulator.Set({{"CLK", "0"}, {"r_RA0", "0000"}, {"w_WA0", "0000"}, {"w_WE0", "1"}, {"w_D0", "1001"}});
    }
    ~CSmallMemory() override { m_Simulator.Quit(); }

    void Elaborate() {
        m_Simulator.Elaborate(MemoryInit(), "/top/mem", "0 4 16",
                              {"CLK", "r_RE0", "r_RA0", "r_Q0", "w_WE0", "w_WA0", "w_D0"});
    }

    CSimulator m_Simulator;
};

TEST_F(CSmallMemory, TellsEdgesByTheEvaluationBefore) {
    m_Simulator.Set({{"CLK", "1"}}); // time 0 is never an edge
    EXPECT_EQ(m_Simulator.Value("r_Q0"), "UUUU");
    m_Simulator.AdvanceTo(1);
    m_Simulator.Set({{"w_D0", "0110"}}); // the clock still at 1 at a later time is one
    EXPECT_EQ(m_Simulator.Value("r_Q0"), "0000");
    m_Simulator.AdvanceTo(2);
    m_Simulator.Set({{"w_D0", "1111"}}); // not right behind an edge
    EXPECT_EQ(m_Simulator.Value("r_Q0"), "0000");
    m_Simulator.AdvanceTo(3);
    m_Simulator.Set({{"w_D0", "0001"}}); // but at the time after that, which commits
    EXPECT_EQ(m_Simulator.Value("r_Q0"), "0110");
}

TEST_F(CSmallMemory, StartsAfreshAfterRestart) {
    m_Simulator.Edge();
    m_Simulator.Edge({{"w_D0", "1111"}});
    EXPECT_EQ(m_Simulator.Value("r_Q0"), "1001");
    m_Simulator.Restart(); // the write of 1111 is lost, and so are all cells
    m_Simulator.m_Now = 0;
    Elaborate();
    m_Simulator.Edge({{"w_WE0", "0"}});
    m_Simulator.Edge();
    EXPECT_EQ(m_Simulator.Value("r_Q0"), "0000");
    EXPECT_EQ(m_Simulator.TakeTranscript(), "");
}

} // namespace
