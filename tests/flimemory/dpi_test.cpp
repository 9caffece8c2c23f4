// The three DPI functions, through the shared library.
#include <cstdio>
#include <fstream>

#include <gtest/gtest.h>
#include <unistd.h>

#include "objectfile/objectfile.h"
#include "tests/flimemory/logictext.h"

namespace {

using ObjectFile::CObjectFile;
using ObjectFile::CSection;

class CDpi : public testing::Test {
protected:
    CDpi() {
        m_Simulator.AddSignal("CLK", 0);
        Elaborate("/tb/core[0]/mem", "0 8 16");
        Elaborate("/tb/wide", "0 100 4");
    }
    ~CDpi() override {
        m_Simulator.Quit();
        std::remove(m_File.c_str());
    }

    void Elaborate(const std::string& path, const std::string& parameters) {
        m_Simulator.Elaborate(MemoryInit(), path, parameters, {"CLK"});
        m_Simulator.TakeLog();
    }

    /// Writes a program image with these LAUs of 8 bits from address 0 on.
    void SaveImage(const std::string& bits) {
        CObjectFile image(8, 1, ObjectFile::BO_BIG, "ram");
        CSection& section = *image.CreateSection(CSection::TYPE_DATA, ".data");
        section.SetMemoryByteAddressIsAbsolute(true);
        section.AddData(bits.c_str());
        image.SaveFile(m_File);
    }

    void Init(const char* name, const char* file, const char* space = "ram", unsigned stride = 1) {
        EntryPoint(marlune_dpi_memory_init, "marlune_dpi_memory_init")(name, file, space, 0, 0, 15, 0, stride);
    }
    static std::string Read(const std::string& name, unsigned address) {
        return DpiRead(name, address, std::string(8, 'x'));
    }

    static constexpr const char* MEMORY = "tb_core_0__mem";

    CSimulator m_Simulator;
    const std::string m_File = testing::TempDir() + "dpi_test" + std::to_string(getpid()) + ".obj";
};

TEST_F(CDpi, LeavesBitsAboveTheWidthAlone) {
    DpiWrite(MEMORY, 3, "1zx01101");
    EXPECT_EQ(DpiRead(MEMORY, 3, "xxxxxxxxxxxx"), "xxxx10001101"); // the bits above the width stay
    DpiWrite(MEMORY, 3, "111100000001");                           // and are not looked at
    EXPECT_EQ(Read(MEMORY, 3), "00000001");
}

TEST_F(CDpi, ReadsAFileOnceUntilRestart) {
    SaveImage("00000111");
    Init(MEMORY, m_File.c_str());
    std::remove(m_File.c_str());
    DpiWrite(MEMORY, 0, "11111111");
    Init(MEMORY, m_File.c_str());
    EXPECT_EQ(Read(MEMORY, 0), "00000111");
    EXPECT_TRUE(m_Simulator.TakeLog().empty());

    m_Simulator.Restart();
    Read(MEMORY, 0);
    EXPECT_EQ(m_Simulator.TakeLog(), Failure("General error: Cannot find memory object with name 'tb_core_0__mem'."));
    m_Simulator.m_Now = 0;
    Elaborate("/tb/core[0]/mem", "0 8 16");
    EXPECT_EQ(Read(MEMORY, 0), "00000000");
    Init(MEMORY, m_File.c_str());
    EXPECT_EQ(m_Simulator.TakeLog(), Failure("File '" + m_File + "' could not be opened."));
    SaveImage("00000101"); // a load that failed is not remembered
    Init(MEMORY, m_File.c_str());
    EXPECT_EQ(Read(MEMORY, 0), "00000101");
}

TEST_F(CDpi, LoadsElfFiles) {
    Elaborate("/tb/elf", "0 33 2");
    Init("tb_elf", MARLUNE_TEST_DATA "/elf/everything.elf", "wide");
    EXPECT_EQ(DpiRead("tb_elf", 0, std::string(33, 'x')),
              "000100000011101110110111101101100"); // " wol", from "low bits"
}

TEST_F(CDpi, ReportsEachErrorAndGoesOn) {
    std::ofstream(m_File) << "no object file\n";
    testing::internal::CaptureStderr();
    Init(MEMORY, m_File.c_str());
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "Error: Object file " + m_File + " contains errors and could not be loaded.\n");
    EXPECT_EQ(m_Simulator.TakeLog(), Failure("std::exception"));
    SaveImage("00000111");
    const char* const file = m_File.c_str();
    const struct {
        const char* m_Name;
        const char* m_File;
        unsigned m_Stride;
        std::string m_Error;
    } cases[] = {
        {"tb.wide", file, 1,
         "LAU mismatch: memory 'wide' has different LAU bitwidth (100) than data stored in object file '" + m_File +
             "' (8)."},
        {MEMORY, file, 0, "Stride must be greater than zero."},
        {"/tb/core[0]/mem", file, 1, "Cannot find memory object with name '_tb_core_0__mem'."},
        {"tb/core[0]/mem/the_RAM", file, 1, "Cannot find memory object with name 'tb_core_0__mem_the'."},
        {"tb.RAM.mem.RAM", file, 1, "Cannot find memory object with name 'tb_RAM_mem'."}, // the last one counts
        {"RAM0", file, 1, "Cannot find memory object with name 'RAM0'."}, // nothing before "RAM": taken whole
        {nullptr, file, 1, "Memory name is a null pointer."},
        {MEMORY, nullptr, 1, "File name is a null pointer."},
    };
    for (const auto& row : cases) {
        Init(row.m_Name, row.m_File, "ram", row.m_Stride);
        EXPECT_EQ(m_Simulator.TakeLog(), Failure("General error: " + row.m_Error));
    }
    EntryPoint(marlune_dpi_memory_read, "marlune_dpi_memory_read")(MEMORY, 0, nullptr);
    EXPECT_EQ(m_Simulator.TakeLog(), Failure("General error: Data vector is a null pointer."));
    EntryPoint(marlune_dpi_memory_write, "marlune_dpi_memory_write")(nullptr, 0, nullptr);
    EXPECT_EQ(m_Simulator.TakeLog(), Failure("General error: Memory name is a null pointer."));
    Init(MEMORY, m_File.c_str(), nullptr); // an address space without a name: nothing of the image
    EXPECT_EQ(Read(MEMORY, 0), "00000000");
    Init("tb/core[0]/mem.RAM_3", m_File.c_str());
    EXPECT_EQ(Read(MEMORY, 0), "00000111");
    EXPECT_TRUE(m_Simulator.TakeLog().empty());
}

TEST_F(CDpi, OneNormalisedNameIsOneEntry) {
    Elaborate("/tb/core(0)/mem", "0 8 4"); // takes the entry over, and takes it away when it goes
    DpiWrite(MEMORY, 9, "11111111");
    EXPECT_NE(m_Simulator.TakeTranscript().find("'tb/core(0)/mem'"), std::string::npos);
    const auto [clean, instance] = m_Simulator.m_QuitCallbacks.front(); // of the instance that came first
    m_Simulator.m_QuitCallbacks.erase(m_Simulator.m_QuitCallbacks.begin());
    clean(instance);
    Read(MEMORY, 0);
    EXPECT_EQ(m_Simulator.TakeLog(), Failure("General error: Cannot find memory object with name 'tb_core_0__mem'."));
}

} // namespace
