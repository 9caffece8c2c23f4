// What it costs to load an ELF executable into a memory, against reading the file and storing its bytes by hand, and
// how the cost grows with the file.
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <exception>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include <elf.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include "bench/ratios.h"
#include "objectfile/objectfile.h"
#include "src/flimemory/loadmemory.h"
#include "src/flimemory/storage.h"
#include "src/flimemory/zeroedpages.h"

namespace {

using marlune::foreign::fli::CStorage;
using ObjectFile::CObjectFile;

constexpr std::uint32_t LAUS = 16U << 20U; // of 8 bits
constexpr const char* BIG_FILE = "import_bench_big.elf";
constexpr const char* LITTLE_FILE = "import_bench_little.elf";
constexpr std::uint64_t TABLE_SIZE = 14;

template <typename T>
void Put(std::string& bytes, const T& record) {
    bytes.append(reinterpret_cast<const char*>(&record), sizeof record);
}

/// An executable: the address space "ram" of 8-bit LAUs, `sections` data sections of `bytes` each, one after the
/// other in the file and in memory, and `symbols` symbols and relocations that go round them.
void SaveElf(const std::string& path, bool bigEndian, unsigned sections, unsigned bytes, unsigned symbols) {
    std::string contents("\1\0ram\0\0\0\x20\0\x08\0", 12);
    Put(contents, static_cast<std::uint16_t>(bigEndian));
    std::uint32_t random = 1;
    for (std::uint64_t i = 0; i < std::uint64_t{sections} * bytes; ++i) {
        random = random * 1664525 + 1013904223;
        contents += static_cast<char>(random >> 24U);
    }
    std::vector<Elf64_Shdr> headers(2);
    std::string names = '\0' + std::string(".marlune_as") + '\0';
    headers[1] = {1, SHT_LOPROC, 0, 0, sizeof(Elf64_Ehdr), TABLE_SIZE, 0, 0, 1, 0};
    std::string relocations;
    const auto add = [&](const std::string& name, std::uint32_t type, std::uint64_t flags, std::uint64_t address,
                         std::uint64_t offset, std::uint64_t size) {
        headers.push_back({static_cast<std::uint32_t>(names.size()), type, flags, address, sizeof(Elf64_Ehdr) + offset,
                           size, 0, 0, 1, sizeof(Elf64_Sym)});
        names += name + '\0';
    };
    for (std::uint64_t i = 0; i < sections; ++i) {
        add(".data" + std::to_string(i), SHT_PROGBITS, SHF_WRITE | SHF_ALLOC, i * bytes, TABLE_SIZE + i * bytes, bytes);
    }
    std::string table(sizeof(Elf64_Sym), '\0');
    std::string strings(1, '\0');
    for (unsigned i = 0; i < symbols; ++i) {
        const auto section = static_cast<std::uint16_t>(2 + i % sections);
        Put(table, Elf64_Sym{static_cast<std::uint32_t>(strings.size()), ELF64_ST_INFO(STB_GLOBAL, STT_OBJECT), 0,
                             section, headers[section].sh_addr, 4});
        Put(relocations, Elf64_Rela{0, std::uint64_t{i + 1} << 32 | 2, 3});
        strings += "symbol_" + std::to_string(i) + '\0';
    }
    const auto addBlock = [&](const std::string& name, std::uint32_t type, const std::string& block) {
        add(name, type, 0, 0, contents.size(), block.size());
        contents += block;
    };
    addBlock(".symtab", SHT_SYMTAB, table);
    addBlock(".strtab", SHT_STRTAB, strings);
    addBlock(".rela.data0", SHT_RELA, relocations);
    add(".shstrtab", SHT_STRTAB, 0, 0, contents.size(), names.size() + 10);
    contents += names;
    Elf64_Ehdr header{};
    std::memcpy(header.e_ident, ELFMAG, SELFMAG);
    header.e_ident[EI_CLASS] = ELFCLASS64;
    header.e_ident[EI_DATA] = ELFDATA2LSB;
    header.e_type = ET_EXEC;
    header.e_machine = 192;
    header.e_shoff = sizeof header + contents.size();
    header.e_shentsize = sizeof(Elf64_Shdr);
    header.e_shnum = static_cast<std::uint16_t>(headers.size());
    header.e_shstrndx = static_cast<std::uint16_t>(headers.size() - 1);
    std::FILE* const file = std::fopen(path.c_str(), "wb");
    std::fwrite(&header, sizeof header, 1, file);
    std::fwrite(contents.data(), 1, contents.size(), file);
    std::fwrite(headers.data(), sizeof headers[0], headers.size(), file);
    std::fclose(file);
}

void Load(CStorage& storage, const char* path) {
    CObjectFile image;
    image.LoadFile(path);
    marlune::foreign::LoadMemory(storage, image, "ram", 0, 0, 0xFFFFFFFF, 0, 1, false);
}

void BM_LoadElf(benchmark::State& state) {
    for ([[maybe_unused]] auto _ : state) {
        CStorage storage("mem", 8, LAUS);
        Load(storage, state.range(0) != 0 ? BIG_FILE : LITTLE_FILE);
    }
}
BENCHMARK(BM_LoadElf)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

/// The floor: reads the file whole and stores the bytes of its one data section.
void BM_LoadByHand(benchmark::State& state) {
    for ([[maybe_unused]] auto _ : state) {
        auto cells = marlune::foreign::fli::MakeZeroedArray<std::uint64_t>(LAUS);
        std::FILE* const file = std::fopen(BIG_FILE, "rb");
        std::fseek(file, 0, SEEK_END);
        std::vector<unsigned char> bytes(static_cast<std::size_t>(std::ftell(file)));
        std::rewind(file);
        const std::size_t got = std::fread(bytes.data(), 1, bytes.size(), file);
        std::fclose(file);
        for (std::size_t i = 0; i < LAUS && i < got; ++i) {
            cells[i] = bytes[i + sizeof(Elf64_Ehdr) + TABLE_SIZE];
        }
        benchmark::ClobberMemory();
    }
}
BENCHMARK(BM_LoadByHand)->Unit(benchmark::kMillisecond);

/// Arguments: sections of 64 bytes, symbols (and relocations).
void BM_Import(benchmark::State& state) {
    const std::string path = "import_bench_symbols.elf";
    SaveElf(path, true, static_cast<unsigned>(state.range(0)), 64, static_cast<unsigned>(state.range(1)));
    for ([[maybe_unused]] auto _ : state) {
        CObjectFile image;
        image.LoadFile(path);
    }
    std::remove(path.c_str());
}
BENCHMARK(BM_Import)
    ->Args({1, 30000})
    ->Args({1, 100000})
    ->Args({1, 300000})
    ->Args({1000, 100000})
    ->Args({1000, 1})
    ->Args({10000, 1})
    ->Unit(benchmark::kMillisecond);

/// What as many symbols and relocations cost at least: records of their own, and the names in a hash table.
void BM_RecordsByHand(benchmark::State& state) {
    struct CRecord {
        std::string m_Name;
        Elf64_Sym m_Symbol;
    };
    for ([[maybe_unused]] auto _ : state) {
        std::vector<std::unique_ptr<CRecord>> symbols;
        std::vector<std::unique_ptr<Elf64_Rela>> relocations;
        std::unordered_map<std::string_view, CRecord*> names;
        for (std::int64_t i = 0; i < state.range(0); ++i) {
            symbols.push_back(std::make_unique<CRecord>(CRecord{"symbol_" + std::to_string(i), {}}));
            names.emplace(symbols.back()->m_Name, symbols.back().get());
        }
        for (std::int64_t i = 0; i < state.range(0); ++i) {
            relocations.push_back(std::make_unique<Elf64_Rela>());
        }
        benchmark::DoNotOptimize(names);
        benchmark::DoNotOptimize(relocations);
    }
}
BENCHMARK(BM_RecordsByHand)->Arg(30000)->Arg(300000)->Unit(benchmark::kMillisecond);

/// Peak memory of a process of its own that loads the file, in bytes; without a path that of its cells alone.
double PeakMemory(const char* path) {
    const pid_t child = fork();
    if (child == 0) {
        CStorage storage("mem", 8, LAUS);
        for (std::uint32_t i = 0; i < LAUS; ++i) {
            storage.m_Words64[i] = i;
        }
        if (path != nullptr) {
            Load(storage, path);
        }
        _exit(0);
    }
    rusage usage{};
    wait4(child, nullptr, 0, &usage);
    return 1024.0 * static_cast<double>(usage.ru_maxrss);
}

} // namespace

