// Shows on a terminal how far a long command has come.
#include "tools/progress.h"

#include <algorithm>
#include <chrono>
#include <fstream>
#include <iostream>

#include <unistd.h>

#include "tools/text.h"

namespace marlune::tool {
namespace {

constexpr std::chrono::milliseconds FIRST_AFTER{500};
constexpr std::chrono::milliseconds EVERY{200};

} // namespace

CProgress::CProgress(const std::string& what, eDirection direction, std::uint64_t totalBytes)
    : m_What(Printable(what)), m_Direction(direction), m_TotalBytes(totalBytes), m_StartBytes(CountedBytes()) {
    if (isatty(STDERR_FILENO) != 0) {
        m_Thread = std::thread([this] { Show(); });
    }
}

CProgress::~CProgress() {
    if (m_Thread.joinable()) {
        {
            const std::lock_guard<std::mutex> lock(m_Mutex);
            m_Done = true;
        }
        m_Wake.notify_one();
        m_Thread.join();
    }
}

void CProgress::Show() {
    std::unique_lock<std::mutex> lock(m_Mutex);
    if (m_Wake.wait_for(lock, FIRST_AFTER, [this] { return m_Done; })) {
        return;
    }
    do {
        std::string line = "\r" + m_What + " ...";
        if (m_TotalBytes > 0) {
            const double part = static_cast<double>(CountedBytes() - m_StartBytes) / static_cast<double>(m_TotalBytes);
            line += " " + std::to_string(static_cast<int>(100 * std::min(part, 1.0))) + " %";
        }
        std::cerr << line << "\033[K" << std::flush;
    } while (!m_Wake.wait_for(lock, EVERY, [this] { return m_Done; }));
    std::cerr << "\r\033[K" << std::flush;
}

std::uint64_t CProgress::CountedBytes() const {
    const std::string wanted = m_Direction == READING ? "rchar:" : "wchar:";
    std::ifstream counters("/proc/self/io");
    std::string name;
    std::uint64_t bytes = 0;
    while (counters >> name >> bytes) {
        if (name == wanted) {
            return bytes;
        }
    }
    return 0;
}

} // namespace marlune::tool
