// Opening the files that images are read from.
#include "objectfile/regularfile.h"

#include <cerrno>
#include <cstdint>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace ObjectFile {

namespace {

constexpr std::int64_t MAX_UNEXAMINED = std::int64_t{1} << 26; // bytes
constexpr std::int64_t MAX_SIZE_OVER_DATA = 16;

/// Are there at least `wanted` bytes of data in the file? Also true if the file system cannot tell.
bool HoldsData(int descriptor, std::int64_t wanted) {
    std::int64_t data = 0;
    for (off_t hole = 0; data < wanted;) {
        const off_t begin = lseek(descriptor, hole, SEEK_DATA);
        if (begin < 0) {
            return hole == 0 && errno != ENXIO; // ENXIO: there is no more
        }
        hole = lseek(descriptor, begin, SEEK_HOLE);
        if (hole <= begin) {
            return true;
        }
        data += hole - begin;
    }
    return true;
}

bool IsReadable(int descriptor) {
    struct stat status {};
    if (fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode)) {
        return false;
    }
    const std::int64_t size = status.st_size;
    return size <= MAX_UNEXAMINED ||
           (HoldsData(descriptor, size / MAX_SIZE_OVER_DATA) && lseek(descriptor, 0, SEEK_SET) == 0);
}

} // namespace

CFileHandle OpenRegularFile(const std::string& path) {
    const int descriptor = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK); // does not wait for a pipe's writer
    if (descriptor < 0) {
        return nullptr;
    }
    CFileHandle file(IsReadable(descriptor) ? fdopen(descriptor, "rb") : nullptr);
    if (file) {
        std::setvbuf(file.get(), nullptr, _IONBF, 0);
    } else {
        close(descriptor);
    }
    return file;
}

} // namespace ObjectFile
