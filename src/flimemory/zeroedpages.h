// Arrays of zeros that take no memory until they are touched.
#ifndef MARLUNE_FLIMEMORY_ZEROEDPAGES_H
#define MARLUNE_FLIMEMORY_ZEROEDPAGES_H

#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <type_traits>

namespace marlune::foreign::fli {

/// Pages of zeros, which the system provides when they are first touched; null if it has no such range. The caller
/// releases them with ReleasePages and the same size in bytes.
void* ReservePages(std::size_t bytes);
void ReleasePages(void* pages, std::size_t bytes);

/// Sets a part of such pages to zero. The cost grows with the pages that were ever touched and not with the size,
/// because whole pages go back to the system.
void ClearBytes(void* first, std::size_t bytes);

/// Releases the pages of an array.
struct CPageRelease {
    std::size_t m_Bytes = 0;

    void operator()(void* pages) const { ReleasePages(pages, m_Bytes); }
};

/// An owned array whose elements are zero until they are written, or null.
template <typename T>
using CZeroedArray = std::unique_ptr<T[], CPageRelease>;

/// Null if the array does not fit into the address space or the system refuses it.
template <typename T>
CZeroedArray<T> MakeZeroedArray(std::uint32_t count) {
    static_assert(std::is_trivially_copyable_v<T> && std::is_trivially_destructible_v<T>,
                  "the elements are created as zero bytes and never destroyed");
    if (count > std::numeric_limits<std::size_t>::max() / sizeof(T)) {
        return nullptr;
    }
    const std::size_t bytes = count > 0 ? count * sizeof(T) : 1; // an empty array is not a null one
    return CZeroedArray<T>(static_cast<T*>(ReservePages(bytes)), CPageRelease{bytes});
}

} // namespace marlune::foreign::fli

#endif
