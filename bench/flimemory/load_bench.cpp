// What it costs to load a program image into a memory and to reach a word of it from the test bench, against what one
// would write by hand.
#include <cstdio>
#include <cstring>
#include <fstream>
#include <memory>
#include <unordered_map>

#include "bench/flimemory/allocations.h"
#include "bench/flimemory/stubsimulator.h"
#include "bench/ratios.h"
#include "objectfile/objectfile.h"
#include "src/flimemory/flimemory.h"
#include "src/flimemory/loadmemory.h"
#include "src/flimemory/storage.h"
#include "src/flimemory/zeroedpages.h"
#include "svdpi.h"

namespace {

using marlune::foreign::fli::CStorage;
using ObjectFile::CObjectFile;
using ObjectFile::CSection;

constexpr std::uint32_t LAUS = 16U << 20U; // of 8 bits
constexpr const char* FILE_NAME = "load_bench.obj";
constexpr const char* SWEEP_FILE_NAME = "load_bench_sweep.obj";

/// 8-bit LAUs in words of 32 bits: 16 MiB of them make about 140 MB of text.
void SaveImage(const char* fileName, std::uint32_t laus) {
    CObjectFile image(32, 4, ObjectFile::BO_BIG, "ram");
    CSection& section = *image.CreateSection(CSection::TYPE_DATA, ".data");
    section.SetMemoryByteAddressIsAbsolute(true);
    std::string bytes(1U << 16U, '\0');
    std::uint32_t random = 1;
    for (std::uint32_t done = 0; done < laus; done += static_cast<std::uint32_t>(bytes.size())) {
        for (char& byte : bytes) {
            random = random * 1664525 + 1013904223;
            byte = static_cast<char>(random >> 24U);
        }
        section.AddBinaryData(bytes.data(), static_cast<unsigned>(bytes.size()));
    }
    image.SaveFile(fileName);
}

void Store(CStorage& storage, const CObjectFile& image, unsigned low = 0, unsigned high = 0xFFFFFFFF,
           unsigned stride = 1) {
    marlune::foreign::LoadMemory(storage, image, "ram", 0, low, high, 0, stride, false);
}

/// The floor: reads the file in pieces and packs the digits of its lines of 32 straight into the cells.
void LoadByHand(std::uint64_t* cells) {
    std::FILE* file = std::fopen(FILE_NAME, "rb");
    std::vector<char> buffer(1U << 20U);
    std::size_t kept = 0;
    std::size_t cell = 0;
    while (const std::size_t got = std::fread(buffer.data() + kept, 1, buffer.size() - kept, file)) {
        const char* line = buffer.data();
        const char* const end = buffer.data() + kept + got;
        while (const char* next =
                   static_cast<const char*>(std::memchr(line, '\n', static_cast<std::size_t>(end - line)))) {
            for (const char* lau = line; next - line == 32 && lau < next && cell < LAUS; lau += 8) {
                std::uint64_t digits = 0;
                std::memcpy(&digits, lau, 8);
                cells[cell++] = ((digits & 0x0101010101010101) * 0x8040201008040201) >> 56U;
            }
            line = next + 1;
        }
        kept = static_cast<std::size_t>(end - line);
        std::memmove(buffer.data(), line, kept);
    }
    std::fclose(file);
}

void BM_LoadFile(benchmark::State& state) {
    for ([[maybe_unused]] auto _ : state) {
        CStorage storage("mem", 8, state.range(0) != 0 ? 0xFFFFFFFF : LAUS);
        CObjectFile image;
        image.LoadFile(FILE_NAME);
        Store(storage, image);
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) * LAUS);
}
BENCHMARK(BM_LoadFile)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

/// Load time over size; argument: MiB of LAUs.
void BM_LoadSize(benchmark::State& state) {
    const auto laus = static_cast<std::uint32_t>(state.range(0)) << 20U;
    SaveImage(SWEEP_FILE_NAME, laus);
    for ([[maybe_unused]] auto _ : state) {
        CStorage storage("mem", 8, laus);
        CObjectFile image;
        image.LoadFile(SWEEP_FILE_NAME);
        Store(storage, image);
    }
    std::remove(SWEEP_FILE_NAME);
}
BENCHMARK(BM_LoadSize)->RangeMultiplier(2)->Range(1, 32)->Unit(benchmark::kMillisecond);

void BM_LoadByHand(benchmark::State& state) {
    for ([[maybe_unused]] auto _ : state) {
        auto cells = marlune::foreign::fli::MakeZeroedArray<std::uint64_t>(LAUS);
        LoadByHand(cells.get());
        benchmark::DoNotOptimize(cells[LAUS - 1]);
    }
}
BENCHMARK(BM_LoadByHand)->Unit(benchmark::kMillisecond);

/// From an image that is there already; argument: how many times fewer LAUs, by stride.
void BM_Store(benchmark::State& state) {
    CObjectFile image;
    image.LoadFile(FILE_NAME);
    for ([[maybe_unused]] auto _ : state) {
        CStorage storage("mem", 8, LAUS);
        Store(storage, image, 0, 0xFFFFFFFF, static_cast<unsigned>(state.range(0)));
    }
}
BENCHMARK(BM_Store)->Arg(1)->Arg(1024)->Unit(benchmark::kMicrosecond);

