// What a clock edge costs beyond the simulator's own calls, in units of the bare conversion of the same values; what an
// elaboration costs; what a sparse cell costs.
#include <malloc.h>

#include <algorithm>
#include <fstream>
#include <memory>
#include <random>
#include <unistd.h>

#include "bench/flimemory/allocations.h"
#include "bench/flimemory/stubsimulator.h"
#include "bench/ratios.h"
#include "src/flimemory/logicelements.h"
#include "src/flimemory/storage.h"

namespace {

using marlune::foreign::fli::CStorage;

/// A memory with read and write ports, random values on all of them.
struct CBench {
    CBench(bool synchronous, int dataBits, int portPairs) {
        std::vector<CStubInstance::CPort> ports = {{"CLK", 0}};
        for (int i = 0; i < portPairs; ++i) {
            const std::string prefix = "port" + std::to_string(i);
            for (const auto& [role, length] : std::initializer_list<std::pair<const char*, int>>{
                     {"_Q0", dataBits}, {"_RA0", 32}, {"_RE0", 0}, {"_D0", dataBits}, {"_WA0", 32}, {"_WE0", 0}}) {
                m_Names.push_back(prefix + role);
                ports.push_back({nullptr, length});
            }
        }
        for (std::size_t i = 1; i < ports.size(); ++i) {
            ports[i].m_Name = m_Names[i - 1].c_str();
        }
        m_Instance = std::make_unique<CStubInstance>(
            "/tb/mem", std::string(synchronous ? "1 " : "0 ") + std::to_string(dataBits) + " 0x10000", ports);
        std::mt19937 random(6);
        for (mtiSignalIdTag& signal : m_Instance->m_Signals) {
            const bool isAddress = signal.m_Name.find("A0") != std::string::npos;
            for (std::size_t i = isAddress ? 16 : 0; i < signal.m_Value.size(); ++i) {
                signal.m_Value[i] = signal.m_Type.m_Length == 0 ? 3 : 2 + random() % 2;
            }
        }
    }

    /// The signals that an edge drives, or those that it reads, CLK first.
    std::vector<mtiSignalIdTag*> Signals(bool driven) {
        std::vector<mtiSignalIdTag*> signals;
        for (mtiSignalIdTag& signal : m_Instance->m_Signals) {
            const bool isData = signal.m_Name.find("_Q0") != std::string::npos;
            if (isData == driven && signal.m_Name.find("_RE0") == std::string::npos) {
                signals.push_back(&signal);
            }
        }
        return signals;
    }

