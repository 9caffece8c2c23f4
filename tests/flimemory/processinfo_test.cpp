// Edges and delta cycles: an instance under random traffic, and what random traffic does not meet.
#include "src/flimemory/processinfo.h"

#include <random>

#include <gtest/gtest.h>

#include "tests/flimemory/library.h"
#include "tests/flimemory/memorymodel.h"

namespace {

TEST(Process, AgreesWithAModelUnderRandomTraffic) {
    std::mt19937 random(5);
    for (const unsigned variant : {0U, 1U, 2U, 3U}) {
        const bool synchronous = variant % 2 != 0;
        const bool isDirect = variant / 2 != 0;
        for (const CShape& shape : {CShape{synchronous, 8, 1000, 32, 10}, CShape{synchronous, 1, 2, 0, 1},
                                    CShape{synchronous, 64, 1024, 100, 10}, CShape{synchronous, 128, 30, 128, 5},
                                    CShape{synchronous, 32, 0xFFFFFFFF, 40, 32}}) {
            SCOPED_TRACE(std::to_string(shape.m_DataBits) + " bits, variant " + std::to_string(variant));
            CSimulator simulator;
            CTestedMemory memory(simulator, random, shape, "top/mem", "", isDirect);
            for (int edge = 0; edge < 400 && !HasFailure(); ++edge) {
                memory.Clock();
            }
            EXPECT_TRUE(simulator.m_Lent.empty());
            simulator.Quit();
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