/// The last thousandth of the image.
void BM_StoreWindow(benchmark::State& state) {
    CObjectFile image;
    image.LoadFile(FILE_NAME);
    for ([[maybe_unused]] auto _ : state) {
        CStorage storage("mem", 8, LAUS);
        Store(storage, image, LAUS - LAUS / 1024);
    }
}
BENCHMARK(BM_StoreWindow)->Unit(benchmark::kMicrosecond);

void BM_BareStores(benchmark::State& state) {
    std::vector<unsigned char> bytes(LAUS, 0x5A);
    for ([[maybe_unused]] auto _ : state) {
        auto cells = marlune::foreign::fli::MakeZeroedArray<std::uint64_t>(LAUS);
        for (std::uint32_t i = 0; i < LAUS; ++i) {
            cells[i] = bytes[i];
        }
        benchmark::ClobberMemory();
    }
}
BENCHMARK(BM_BareStores)->Unit(benchmark::kMicrosecond);

/// The instances tb/core[0]/mem, tb/core[1]/mem, ...
std::vector<std::unique_ptr<CStubInstance>> Instances(std::int64_t count, int width) {
    std::vector<std::unique_ptr<CStubInstance>> instances;
    for (std::int64_t i = 0; i < count; ++i) {
        instances.push_back(std::make_unique<CStubInstance>("/tb/core[" + std::to_string(i) + "]/mem",
                                                            "0 " + std::to_string(width) + " 16",
                                                            std::vector<CStubInstance::CPort>{{"CLK", 0}}));
    }
    return instances;
}

std::vector<std::string> Names(std::int64_t count) {
    std::vector<std::string> names;
    for (std::int64_t i = 0; i < count; ++i) {
        names.push_back("tb_core_" + std::to_string(i * 7919 % count) + "__mem");
    }
    return names;
}

/// A write or a read; arguments: whether it is a write, width in bits, instances.
void BM_DpiAccess(benchmark::State& state) {
    const bool isWrite = state.range(0) != 0;
    const auto instances = Instances(state.range(2), static_cast<int>(state.range(1)));
    const auto names = Names(state.range(2));
    svLogicVecVal vector[32] = {};
    std::size_t turn = 0;
    std::size_t accesses = 0;
    marlune_dpi_memory_write(names[0].c_str(), 3, vector);
    const std::size_t before = g_Allocations;
    for ([[maybe_unused]] auto _ : state) {
        turn = turn + 1 < names.size() ? turn + 1 : 0;
        if (isWrite) {
            marlune_dpi_memory_write(names[turn].c_str(), 3, vector);
        } else {
            marlune_dpi_memory_read(names[turn].c_str(), 3, vector);
        }
        ++accesses;
    }
    state.counters["allocations per access"] =
        static_cast<double>(g_Allocations - before) / static_cast<double>(accesses);
}

#define MARLUNE_WIDTHS ArgsProduct({{0, 1}, {1, 8, 32, 64, 128, 1024}, {1}})
BENCHMARK(BM_DpiAccess)->MARLUNE_WIDTHS->Args({0, 1, 1000})->Args({1, 1, 1000});

/// What such an access cannot do without: looking the name up and a call for each bit.
void BM_LookUpAndCalls(benchmark::State& state) {
    const bool isWrite = state.range(0) != 0;
    const auto names = Names(state.range(2));
    std::unordered_map<std::string, int> index;
    for (const std::string& name : names) {
        index[name] = 1;
    }
    svLogicVecVal vector[32] = {};
    std::string key;
    for ([[maybe_unused]] auto _ : state) {
        key = names[0];
        benchmark::DoNotOptimize(index.find(key)->second);
        for (int bit = 0; bit < state.range(1); ++bit) {
            if (isWrite) {
                benchmark::DoNotOptimize(svGetBitselLogic(vector, bit));
            } else {
                svPutBitselLogic(vector, bit, static_cast<svLogic>(bit & 1));
            }
        }
    }
}
BENCHMARK(BM_LookUpAndCalls)->MARLUNE_WIDTHS;

} // namespace

int main(int argc, char** argv) {
    SaveImage(FILE_NAME, LAUS);
    std::vector<CRatio> ratios = {
        {"load of a 16 MiB text image / by hand", "BM_LoadFile/0", "", "BM_LoadByHand", 1.5},
        {"load into a sparse memory / dense", "BM_LoadFile/1", "", "BM_LoadFile/0", 2},
        {"second memory of an image / bare stores", "BM_Store/1", "", "BM_BareStores", 1.5},
        {"every 1024th LAU / all of them", "BM_Store/1024", "", "BM_Store/1", 0.05},
        {"window of 1/1024 / all", "BM_StoreWindow", "", "BM_Store/1", 0.05},
        {"DPI read of 1 bit: 1000 instances / one", "BM_DpiAccess/0/1/1000", "", "BM_DpiAccess/0/1/1", 3}};
    for (const char* width : {"1", "8", "32", "64", "128", "1024"}) {
        for (const auto& [way, name] : {std::pair("0/", "read"), std::pair("1/", "write")}) {
            const std::string arguments = std::string("/") + way + width + "/1";
            ratios.push_back({std::string("DPI ") + name + ", " + width + " bits / look-up and DPI calls",
                              "BM_DpiAccess" + arguments, "", "BM_LookUpAndCalls" + arguments, 1.3});
        }
    }
    const int status = RunAndCompare(argc, argv, ratios);
    std::remove(FILE_NAME);
    return status;
}
