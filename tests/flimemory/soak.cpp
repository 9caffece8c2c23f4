// A long run of everything at once: instances come and go, are clocked, loaded, read and written, and calls fail on
// purpose, in random order, all compared with the models.
//
// usage: soak [SECONDS [SEED]]
#include <malloc.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <memory>

#include <gtest/gtest.h>

#include "tests/flimemory/loadmodel.h"
#include "tests/flimemory/logictext.h"
#include "tests/flimemory/memorymodel.h"

namespace {

int g_Seconds = 2;
unsigned g_Seed = 1;

constexpr std::size_t WARM_UP = 20; // restarts, after which all that stays is there

class CSoak {
public:
    CSoak() : m_Random(g_Seed) {}
    ~CSoak() { m_Simulator.Quit(); }

    void Run() {
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(g_Seconds);
        while (std::chrono::steady_clock::now() < end && !testing::Test::HasFailure()) {
            Step();
            ++m_Operations;
        }
        EXPECT_TRUE(m_Simulator.m_Lent.empty());
        Restart();
        CheckResident();
        std::cout << m_Operations << " operations, " << m_Restarts << " restarts, " << m_Loads << " loads, seed "
                  << g_Seed << "; " << ResidentKiB() << " KiB resident at the end\n";
    }

private:
    void Step() {
        const auto choice = m_Random() % 1000;
        if (m_Memories.empty() || (choice < 20 && m_Memories.size() < 8)) {
            Elaborate();
        } else if (choice < 25) {
            Restart();
        } else if (choice < 100) {
            Load();
        } else if (choice < 150) {
            Fail();
        } else if (choice < 500) {
            Access();
        } else {
            CTestedMemory& memory = *m_Memories[m_Random() % m_Memories.size()];
            memory.Step();
            memory.Step();
            memory.Step();
        }
    }

    void Elaborate() {
        const CShape shapes[] = {{false, 8, 1000, 32, 10},
                                 {false, 8, 0xFFFFFFFF, 16, 32},
                                 {false, 1, 2, 0, 1},
                                 {false, 64, 1024, 100, 10},
                                 {false, 128, 30, 128, 5}};
        CShape shape = shapes[m_Random() % 5];
        shape.m_Synchronous = m_Random() % 2 == 0;
        const std::string name = "u" + std::to_string(m_Memories.size());
        m_Memories.push_back(std::make_unique<CTestedMemory>(m_Simulator, m_Random, shape, "tb/" + name + ".mem",
                                                             name + ".", m_Random() % 2 == 0));
        m_Names.push_back("tb_" + name + "_mem");
        m_Simulator.TakeLog();
    }

    void Restart() {
        m_Simulator.Restart();
        m_Simulator.Reset();
        m_Memories.clear();
        m_Names.clear();
        ++m_Restarts;
        if (m_Restarts == WARM_UP) {
            malloc_trim(0);
            m_ResidentAtFirst = ResidentKiB();
        }
    }

    /// Memory does not grow with the run. Sanitizers hold back what is given free.
    void CheckResident() const {
#ifndef __SANITIZE_ADDRESS__
        malloc_trim(0);
        if (m_Restarts > 2 * WARM_UP) {
            EXPECT_LT(ResidentKiB(), m_ResidentAtFirst + 2048) << "after " << m_Restarts << " restarts";
        }
#endif
    }

