// The bytes of an ELF file.
#include "elftovexon/elffile.h"

#include <algorithm>
#include <cstdio>
#include <utility>

#include <sys/stat.h>

#include "general_error"

namespace marlune::elf {

using exceptions::CGeneralError;

CElfFile::CElfFile(ObjectFile::CFileHandle file) : m_File(std::move(file)) {
    struct stat status {};
    if (fstat(fileno(m_File.get()), &status) != 0) {
        ThrowUnexpectedEnd();
    }
    m_Size = static_cast<std::size_t>(status.st_size);
    ReadTo(std::min(m_Size, HEADER_SIZE));
}

void CElfFile::ReadAll() {
    m_Bytes.reserve(m_Size);
    ReadTo(m_Size);
    m_File.reset();
    m_BytesLeft = m_Size * MAX_REUSE;
    m_NameBytesLeft = std::max(m_BytesLeft, MIN_NAME_BYTES);
}

void CElfFile::ReadTo(std::size_t size) {
    constexpr std::size_t AT_ONCE = std::size_t{1} << 16; // stays in the cache between its two writes
    while (m_Bytes.size() < size) {
        const std::size_t begin = m_Bytes.size();
        const std::size_t count = std::min(AT_ONCE, size - begin);
        m_Bytes.resize(begin + count);
        if (std::fread(&m_Bytes[begin], 1, count, m_File.get()) != count) {
            ThrowUnexpectedEnd();
        }
    }
}

std::string_view CElfFile::Take(std::uint64_t offset, std::uint64_t size) {
    if (size == 0) {
        return {};
    }
    if (offset > m_Bytes.size() || size > m_Bytes.size() - offset) {
        ThrowUnexpectedEnd();
    }
    Spend(m_BytesLeft, size);
    return All().substr(static_cast<std::size_t>(offset), static_cast<std::size_t>(size));
}

void CElfFile::Spend(std::uint64_t& left, std::uint64_t bytes) {
    if (bytes > left) {
        throw CGeneralError("The headers use the file's bytes more than 8 times over\n");
    }
    left -= bytes;
}

void CElfFile::ThrowUnexpectedEnd() {
    throw CGeneralError("Unexpected end of file\n");
}

} // namespace marlune::elf
