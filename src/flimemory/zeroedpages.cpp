// Memory from the system that is zero and takes no space until it is touched.
#include "src/flimemory/zeroedpages.h"

#include <cstring>

#include <sys/mman.h>
#include <unistd.h>

namespace marlune::foreign::fli {

void* ReservePages(std::size_t bytes) {
    void* pages = mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    return pages == MAP_FAILED ? nullptr : pages; // NOLINT(performance-no-int-to-ptr): the system's macro
}

void ReleasePages(void* pages, std::size_t bytes) {
    munmap(pages, bytes);
}

void ClearBytes(void* first, std::size_t bytes) {
    static const auto pageBytes = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    auto* const begin = static_cast<unsigned char*>(first);
    const std::size_t head = (pageBytes - reinterpret_cast<std::uintptr_t>(begin) % pageBytes) % pageBytes;
    const std::size_t pages = bytes > head ? (bytes - head) / pageBytes * pageBytes : 0;
    if (pages > 0 && madvise(begin + head, pages, MADV_DONTNEED) == 0) {
        std::memset(begin, 0, head);
        std::memset(begin + head + pages, 0, bytes - head - pages);
    } else {
        std::memset(begin, 0, bytes);
    }
}

} // namespace marlune::foreign::fli