int main(int argc, char** argv) try {
    if (fork() == 0) { // leaves this process small
        SaveElf(BIG_FILE, true, 1, LAUS, 0);
        SaveElf(LITTLE_FILE, false, 1, LAUS, 0);
        _exit(0);
    }
    wait(nullptr);
    const double beyondCells = PeakMemory(BIG_FILE) - PeakMemory(nullptr);
    const int status = RunAndCompare(
        argc, argv,
        {{"load of a 16 MiB ELF file, big-endian / by hand", "BM_LoadElf/1", "", "BM_LoadByHand", 1.5},
         {"load of a 16 MiB ELF file, little-endian / by hand", "BM_LoadElf/0", "", "BM_LoadByHand", 1.5},
         {"30000 symbols and relocations / records by hand", "BM_Import/1/30000", "", "BM_RecordsByHand/30000", 2.5},
         {"300000 symbols and relocations / records by hand", "BM_Import/1/300000", "", "BM_RecordsByHand/300000", 2.5},
         {"100000 symbols and relocations in 1000 sections / in 1", "BM_Import/1000/100000", "", "BM_Import/1/100000",
          1.5},
         {"10000 sections / 1000", "BM_Import/10000/1", "", "BM_Import/1000/1", 12}});
    std::printf("%-72s %8.2f %8.2f\n", "peak memory beyond the cells / file", beyondCells / LAUS, 2.5);
    std::remove(BIG_FILE);
    std::remove(LITTLE_FILE);
    return status;
} catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
}
