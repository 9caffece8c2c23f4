#include "src/flimemory/zeroedpages.h"

#include <sys/mman.h>

namespace marlune::foreign::fli {

void* ReservePages(std::size_t bytes) {
    void* pages = mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    return pages == MAP_FAILED ? nullptr : pages; // NOLINT(performance-no-int-to-ptr): the system's macro
}

void ReleasePages(void* pages, std::size_t bytes) {
    munmap(pages, bytes);
}

} // namespace marlune::foreign::fli
