// The bytes of an ELF file.
#ifndef MARLUNE_ELFTOVEXON_ELFFILE_H
#define MARLUNE_ELFTOVEXON_ELFFILE_H

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <type_traits>
#include <vector>

#include "objectfile/regularfile.h"

namespace marlune::elf {

/// The bytes of a file, handed out in pieces that it really holds. Every error is a CGeneralError.
///
/// The headers of a file may name the same bytes any number of times. What is taken is limited to MAX_REUSE times the
/// file's size (a linker's output stays below 2), and so are the names that are copied or searched, so that a small
/// file cannot ask for much memory or time. Names have a floor of 64 MiB besides: sections and symbols may well share
/// their ends, and that multiplies in a small file.
class CElfFile {
public:
    static constexpr std::uint64_t MAX_REUSE = 8;
    static constexpr std::uint64_t MIN_NAME_BYTES = std::uint64_t{1} << 26;

    static constexpr std::size_t HEADER_SIZE = 64;

    /// Reads the header of the file: it shows whether the rest is worth reading.
    explicit CElfFile(ObjectFile::CFileHandle file);
    /// Reads the rest.
    void ReadAll();

    /// All bytes read, uncounted.
    std::string_view All() const { return {m_Bytes.data(), m_Bytes.size()}; }
    /// `size` bytes from `offset` on; they stay valid as long as this object.
    std::string_view Take(std::uint64_t offset, std::uint64_t size);
    /// `count` records without gaps from `offset` on.
    template <typename T>
    std::vector<T> TakeRecords(std::uint64_t offset, std::uint64_t count);
    template <typename T>
    T TakeRecord(std::uint64_t offset) {
        return TakeRecords<T>(offset, 1).front();
    }
    /// Counts the bytes of a name.
    void CountName(std::uint64_t bytes) { Spend(m_NameBytesLeft, bytes); }

    /// What is thrown wherever the file ends before what it should hold.
    [[noreturn]] static void ThrowUnexpectedEnd();

private:
    void ReadTo(std::size_t size);
    static void Spend(std::uint64_t& left, std::uint64_t bytes);

    ObjectFile::CFileHandle m_File;
    std::size_t m_Size = 0; // of the file
    std::vector<char> m_Bytes;
    std::uint64_t m_BytesLeft = HEADER_SIZE; // that may still be taken
    std::uint64_t m_NameBytesLeft = 0;       // that may still be counted
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

} // namespace marlune::elf

#endif
