// Edges and delta cycles: an instance under random traffic.
#include "src/flimemory/processinfo.h"

#include <random>

#include <gtest/gtest.h>

#include "tests/flimemory/memorymodel.h"

namespace {

TEST(Process, AgreesWithAModelUnderRandomTraffic) {
    std::mt19937 random(5);
    for (const unsigned variant : {0U, 1U, 2U, 3U}) {
        const bool synchronous = variant % 2 != 0;
        const bool isDirect = variant / 2 != 0;
        for (const CShape& shape : {CShape{synchronous, 8, 1000, 32, 10}, CShape{synchronous, 1, 2, 0, 1},
                                    CShape{synchronous, 64, 1024, 100, 10}, CShape{synchronous, 65, 30, 128, 5},
                                    CShape{synchronous, 32, 0xFFFFFFFF, 40, 32}}) {
            SCOPED_TRACE(std::to_string(shape.m_DataBits) + " bits, variant " + std::to_string(variant));
            CSimulator simulator;
            CTestedMemory memory(simulator, random, shape, "top/mem", "", isDirect);
            simulator.Set({{"CLK", "1"}}); // no edge, as the time is 0
            for (int step = 0; step < 1200 && !HasFailure(); ++step) {
                memory.Step();
            }
            EXPECT_TRUE(simulator.m_Lent.empty());
            simulator.Quit();
        }
    }
}

} // namespace
