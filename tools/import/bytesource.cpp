// Reads bytes from a file, a part at a time.
#include "tools/import/bytesource.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <stdexcept>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace marlune::tool {

CFileSource::CFileSource(const std::string& path) : m_Handle(open(path.c_str(), O_RDONLY | O_CLOEXEC)) {
    struct stat status {};
    if (m_Handle < 0 || fstat(m_Handle, &status) != 0) {
        throw std::runtime_error(std::generic_category().message(errno));
    }
    m_Size = static_cast<std::uint64_t>(status.st_size);
}

CFileSource::~CFileSource() {
    close(m_Handle);
}

void CFileSource::Read(std::uint64_t offset, char* to, std::size_t count) const {
    while (count > 0) {
        errno = 0;
        const ssize_t done = pread(m_Handle, to, count, static_cast<off_t>(offset));
        if (done <= 0) {
            throw std::runtime_error(errno != 0 ? std::generic_category().message(errno) : "Unexpected end of file");
        }
        offset += static_cast<std::uint64_t>(done);
        to += done;
        count -= static_cast<std::size_t>(done);
    }
}

void CBytePool::Append(std::string_view bytes) {
    while (!bytes.empty()) {
        const auto used = static_cast<std::size_t>(m_Size % BLOCK);
        if (used == 0) {
            m_Blocks.push_back(std::make_unique<char[]>(BLOCK));
        }
        const std::size_t part = std::min(bytes.size(), BLOCK - used);
        std::memcpy(m_Blocks.back().get() + used, bytes.data(), part);
        m_Size += part;
        bytes.remove_prefix(part);
    }
}

void CBytePool::Read(std::uint64_t offset, char* to, std::size_t count) const {
    while (count > 0) {
        const auto skipped = static_cast<std::size_t>(offset % BLOCK);
        const std::size_t part = std::min(count, BLOCK - skipped);
        std::memcpy(to, m_Blocks[static_cast<std::size_t>(offset / BLOCK)].get() + skipped, part);
        offset += part;
        to += part;
        count -= part;
    }
}

} // namespace marlune::tool
