// Bare arrays behind the calls of floor_memory.sv, and behind those of hdl/marlune_dpi.sv in place of the library. For
// memories of 32 bits, 1024 cells, and one read and one write port.
#include <cstdint>
#include <cstring>
#include <deque>

namespace {

constexpr std::uint32_t LAST_CELL = 1023;
constexpr unsigned ADDRESS_BITS = 10;

struct CFloor {
    std::uint32_t m_Cells[LAST_CELL + 1];
    std::uint32_t m_Q;
    double m_RiseTime;
    std::uint64_t m_Inputs;
    bool m_IsSynchronous;
};

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

/// Inputs as both modules pack them, from the most significant bit on: in floor_memory.sv data, write address, read
/// address, write, read; in hdl/marlune_memory.sv read, read address, write, write address, data.
template <bool FIRST_IS_READ>
void AccessPacked(CFloor& floor, std::uint64_t inputs) {
    const auto take = [&](unsigned width) {
        const auto bits = static_cast<std::uint32_t>(inputs & ((std::uint64_t{1} << width) - 1));
        inputs >>= width;
        return bits;
    };
    if constexpr (FIRST_IS_READ) {
        const std::uint32_t data = take(32);
        const std::uint32_t writeAddress = take(ADDRESS_BITS);
        const bool write = take(1) != 0;
        const std::uint32_t readAddress = take(ADDRESS_BITS);
        Access(floor, take(1) != 0, readAddress, write, writeAddress, data);
    } else {
        const bool read = take(1) != 0;
        const bool write = take(1) != 0;
        const std::uint32_t readAddress = take(ADDRESS_BITS);
        const std::uint32_t writeAddress = take(ADDRESS_BITS);
        Access(floor, read, readAddress, write, writeAddress, take(32));
    }
}

std::uint64_t NumberOf(const std::uint32_t* words) {
    std::uint64_t number = 0;
    std::memcpy(&number, words, sizeof number);
    return number;
}

} // namespace

extern "C" {

void* floor_open() {
    static std::deque<CFloor> floors;
    return &floors.emplace_back();
}

std::uint32_t floor_edge(void* memory, unsigned char read, std::uint32_t readAddress, unsigned char write,
                         std::uint32_t writeAddress, std::uint32_t data) {
    return Access(FloorOf(memory), read != 0, readAddress, write != 0, writeAddress, data);
}

void floor_step(void* memory, unsigned char /*tick*/, const std::uint32_t* inputs, std::uint32_t* q) {
    AccessPacked<false>(FloorOf(memory), NumberOf(inputs));
    *q = FloorOf(memory).m_Q;
}

void* marlune_sv_open(const char* /*scope*/, const char* /*parameters*/, unsigned mode, unsigned /*dataBits*/,
                      unsigned /*addressBits*/, const char* /*names*/, const std::uint32_t* /*widths*/) {
    void* memory = floor_open();
    FloorOf(memory).m_IsSynchronous = mode == 1;
    return memory;
}

/// Outputs at the edge, as they follow from the inputs so far.
std::uint64_t marlune_sv_rise(void* memory, double now, std::uint32_t* outputs) {
    CFloor& floor = FloorOf(memory);
    floor.m_RiseTime = now;
    AccessPacked<true>(floor, floor.m_Inputs);
    *outputs = floor.m_Q;
    return ++g_Stamp;
}

/// An asynchronous read follows the inputs that change at the edge.
std::uint32_t marlune_sv_inputs(void* memory, double now, std::uint64_t /*stamp*/, const std::uint32_t* inputs) {
    CFloor& floor = FloorOf(memory);
    floor.m_Inputs = NumberOf(inputs);
    if (now == floor.m_RiseTime && !floor.m_IsSynchronous) {
        AccessPacked<true>(floor, floor.m_Inputs);
        ++g_Turn;
    }
    return g_Turn;
}

std::uint64_t marlune_sv_look(void* memory, double /*now*/, unsigned char /*clock*/, std::uint32_t* outputs) {
    *outputs = FloorOf(memory).m_Q;
    return ++g_Stamp;
}

// The test bench does not use these.
void marlune_dpi_memory_init(const char*, const char*, const char*, unsigned, unsigned, unsigned, unsigned, unsigned) {}
void marlune_dpi_memory_write(const char*, unsigned, const void*) {}
void marlune_dpi_memory_read(const char*, unsigned, void*) {}

} // extern "C"
