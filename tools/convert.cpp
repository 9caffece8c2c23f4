// `convert`: makes a text object file from a program.
#include <cerrno>

#include "tools/commands.h"
#include "tools/image.h"
#include "tools/output.h"
#include "tools/progress.h"
#include "tools/text.h"

namespace marlune::tool {
namespace {

/// Some contents of the library's own files can be stored but not read back, for instance nameless symbols. An import
/// produces none of these.
void RequireLoadable(const std::string& path, const std::string& target) {
    try {
        COptions options;
        options.m_File = path;
        LoadImage(options);
    } catch (const CImageError& error) {
        throw std::runtime_error("cannot write '" + Printable(target) +
                                 "': the image has contents that would not load again: " + error.m_Text);
    }
}

} // namespace

int RunConvert(const COptions& options) {
    auto image = LoadImage(options);
    const bool isImported = IsImported(options);
    ReplaceFile(options.m_Output, [&](const std::string& path) {
        {
            const std::uint64_t size = isImported ? 0 : FileSize(options.m_File); // about as much
            const CProgress progress("writing " + options.m_Output, CProgress::WRITING, size);
            errno = 0;
            if (!image->SaveFile(path)) {
                ThrowCannotWrite(options.m_Output);
            }
        }
        image.reset();                                 // not in memory twice
        if (!isImported && path != options.m_Output) { // else it is a device
            RequireLoadable(path, options.m_Output);
        }
    });
    return STATUS_OK;
}

} // namespace marlune::tool