    std::vector<std::string> m_Names;
    std::unique_ptr<CStubInstance> m_Instance;
};

void BM_Edge(benchmark::State& state) {
    const CBench bench(state.range(0) != 0, static_cast<int>(state.range(1)), static_cast<int>(state.range(2)));
    bench.m_Instance->Clock();
    bench.m_Instance->Clock();
    bench.m_Instance->Clock();
    const std::size_t before = g_Allocations;
    std::size_t edges = 0;
    for ([[maybe_unused]] auto _ : state) {
        bench.m_Instance->Clock();
        ++edges;
    }
    state.counters["allocations per edge"] = static_cast<double>(g_Allocations - before) / static_cast<double>(edges);
}

/// The calls that the edge above makes into the simulator.
void BM_Calls(benchmark::State& state) {
    CBench bench(state.range(0) != 0, static_cast<int>(state.range(1)), static_cast<int>(state.range(2)));
    const auto callsOf = [](mtiSignalIdTag& signal) {
        const mtiTypeIdT type = mti_GetSignalType(&signal);
        if (mti_GetTypeKind(type) == MTI_TYPE_ARRAY) {
            benchmark::DoNotOptimize(mti_GetTypeKind(mti_GetArrayElementType(type)));
            benchmark::DoNotOptimize(mti_TickLength(type));
            mti_VsimFree(mti_GetArraySignalValue(&signal, nullptr));
        } else {
            benchmark::DoNotOptimize(mti_GetSignalValue(&signal));
        }
    };
    const auto read = bench.Signals(false);
    const auto driven = bench.Signals(true);
    for ([[maybe_unused]] auto _ : state) {
        benchmark::DoNotOptimize(mti_Now());
        callsOf(*read.front()); // CLK at 0
        benchmark::DoNotOptimize(mti_Now());
        for (mtiSignalIdTag* signal : read) {
            callsOf(*signal);
        }
        for (mtiSignalIdTag* signal : driven) {
            callsOf(*signal);
            mti_ScheduleDriver(reinterpret_cast<mtiDriverIdT>(signal), 0, 0, MTI_INERTIAL);
        }
    }
}

/// The same values converted into and out of buffers that are there already, eight elements at a time: the fastest way
/// that we know.
void BM_Bare(benchmark::State& state) {
    CBench bench(state.range(0) != 0, static_cast<int>(state.range(1)), static_cast<int>(state.range(2)));
    const auto read = bench.Signals(false);
    const auto driven = bench.Signals(true);
    constexpr std::size_t NUMBER_BITS = 64;
    std::uint64_t numbers[16] = {};
    for ([[maybe_unused]] auto _ : state) {
        for (const mtiSignalIdTag* signal : read) {
            for (std::size_t left = signal->m_Value.size(), i = 0; left > 0; ++i) {
                const std::size_t taken = std::min(left, NUMBER_BITS);
                left -= taken;
                numbers[i] = marlune::fli::NumberOfElements(signal->m_Value.data() + left, static_cast<int>(taken));
            }
            benchmark::DoNotOptimize(numbers);
        }
        for (mtiSignalIdTag* signal : driven) {
            for (std::size_t left = signal->m_Value.size(), i = 0; left > 0; ++i) {
                const std::size_t written = std::min(left, NUMBER_BITS);
                left -= written;
                marlune::fli::ElementsOfNumber(numbers[i], signal->m_Value.data() + left, static_cast<int>(written));
            }
            benchmark::ClobberMemory();
        }
    }
}

/// Edge time over the width of the data, and over the number of port pairs.
BENCHMARK(BM_Edge)->ArgsProduct({{0}, {8, 16, 32, 64, 128, 256, 512, 1024}, {1}})->Name("BM_EdgeWidth");
BENCHMARK(BM_Edge)->ArgsProduct({{0}, {32}, {1, 2, 4, 8, 16}})->Name("BM_EdgePorts");

#define MARLUNE_SHAPES                                                                                                 \
    Args({0, 32, 1})->Args({1, 32, 1})->Args({0, 128, 1})->Args({1, 128, 1})->Args({0, 32, 8})->Args({1, 32, 8})
BENCHMARK(BM_Edge)->MARLUNE_SHAPES;
BENCHMARK(BM_Calls)->MARLUNE_SHAPES;
BENCHMARK(BM_Bare)->MARLUNE_SHAPES;

void BM_Elaborate(benchmark::State& state) {
    std::vector<std::unique_ptr<CStubInstance>> instances;
    for ([[maybe_unused]] auto _ : state) {
        for (int i = 0; i < state.range(0); ++i) {
            instances.push_back(std::make_unique<CStubInstance>(
                "/tb/core[" + std::to_string(i) + "]/mem", "0 32 1024",
                std::vector<CStubInstance::CPort>{{"CLK", 0}, {"a_Q0", 32}, {"a_RA0", 10}, {"a_RE0", 0}}));
        }
        state.PauseTiming();
        instances.clear();
        state.ResumeTiming();
    }
}
BENCHMARK(BM_Elaborate)->Arg(100)->Arg(10000)->Unit(benchmark::kMillisecond);

std::size_t ResidentBytes() {
    std::size_t pages = 0;
    std::ifstream("/proc/self/statm") >> pages >> pages;
    return pages * static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
}

/// A gigabyte of cells; the argument is the byte's width in bits.
void BM_ElaborateGigabyte(benchmark::State& state) {
    const std::string parameters = state.range(0) <= 64 ? "0 64 0x8000000" : "0 128 0x800000";
    const std::size_t before = ResidentBytes();
    std::size_t grown = 0;
    for ([[maybe_unused]] auto _ : state) {
        const CStubInstance instance("/tb/mem", parameters, {{"CLK", 0}});
        grown = std::max(grown, ResidentBytes() - before);
    }
    state.counters["resident KiB"] = static_cast<double>(grown) / 1024;
}
BENCHMARK(BM_ElaborateGigabyte)->Arg(64)->Arg(128)->Unit(benchmark::kMicrosecond);

/// Accesses, half of them writes, that run through a window of 4 MiB of 64-bit cells; arguments: sparse? at random?
void BM_Access(benchmark::State& state) {
    constexpr std::uint32_t WINDOW = 1U << 19U;
    CStorage storage("mem", 32, state.range(0) != 0 ? 0xFFFFFFFF : WINDOW);
    for (std::uint32_t address = 0; address < WINDOW; ++address) {
        storage.Write(address, CStorage::CWord(1));
    }
    const std::uint32_t factor = state.range(1) != 0 ? 1664525 : 1; // of a linear congruential generator
    std::uint32_t address = 0;
    for ([[maybe_unused]] auto _ : state) {
        address = (address * factor + 1) % WINDOW;
        CStorage::CWord word = storage.Read(address);
        word.SetLimb(0, address);
        storage.Write(address, word);
    }
}
BENCHMARK(BM_Access)->Args({0, 0})->Args({1, 0})->Args({0, 1})->Args({1, 1});

/// Bytes for a cell of up to 64 significant bits; argument: whether they lie scattered over the whole range.
void BM_SparseCellBytes(benchmark::State& state) {
    constexpr int CELLS = 1 << 20;
    std::mt19937 random(7);
    std::size_t bytes = 0;
    std::size_t cells = 1;
    for ([[maybe_unused]] auto _ : state) {
        const std::size_t before = mallinfo2().uordblks + mallinfo2().hblkhd;
        CStorage storage("mem", 32, 0xFFFFFFFF);
        for (int i = 0; i < CELLS; ++i) {
            storage.Write(state.range(0) != 0 ? static_cast<std::uint32_t>(random()) : static_cast<std::uint32_t>(i),
                          CStorage::CWord(i));
        }
        bytes = mallinfo2().uordblks + mallinfo2().hblkhd - before;
        cells = storage.m_Contents.size();
    }
    state.counters["bytes per cell"] = static_cast<double>(bytes) / static_cast<double>(cells);
}
BENCHMARK(BM_SparseCellBytes)->Arg(0)->Arg(1)->Iterations(1);

} // namespace

