#include "tools/output.h"

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <stdexcept>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "tools/text.h"

namespace marlune::tool {
namespace {

namespace fs = std::filesystem;

/// The permissions of a file that is replaced, or those of an ordinary new one.
mode_t Permissions(const std::string& path) {
    struct stat status {};
    if (stat(path.c_str(), &status) == 0) {
        return status.st_mode & 07777U;
    }
    const mode_t mask = umask(0);
    umask(mask);
    return 0666U & ~mask;
}

/// A file beside the target that is removed again unless it has taken the target's place.
class CTemporaryFile {
public:
    explicit CTemporaryFile(std::string target) : m_Target(std::move(target)), m_Path(m_Target + ".XXXXXX") {
        m_Handle = mkstemp(m_Path.data());
        if (m_Handle < 0) {
            ThrowCannotWrite(m_Target);
        }
    }
    CTemporaryFile(const CTemporaryFile&) = delete;
    CTemporaryFile& operator=(const CTemporaryFile&) = delete;
    CTemporaryFile(CTemporaryFile&&) = delete;
    CTemporaryFile& operator=(CTemporaryFile&&) = delete;
    ~CTemporaryFile() {
        close(m_Handle);
        if (!m_Path.empty()) {
            unlink(m_Path.c_str());
        }
    }

    const std::string& Path() const { return m_Path; }

    void TakePlace() {
        errno = 0;
        if (fchmod(m_Handle, Permissions(m_Target)) != 0 || fsync(m_Handle) != 0 ||
            rename(m_Path.c_str(), m_Target.c_str()) != 0) {
            ThrowCannotWrite(m_Target);
        }
        m_Path.clear();
    }

private:
    std::string m_Target;
    std::string m_Path;
    int m_Handle;
};

void Checked(std::ostream& out, const std::string& name, const std::function<void(std::ostream& out)>& write) {
    errno = 0;
    write(out);
    out.flush();
    if (!out) {
        ThrowCannotWrite(name);
    }
}

} // namespace

void ThrowCannotWrite(const std::string& name) {
    const std::string reason = errno != 0 ? std::generic_category().message(errno) : "not all of it was taken";
    throw std::runtime_error("cannot write '" + Printable(name) + "': " + reason);
}

void ReplaceFile(const std::string& target, const std::function<void(const std::string& path)>& write) {
    std::error_code error;
    const fs::file_status status = fs::status(target, error);
    if (fs::is_directory(status)) {
        errno = EISDIR;
        ThrowCannotWrite(target);
    }
    if (fs::exists(status) && !fs::is_regular_file(status)) {
        write(target);
        return;
    }
    // A link keeps its place: the file that it leads to is replaced.
    const std::string place = fs::exists(status) ? fs::canonical(target).string() : target;
    if (fs::exists(status) && access(place.c_str(), W_OK) != 0) {
        ThrowCannotWrite(target);
    }
    CTemporaryFile temporary(place);
    write(temporary.Path());
    temporary.TakePlace();
}

void WriteOutput(const std::string& target, const std::function<void(std::ostream& out)>& write) {
    if (target.empty()) {
        Checked(std::cout, "standard output", write);
        return;
    }
    ReplaceFile(target, [&](const std::string& path) {
        errno = 0;
        std::ofstream out(path, std::ios::binary);
        if (!out) {
            ThrowCannotWrite(target);
        }
        Checked(out, target, write);
    });
}

} // namespace marlune::tool
