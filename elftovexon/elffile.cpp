#include "elftovexon/elffile.h"

#include "general_error"
#include "objectfile/streams.h"

#include <algorithm>
#include <cstdio>

#include <sys/stat.h>

using marlune::exceptions::CGeneralError;

namespace {

std::vector<char> ReadWholeFile(const std::string& path) {
    const ObjectFile::CFileHandle file(std::fopen(path.c_str(), "rb"));
    struct stat status {};
    if (!file || fstat(fileno(file.get()), &status) != 0 || !S_ISREG(status.st_mode)) {
        throw CGeneralError("File '" + path + "' could not be opened.\n");
    }
    constexpr std::size_t AT_ONCE = std::size_t{1} << 16; // stays in the cache between its two writes
    const auto size = static_cast<std::size_t>(status.st_size);
    std::vector<char> bytes;
    bytes.reserve(size);
    while (bytes.size() < size) {
        const std::size_t begin = bytes.size();
        const std::size_t count = std::min(AT_ONCE, size - begin);
        bytes.resize(begin + count);
        if (std::fread(&bytes[begin], 1, count, file.get()) != count) {
            CElfFile::ThrowUnexpectedEnd();
        }
    }
    return bytes;
}

} // namespace

CElfFile::CElfFile(const std::string& path) : m_Bytes(ReadWholeFile(path)), m_Left(m_Bytes.size() * MAX_OVERLAP) {}

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
