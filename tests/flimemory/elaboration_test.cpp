// Which ports and parameters an instance takes, and what it asks of the simulator.
#include <fstream>

#include <gtest/gtest.h>

#include "src/flimemory/projectname.h"
#include "tests/flimemory/library.h"

namespace {

class CElaboration : public testing::Test {
protected:
    CElaboration() {
        for (const char* name :
             {"CLK",   "a_Q0",  "a_RA0", "a_RE0", "B_d0",  "B_wa0", "B_we0",  "c_Q0",    "c_D0",    "c_A0",
              "c_WE0", "c_CS0", "n_Q0",  "n_RA0", "xyz",   "Q0",    "z_x_Q0", "z_x_RA0", "z_x_RE0", "z_y_RA0",
              "mRA0",  "mQ0",   "mRE0",  "s_Q0",  "s_RE0", "s_RA0", "s_WA0",  "s_D0",    "s_WE0",   "s_CS0"}) {
            m_Simulator.AddSignal(name, 8);
        }
    }
    ~CElaboration() override { m_Simulator.Quit(); }

    std::vector<std::string> Elaborate(const std::string& parameters, const std::vector<std::string>& ports) {
        m_Simulator.Elaborate(MemoryInit(), "/top/mem", parameters, ports);
        return m_Simulator.TakeLog();
    }

