// Progress of a long command.
#ifndef MARLUNE_TOOLS_PROGRESS_H
#define MARLUNE_TOOLS_PROGRESS_H

#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <string>
#include <thread>

namespace marlune::tool {

/// While it exists, a line on standard error shows how far a long piece of work has come, if that is a terminal. Work
/// that takes less than half a second shows nothing.
class CProgress {
public:
    enum eDirection { READING, WRITING };

    /// The work ends when this process has read or written `totalBytes` more; 0 if that is not known. `what` names the
    /// work. The system counts the bytes for the process, so no reader or writer has to report them.
    CProgress(const std::string& what, eDirection direction, std::uint64_t totalBytes);
    CProgress(const CProgress&) = delete;
    CProgress& operator=(const CProgress&) = delete;
    CProgress(CProgress&&) = delete;
    CProgress& operator=(CProgress&&) = delete;
    ~CProgress();

private:
    void Show();
    std::uint64_t CountedBytes() const;

    const std::string m_What;
    const eDirection m_Direction;
    const std::uint64_t m_TotalBytes;
    const std::uint64_t m_StartBytes;
    std::mutex m_Mutex;
    std::condition_variable m_Wake;
    bool m_Done = false;
    std::thread m_Thread;
};

} // namespace marlune::tool

#endif
