#include "elftovexon/elffile.h"

#include "general_error"

#include <algorithm>
#include <cstdio>

#include <sys/stat.h>

using marlune::exceptions::CGeneralError;

CElfFile::CElfFile(const std::string& path) : m_File(std::fopen(path.c_str(), "rb")) {
    struct stat status {};
    if (!m_File || fstat(fileno(m_File.get()), &status) != 0 || !S_ISREG(status.st_mode)) {
        throw CGeneralError("File '" + path + "' could not be opened.\n");
    }
    m_Size = static_cast<std::size_t>(status.st_size);
    ReadTo(std::min(m_Size, HEADER_SIZE));
}

void CElfFile::ReadAll() {
    m_Bytes.reserve(m_Size);
    ReadTo(m_Size);
    m_File.reset();
    m_Left = m_Size * MAX_OVERLAP;
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
    Count(size);
    return All().substr(static_cast<std::size_t>(offset), static_cast<std::size_t>(size));
}

void CElfFile::Count(std::uint64_t bytes) {
    if (bytes > m_Left) {
        throw CGeneralError("Too many overlapping parts\n");
    }
    m_Left -= bytes;
}

void CElfFile::ThrowUnexpectedEnd() {
    throw CGeneralError("Unexpected end of file\n");
}
