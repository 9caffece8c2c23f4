#ifndef MARLUNE_ELFTOVEXON_ELFFILE_H
#define MARLUNE_ELFTOVEXON_ELFFILE_H

#include "objectfile/streams.h"

#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

/// The bytes of a file, handed out in pieces that it really holds. Every error is a CGeneralError.
///
/// The headers of a file may name the same bytes any number of times. All that is taken out of it together is limited
/// to MAX_OVERLAP times its size (a linker's output stays below 2), so that a small file cannot ask for much memory.
class CElfFile {
public:
    static constexpr std::uint64_t MAX_OVERLAP = 8;

    static constexpr std::size_t HEADER_SIZE = 64;

    /// Reads the header of the file, which must be a regular one: whether the rest is worth reading shows there.
    explicit CElfFile(const std::string& path);
    /// Reads the rest.
    void ReadAll();

    /// All bytes read, uncounted.
    std::string_view All() const { return {m_Bytes.data(), m_Bytes.size()}; }
    /// `size` bytes from `offset` on; they stay valid as long as this object.
    std::string_view Take(std::uint64_t offset, std::uint64_t size);
    /// `count` records that lie one behind the other from `offset` on.
    template <typename T>
    std::vector<T> TakeRecords(std::uint64_t offset, std::uint64_t count);
    template <typename T>
    T TakeRecord(std::uint64_t offset) {
        return TakeRecords<T>(offset, 1).front();
    }
    /// Counts `bytes` that are copied from pieces taken before.
    void Count(std::uint64_t bytes);

    /// What is thrown wherever the file ends before what it should hold.
    [[noreturn]] static void ThrowUnexpectedEnd();

private:
    void ReadTo(std::size_t size);

    ObjectFile::CFileHandle m_File;
    std::size_t m_Size = 0; // of the file
    std::vector<char> m_Bytes;
    std::uint64_t m_Left = HEADER_SIZE; // bytes that may still be taken
};

template <typename T>
std::vector<T> CElfFile::TakeRecords(std::uint64_t offset, std::uint64_t count) {
    static_assert(std::is_trivially_copyable_v<T>);
    if (count > m_Bytes.size() / sizeof(T)) {
        ThrowUnexpectedEnd();
    }
    const std::string_view bytes = Take(offset, count * sizeof(T));
    std::vector<T> records(static_cast<std::size_t>(count));
    if (count > 0) {
        std::memcpy(records.data(), bytes.data(), bytes.size());
    }
    return records;
}

#endif