    /// Loads a new image into some memory through a window, and knows what that does to its cells.
    void Load() {
        const std::size_t index = m_Random() % m_Memories.size();
        CMemoryModel& model = m_Memories[index]->m_Model;
        const auto width = static_cast<int>(model.m_Shape.m_ByteBitWidth);
        ObjectFile::CObjectFile image;
        const std::string file = m_File + std::to_string(m_Loads++); // a name is read once
        if (width == 8 && m_Random() % 2 == 0) {
            std::filesystem::copy_file(MARLUNE_TEST_DATA "/elf/gnu.elf", file);
            image.LoadFile(file);
        } else {
            AddRandomSections(image, m_Random, width, 1);
            ASSERT_TRUE(image.SaveFile(file));
        }
        const CLoadWindow window = RandomWindow(m_Random);
        EntryPoint(marlune_dpi_memory_init, "marlune_dpi_memory_init")(
            (m_Names[index] + ".RAM").c_str(), file.c_str(), "ram", window.m_CellBase, window.m_LowAddress,
            window.m_HighAddress, window.m_Phase, window.m_Stride);
        for (const auto& [cell, bits] :
             ExpectedLoad(image, "ram", window, model.m_Shape.m_ByteBitWidth, model.m_Shape.m_Size, false).m_Cells) {
            model.SetCell(cell, bits);
        }
        ASSERT_TRUE(m_Simulator.TakeLog().empty());
        std::remove(file.c_str());
    }

    void Access() {
        const std::size_t index = m_Random() % m_Memories.size();
        CMemoryModel& model = m_Memories[index]->m_Model;
        const std::size_t width = model.m_Shape.m_ByteBitWidth;
        const auto address = static_cast<unsigned>(m_Random() % 3 == 0 ? m_Random() : m_Random() % 40);
        const bool inside = address < model.m_Shape.m_Size;
        if (m_Random() % 2 == 0) {
            std::string letters;
            for (std::size_t i = 0; i < width; ++i) {
                letters += "01zx"[m_Random() % 4];
            }
            DpiWrite(m_Names[index], address, letters);
            if (inside) {
                for (char& letter : letters) {
                    letter = letter == '1' ? '1' : '0';
                }
                model.SetCell(address, letters);
            } else {
                model.Complain(address, "Not writing anything.");
            }
        } else {
            const std::string letters = DpiRead(m_Names[index], address, std::string(width, '0'));
            if (!inside) {
                model.Complain(address, "Returning 0.");
            }
            ASSERT_EQ(letters, inside ? model.Cell(address).substr(1024 - width) : std::string(width, '0'));
        }
        ASSERT_EQ(m_Simulator.TakeTranscript(), std::exchange(model.m_Transcript, ""));
    }

    /// Calls that fail leave everything as it was.
    void Fail() {
        switch (m_Random() % 4) {
        case 0:
            m_Simulator.Elaborate(MemoryInit(), "/tb/u0.mem", m_Random() % 2 == 0 ? "0 8" : "0 0 16", {"CLK"}, "u0.");
            break;
        case 1:
            DpiRead("tb_none", 0, "0000");
            break;
        case 2:
            EntryPoint(marlune_dpi_memory_init, "marlune_dpi_memory_init")(m_Names[0].c_str(), "/no/such/file", "ram",
                                                                           0, 0, 9, 0, 1);
            break;
        default:
            EntryPoint(marlune_dpi_memory_write, "marlune_dpi_memory_write")(m_Names[0].c_str(), 0, nullptr);
        }
        const std::vector<std::string> log = m_Simulator.TakeLog();
        ASSERT_EQ(log.size(), 3U);
        ASSERT_EQ(log.back(), "fatal");
    }

    std::mt19937 m_Random;
    CSimulator m_Simulator;
    std::vector<std::unique_ptr<CTestedMemory>> m_Memories;
    std::vector<std::string> m_Names; // as a test bench knows them
    const std::string m_File = testing::TempDir() + "soak" + std::to_string(getpid()) + ".obj";
    std::size_t m_Operations = 0;
    std::size_t m_Restarts = 0;
    std::size_t m_Loads = 0;
    std::size_t m_ResidentAtFirst = 0; // KiB, after WARM_UP restarts
};

TEST(Soak, AgreesWithTheModels) {
    CSoak().Run();
}

} // namespace

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    if (argc > 1) {
        g_Seconds = std::atoi(argv[1]);
    }
    if (argc > 2) {
        g_Seed = static_cast<unsigned>(std::strtoul(argv[2], nullptr, 10));
    }
    return RUN_ALL_TESTS();
}
