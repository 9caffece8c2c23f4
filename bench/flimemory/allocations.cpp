// Counts what operator new gives.
#include "bench/flimemory/allocations.h"

#include <cstdlib>
#include <new>

std::size_t g_Allocations = 0;

void* operator new(std::size_t size) {
    ++g_Allocations;
    if (void* memory = std::malloc(size)) {
        return memory;
    }
    throw std::bad_alloc();
}

void operator delete(void* memory) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::size_t /*size*/) noexcept {
    std::free(memory);
}
