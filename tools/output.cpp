// Replaces files as a whole or not at all.
#include "tools/output.h"

#include <atomic>
#include <cerrno>
#include <csignal>
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

/// The permissions of a file that is replaced, or those of an ordinary new one. The bits that give another user's
/// rights are dropped: setting those up is for that user.
mode_t Permissions(const std::string& path) {
    struct stat status {};
    if (stat(path.c_str(), &status) == 0) {
        return status.st_mode & 0777U;
    }
    const mode_t mask = umask(0);
    umask(mask);
    return 0666U & ~mask;
}

/// The path of the temporary file, for a signal handler, or null.
std::atomic<const char*> g_TemporaryPath{nullptr};

/// Removes the temporary file, then raises the signal again, which ends the process. The signal's default action is
/// restored only after the file is gone: otherwise a second signal could end the process before that.
void RemoveTemporaryFile(int signal) {
    if (const char* const path = g_TemporaryPath.load()) {
        unlink(path);
    }
    std::signal(signal, SIG_DFL);
    raise(signal);
}

/// Signals that end the process, none of them from a fault of its own.
sigset_t EndingSignals() {
    sigset_t signals;
    sigemptyset(&signals);
    for (const int signal : {SIGHUP, SIGINT, SIGQUIT, SIGPIPE, SIGALRM, SIGTERM, SIGXCPU, SIGUSR1, SIGUSR2}) {
        sigaddset(&signals, signal);
    }
    return signals;
}

/// From now on a signal that ends the process removes the temporary file. Ignored signals stay ignored.
void CatchEndingSignals() {
    const sigset_t signals = EndingSignals();
    for (int signal = 1; signal < NSIG; ++signal) {
        struct sigaction action {};
        if (sigismember(&signals, signal) == 1 && sigaction(signal, nullptr, &action) == 0 &&
            action.sa_handler == SIG_DFL) {
            action.sa_handler = RemoveTemporaryFile;
            action.sa_mask = signals;
            sigaction(signal, &action, nullptr);
        }
    }
    std::signal(SIGXFSZ, SIG_IGN); // a write beyond a limit fails like one to a full disk
}

/// A file beside the target. Unless it has taken the target's place it is removed again, whatever ends the process.
class CTemporaryFile {
public:
    explicit CTemporaryFile(std::string target) : m_Target(std::move(target)), m_Path(m_Target + ".XXXXXX") {
        CatchEndingSignals();
        const sigset_t signals = EndingSignals();
        sigset_t before;
        pthread_sigmask(SIG_BLOCK, &signals, &before); // the file and its name appear at once
        m_Handle = mkstemp(m_Path.data());
        const int error = errno;
        if (m_Handle >= 0) {
            g_TemporaryPath = m_Path.c_str();
        }
        pthread_sigmask(SIG_SETMASK, &before, nullptr);
        if (m_Handle < 0) {
            errno = error;
            ThrowCannotWrite(m_Target);
        }
    }
    CTemporaryFile(const CTemporaryFile&) = delete;
    CTemporaryFile& operator=(const CTemporaryFile&) = delete;
    CTemporaryFile(CTemporaryFile&&) = delete;
    CTemporaryFile& operator=(CTemporaryFile&&) = delete;
    ~CTemporaryFile() {
        close(m_Handle);
        if (!m_InPlace) {
            unlink(m_Path.c_str());
        }
        g_TemporaryPath = nullptr;
    }

    const std::string& Path() const { return m_Path; }

    void TakePlace() {
        errno = 0;
        if (fchmod(m_Handle, Permissions(m_Target)) != 0 || fsync(m_Handle) != 0 ||
            rename(m_Path.c_str(), m_Target.c_str()) != 0) {
            ThrowCannotWrite(m_Target);
        }
        m_InPlace = true;
    }

private:
    const std::string m_Target;
    std::string m_Path;
    int m_Handle = -1;
    bool m_InPlace = false;
};

/// Where a chain of links leads, whether there is a file or not.
std::string FollowLinks(const std::string& path) {
    constexpr int MOST_LINKS = 40; // as the system itself follows
    fs::path place = path;
    for (int links = 0; fs::is_symlink(fs::symlink_status(place)); ++links) {
        if (links == MOST_LINKS) {
            errno = ELOOP;
            ThrowCannotWrite(path);
        }
        place = place.parent_path() / fs::read_symlink(place);
    }
    return place.string();
}

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
    const std::string place = FollowLinks(target); // a link stays a link
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