    CSimulator m_Simulator;
};

const std::vector<std::string> NO_PORTS = {"process without name", "sensitize CLK", "quit callback",
                                           "restart callback"};

TEST_F(CElaboration, BuildsProcessAndDriversInOrder) {
    const std::vector<std::string> expected = {
        "process without name", "sensitize CLK",   "driver a_Q0",       "owner a_Q0",       "sensitize a_RA0",
        "driver z_x_Q0",        "owner z_x_Q0",    "sensitize z_x_RA0", "sensitize B_we0",  "sensitize B_wa0",
        "sensitize B_d0",       "driver c_Q0",     "owner c_Q0",        "sensitize c_D0",   "sensitize c_A0",
        "sensitize c_WE0",      "sensitize c_CS0", "quit callback",     "restart callback",
    };
    EXPECT_EQ(Elaborate("0 8 1024", {"z_x_RE0", "c_WE0", "c_A0", "c_CS0", "c_Q0", "c_D0", "CLK", "a_Q0", "a_RA0",
                                     "a_RE0", "B_we0", "B_wa0", "B_d0", "z_x_RA0", "z_x_Q0"}),
              expected);
    EXPECT_TRUE(m_Simulator.m_Lent.empty());
    for (const mtiDriverIdTag& driver : m_Simulator.m_Drivers) {
        EXPECT_EQ(driver.m_Owner, &m_Simulator.m_Processes.front());
    }
}

TEST_F(CElaboration, GroupsPortsByTheEndOfTheirNames) {
    // Incomplete groups and ports that play no part or are left open count for nothing.
    EXPECT_EQ(Elaborate("0 8 16", {"n_Q0", "n_RA0", "CLK", "xyz", "open_RE0", "x"}), NO_PORTS);
    // The last "_" ends the prefix.
    EXPECT_EQ(Elaborate("0 8 16", {"CLK", "z_x_Q0", "z_y_RA0", "z_x_RE0"}), NO_PORTS);
    // No "_" is needed before the role; the prefix is then empty.
    const std::vector<std::string> unprefixed = {
        "process without name", "sensitize CLK", "driver mQ0",      "owner mQ0",
        "sensitize mRA0",       "quit callback", "restart callback"};
    EXPECT_EQ(Elaborate("0 8 16", {"mQ0", "mRA0", "mRE0", "CLK"}), unprefixed);
    // An RA0 and a WA0 are A0s as well, of which the last in the list counts.
    const std::vector<std::string> shared = {
        "process without name", "sensitize CLK",   "driver s_Q0",     "owner s_Q0",
        "sensitize s_RA0",      "sensitize s_WE0", "sensitize s_WA0", "sensitize s_D0",
        "driver s_Q0",          "owner s_Q0",      "sensitize s_D0",  "sensitize s_RA0",
        "sensitize s_WE0",      "sensitize s_CS0", "quit callback",   "restart callback"};
    EXPECT_EQ(Elaborate("0 8 16", {"CLK", "s_Q0", "s_RE0", "s_WA0", "s_RA0", "s_D0", "s_WE0", "s_CS0"}), shared);
}

TEST_F(CElaboration, ReportsEachErrorOnceAndGoesOn) {
    const std::string count =
        "General error: At least 3 arguments are needed: <read_is_synchronous> <byte_bit_width> <size_in_bytes>";
    const std::string digit = "include/number_cast(261) error: Conversion of given number failed, invalid digit. ";
    struct {
        const char* m_Parameters;
        std::vector<std::string> m_Ports;
        std::string m_Text;
    } const cases[] = {
        {"", {"clk", "a_Q0"}, "General error: Cannot find CLK port."},
        {"", {"CLK"}, count},
        {"0 8", {"CLK"}, count},
        {"0 8 16 4", {"CLK"}, count},
        {"0 8\t16", {"CLK"}, count},
        {"0 0 16", {"CLK"}, "General error: Byte bit with must be greater than zero"},
        {"zz 0 16", {"CLK"}, digit + "'zz'"},
        {"0 8 0x", {"CLK"}, digit + "'0x'"},
        {"0 8 08", {"CLK"}, "include/number_cast(123) error: Conversion to integer type failed.  '08'"},
        {"0 8 16", {"CLK", "Q0"}, "basic_string::substr"},
    };
    for (const auto& [parameters, ports, text] : cases) {
        EXPECT_EQ(Elaborate(parameters, ports), Failure(text)) << parameters;
        EXPECT_EQ(Elaborate(" true  8 0X10 ", {"CLK"}), NO_PORTS);
    }
}

TEST_F(CElaboration, TakesMemoryOnlyWhenCellsAreTouched) {
    EXPECT_EQ(Elaborate("0 8 16", {"CLK"}), NO_PORTS); // loads the library, and the code that it runs
    const std::size_t before = ResidentKiB();
    EXPECT_EQ(Elaborate("0 64 0x8000000", {"CLK"}), NO_PORTS); // 1 GiB each
    EXPECT_EQ(Elaborate("0 128 0x800000", {"CLK"}), NO_PORTS);
    EXPECT_EQ(Elaborate("0 8 0xFFFFFFFF", {"CLK"}), NO_PORTS);
    EXPECT_LT(ResidentKiB() - before, 1024U);
}

TEST_F(CElaboration, RefusesASizeThatTheSystemCannotProvide) {
    int overcommit = 1;
    std::ifstream("/proc/sys/vm/overcommit_memory") >> overcommit;
    if (overcommit == 1) {
        GTEST_SKIP() << "this system promises memory that it does not have";
    }
    EXPECT_EQ(Elaborate("0 1024 0xFFFFFFFE", {"CLK"}),
              Failure("General error: Cannot allocate memory 'top/mem' of 4294967294 cells."));
    EXPECT_EQ(Elaborate("0 8 16", {"CLK"}), NO_PORTS);
}

TEST(ProjectName, ReplacesPunctuation) {
    EXPECT_EQ(marlune::FixProjectName("-=/*+%.:, ()[]{}><@#&\\"), std::string(22, '_'));
    EXPECT_EQ(marlune::FixProjectName("tb/u_mem.core[1]"), "tb_u_mem_core_1_");
    EXPECT_EQ(marlune::FixProjectName("aZ9_$;'\"!?^|~"), "aZ9_$;'\"!?^|~");
    std::string words = "ab ab- ab.ab xab ab1 ab";
    marlune::RewriteString(words, "ab", "<ab>", true);
    EXPECT_EQ(words, "<ab> ab- <ab>.<ab> xab ab1 <ab>");
}

} // namespace
