// Loads an image into a memory of 1024 bytes and prints the first one, without a simulator. A program with the model of
// a design would use the memories of that design instead.
//
// usage: g++ peek.cpp $(pkg-config --cflags --libs marlune) -o peek && ./peek IMAGE SPACE
#include <cstdint>
#include <cstdio>

#include "marlune_dpi.h"

struct t_vpi_vecval { // without svdpi.h
    std::uint32_t aval, bval;
};

int main(int argc, char** argv) {
    if (argc != 3) {
        return 2;
    }
    const std::uint32_t noWidths = 0;
    marlune_sv_open("ram.", "0 8 1024", 0, 0, 0, "", &noWidths);
    marlune_dpi_memory_init("ram", argv[1], argv[2], 0, 0, 0xFFFFFFFF, 0, 1);
    t_vpi_vecval word{};
    marlune_dpi_memory_read("ram", 0, &word);
    std::printf("%u\n", word.aval);
}