int main(int argc, char** argv) {
    std::vector<CRatio> ratios;
    for (const auto& [arguments, what, aim] : std::initializer_list<std::tuple<std::string, std::string, double>>{
             {"0/32/1", "32 bits, one read and one write port", 3},
             {"1/32/1", "32 bits, one read and one write port, synchronous", 3},
             {"0/128/1", "128 bits, one read and one write port", 4},
             {"1/128/1", "128 bits, one read and one write port, synchronous", 4},
             {"0/32/8", "32 bits, eight read and eight write ports", 4},
             {"1/32/8", "32 bits, eight read and eight write ports, synchronous", 4}}) {
        ratios.push_back({"edge / bare conversion: " + what, "BM_Edge/" + arguments, "BM_Calls/" + arguments,
                          "BM_Bare/" + arguments, aim});
    }
    ratios.push_back(
        {"elaboration: 10000 instances / 100 instances", "BM_Elaborate/10000", "", "BM_Elaborate/100", 200});
    ratios.push_back({"access through a window: sparse / dense", "BM_Access/1/0", "", "BM_Access/0/0", 2});
    ratios.push_back({"access at random in a window: sparse / dense", "BM_Access/1/1", "", "BM_Access/0/1", 2});
    return RunAndCompare(argc, argv, ratios);
}
