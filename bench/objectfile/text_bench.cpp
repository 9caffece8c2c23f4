// Reading and writing text images against plain passes over the same bytes, and how the time grows with the records.
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <memory>
#include <string>

#include <malloc.h>
#include <unistd.h>

#include "bench/ratios.h"
#include "objectfile/objectfile.h"

namespace {

using ObjectFile::CObjectFile;
using ObjectFile::CSection;

constexpr const char* IMAGE = "text_bench.vexon";
constexpr const char* OUTPUT = "text_bench.out";
constexpr int WORDS = 4 << 20; // of 32 bits: 16 MiB of 8-bit LAUs, about 140 MB of text

std::string RecordsFile(long count) {
    return "text_bench_" + std::to_string(count) + ".vexon";
}

std::string ReadWhole(const char* path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

void MakeImage() {
    CObjectFile image(32, 4, ObjectFile::BO_BIG, "ram");
    CSection& section = *image.CreateSection(CSection::TYPE_TEXT, ".text");
    std::uint32_t random = 1;
    for (int i = 0; i < WORDS; ++i) {
        random = random * 1664525 + 1013904223;
        section.AddData(ObjectFile::ConvUnsignToBin(random, 32).c_str());
    }
    image.SaveFile(IMAGE);
}

/// As many sections, symbols and relocations.
void MakeRecords(long count) {
    CObjectFile image(8, 1, ObjectFile::BO_BIG, "ram");
    ObjectFile::CSymbolTable& table = *image.CreateSymbolTable();
    for (long i = 0; i < count; ++i) {
        const std::string name = "name" + std::to_string(i);
        CSection& section = *image.CreateSection(CSection::TYPE_TEXT, name);
        section.AddData("00000001");
        auto symbol = std::make_unique<ObjectFile::CSymbol>(name, ObjectFile::CSymbol::TYPE_PUBLIC, &section);
        ObjectFile::CRelocation relocation;
        relocation.m_SizeInBytes = 1;
        relocation.m_Symbol = symbol.get();
        table.AddSymbol(std::move(symbol));
        section.AddRelocation(relocation);
    }
    image.SaveFile(RecordsFile(count));
}

double ResidentBytes() {
    long total = 0;
    long resident = 0;
    std::ifstream("/proc/self/statm") >> total >> resident;
    return static_cast<double>(resident) * static_cast<double>(sysconf(_SC_PAGESIZE));
}

void BM_Getline(benchmark::State& state) {
    for ([[maybe_unused]] auto _ : state) {
        std::ifstream file(IMAGE);
        std::size_t length = 0;
        for (std::string line; std::getline(file, line);) {
            length += line.size();
        }
        benchmark::DoNotOptimize(length);
    }
}

void BM_Load(benchmark::State& state) {
    for ([[maybe_unused]] auto _ : state) {
        malloc_trim(0); // what others freed must not hide what this one takes
        const double before = ResidentBytes();
        CObjectFile image;
        image.LoadFile(IMAGE);
        state.counters["resident/text"] = (ResidentBytes() - before) / (WORDS * 33.0);
    }
}

void BM_PlainWrite(benchmark::State& state) {
    const std::string text = ReadWhole(IMAGE);
    for ([[maybe_unused]] auto _ : state) {
        std::ofstream(OUTPUT, std::ios::binary) << text;
    }
}

void BM_Save(benchmark::State& state) {
    CObjectFile image;
    image.LoadFile(IMAGE);
    for ([[maybe_unused]] auto _ : state) {
        image.SaveFile(OUTPUT);
    }
}

void BM_LoadRecords(benchmark::State& state) {
    const std::string path = RecordsFile(state.range(0));
    for ([[maybe_unused]] auto _ : state) {
        CObjectFile image;
        image.LoadFile(path);
    }
}

void BM_SaveRecords(benchmark::State& state) {
    CObjectFile image;
    image.LoadFile(RecordsFile(state.range(0)));
    for ([[maybe_unused]] auto _ : state) {
        image.SaveFile(OUTPUT);
    }
}

BENCHMARK(BM_Getline)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Load)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_PlainWrite)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Save)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_LoadRecords)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_SaveRecords)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char** argv) {
    MakeImage();
    MakeRecords(10000);
    MakeRecords(100000);
    const int status = RunAndCompare(
        argc, argv,
        {{"reading a text image / one std::getline pass over it", "BM_Load", "", "BM_Getline", 3.0},
         {"writing a text image / writing its bytes with one ofstream", "BM_Save", "", "BM_PlainWrite", 3.0},
         {"reading 100000 of each record / reading 10000", "BM_LoadRecords/100000", "", "BM_LoadRecords/10000", 20.0},
         {"writing 100000 of each record / writing 10000", "BM_SaveRecords/100000", "", "BM_SaveRecords/10000", 20.0}});
    for (const std::string& path : {std::string(IMAGE), std::string(OUTPUT), RecordsFile(10000), RecordsFile(100000)}) {
        std::remove(path.c_str());
    }
    return status;
}
