// Bare arrays behind the calls of floor_memory.sv, and behind those of hdl/marlune_dpi.sv in place of the library: what
// the calls alone cost. For memories of up to 32 bits and one read and one write port. Images are $readmemh texts.
#include <algorithm>
#include <cctype>
#include <cstdint>
#include <deque>
#include <fstream>
#include <map>
#include <string>

namespace {

struct CFloor {
    unsigned m_AddressBits;
    unsigned m_DataBits;
    bool m_IsSynchronous;
    std::uint32_t m_Q;
    double m_RiseTime;
    std::uint64_t m_Inputs;
    std::uint32_t m_Cells[65536];
};

std::deque<CFloor> g_Floors;
std::map<std::string, CFloor*> g_Names;
std::uint32_t g_Turn = 0;
std::uint64_t g_Stamp = 0;

CFloor& FloorOf(void* memory) {
    return *static_cast<CFloor*>(memory);
}

/// Reads, then writes.
std::uint32_t Access(CFloor& floor, bool read, std::uint32_t readAddress, bool write, std::uint32_t writeAddress,
                     std::uint32_t data) {
    if (read) {
        floor.m_Q = floor.m_Cells[readAddress];
    }
    if (write) {
        floor.m_Cells[writeAddress] = data;
    }
    return floor.m_Q;
}

/// The inputs come, from the most significant bit on, as read, read address, write, write address, data.
void AccessPacked(CFloor& floor) {
    std::uint64_t inputs = floor.m_Inputs;
    const auto take = [&inputs](unsigned width) {
        const auto bits = static_cast<std::uint32_t>(inputs & ((std::uint64_t{1} << width) - 1));
        inputs >>= width;
        return bits;
    };
    const std::uint32_t data = take(floor.m_DataBits);
    const std::uint32_t writeAddress = take(floor.m_AddressBits);
    const bool write = take(1) != 0;
    const std::uint32_t readAddress = take(floor.m_AddressBits);
    Access(floor, take(1) != 0, readAddress, write, writeAddress, data);
}

void SetInputs(CFloor& floor, const std::uint32_t* words) {
    floor.m_Inputs = words[0];
    if (2 + 2 * floor.m_AddressBits + floor.m_DataBits > 32) {
        floor.m_Inputs |= std::uint64_t{words[1]} << 32;
    }
}

/// "TOP.tb.banks[0].bank.memory", "tb.banks[0].bank.RAM" and "tb_banks_0__bank" are one name.
std::string NameOf(std::string path) {
    for (const char* suffix : {".memory", ".RAM"}) {
        path.erase(std::min(path.size(), path.rfind(suffix)));
    }
    path.erase(0, path.rfind("TOP.", 0) == 0 ? 4 : 0);
    for (char& character : path) {
        character = std::isalnum(static_cast<unsigned char>(character)) != 0 ? character : '_';
    }
    return path;
}

} // namespace

extern "C" {

void* floor_open() {
    CFloor& floor = g_Floors.emplace_back();
    floor.m_AddressBits = 10;
    floor.m_DataBits = 32;
    return &floor;
}

std::uint32_t floor_edge(void* memory, unsigned char read, std::uint32_t readAddress, unsigned char write,
                         std::uint32_t writeAddress, std::uint32_t data) {
    return Access(FloorOf(memory), read != 0, readAddress, write != 0, writeAddress, data);
}

void floor_step(void* memory, unsigned char /*tick*/, const std::uint32_t* inputs, std::uint32_t* q) {
    SetInputs(FloorOf(memory), inputs);
    AccessPacked(FloorOf(memory));
    *q = FloorOf(memory).m_Q;
}

/// The ports and their widths are those of hdl/marlune_memory.sv.
void* marlune_sv_open(const char* scope, const char* /*parameters*/, unsigned mode, unsigned /*dataBits*/,
                      unsigned /*addressBits*/, const char* /*names*/, const std::uint32_t* widths) {
    CFloor& floor = g_Floors.emplace_back();
    floor.m_DataBits = widths[0];
    floor.m_AddressBits = widths[1];
    floor.m_IsSynchronous = mode == 1;
    g_Names[NameOf(scope)] = &floor;
    return &floor;
}

/// Outputs at the edge, as they follow from the inputs so far.
std::uint64_t marlune_sv_rise(void* memory, double now, std::uint32_t* outputs) {
    CFloor& floor = FloorOf(memory);
    floor.m_RiseTime = now;
    AccessPacked(floor);
    *outputs = floor.m_Q;
    return ++g_Stamp;
}

/// An asynchronous read follows the inputs that change at the edge.
std::uint32_t marlune_sv_inputs(void* memory, double now, std::uint64_t /*stamp*/, const std::uint32_t* inputs) {
    CFloor& floor = FloorOf(memory);
    SetInputs(floor, inputs);
    if (now == floor.m_RiseTime && !floor.m_IsSynchronous) {
        AccessPacked(floor);
        ++g_Turn;
    }
    return g_Turn;
}

std::uint64_t marlune_sv_look(void* memory, double /*now*/, unsigned char /*clock*/, std::uint32_t* outputs) {
    *outputs = FloorOf(memory).m_Q;
    return ++g_Stamp;
}

void marlune_dpi_memory_init(const char* name, const char* file, const char* /*space*/, unsigned /*cellBase*/,
                             unsigned /*low*/, unsigned /*high*/, unsigned phase, unsigned stride) {
    CFloor& floor = *g_Names.at(NameOf(name));
    std::ifstream text(file);
    unsigned long address = 0;
    for (std::string word; text >> word;) {
        if (word[0] == '@') {
            address = std::stoul(word.substr(1), nullptr, 16);
        } else {
            if (address % stride == phase) {
                floor.m_Cells[address / stride] = static_cast<std::uint32_t>(std::stoul(word, nullptr, 16));
            }
            ++address;
        }
    }
}

/// A word is a vector of pairs of 32 bits; all are below 2**32 here.
void marlune_dpi_memory_write(const char* name, unsigned address, const std::uint32_t* data) {
    g_Names.at(name)->m_Cells[address] = data[0];
}

void marlune_dpi_memory_read(const char* name, unsigned address, std::uint32_t* data) {
    data[0] = g_Names.at(name)->m_Cells[address];
}

} // extern "C"
