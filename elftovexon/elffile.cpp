#include "elftovexon/elffile.h"

#include "general_error"
#include "objectfile/streams.h"

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
    std::vector<char> bytes(static_cast<std::size_t>(status.st_size));
    if (std::fread(bytes.data(), 1, bytes.size(), file.get()) != bytes.size()) {
        CElfFile::ThrowUnexpectedEnd();
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
