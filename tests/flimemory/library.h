// The shared library, loaded as a simulator loads it.
#ifndef MARLUNE_TESTS_FLIMEMORY_LIBRARY_H
#define MARLUNE_TESTS_FLIMEMORY_LIBRARY_H

#include <dlfcn.h>
#include <unistd.h>

#include <fstream>
#include <stdexcept>
#include <string>

#include "src/flimemory/flimemory.h"
#include "tests/simulator/simulator.h"

/// An entry point of the shared library, loaded as a simulator loads it.
template <typename TFunction>
TFunction* EntryPoint(TFunction&, const char* name) {
    static void* const library = dlopen(MARLUNE_LIBRARY, RTLD_LAZY | RTLD_LOCAL);
    if (library == nullptr || dlsym(library, name) == nullptr) {
        throw std::runtime_error(dlerror());
    }
    return reinterpret_cast<TFunction*>(dlsym(library, name));
}

inline CSimulator::CInit MemoryInit() {
    return EntryPoint(marlune_fli_memory_init, "marlune_fli_memory_init");
}

/// What the simulator logs when an entry point fails with the text.
inline std::vector<std::string> Failure(const std::string& text) {
    return {"global MTI_ERROR_MSG", "set MTI_ERROR_MSG \"" + text + "\"", "fatal"};
}

/// Memory of this process that is in use at present, in KiB.
inline std::size_t ResidentKiB() {
    std::size_t pages = 0;
    std::ifstream("/proc/self/statm") >> pages >> pages;
    return pages * static_cast<std::size_t>(sysconf(_SC_PAGESIZE)) / 1024;
}

#endif
