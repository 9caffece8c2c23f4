#include <cerrno>

#include "tools/commands.h"
#include "tools/image.h"
#include "tools/output.h"
#include "tools/progress.h"
#include "tools/text.h"

namespace marlune::tool {
namespace {

/// Some contents of the library's own files can be stored but not read back, nameless symbols for instance. An import
/// makes none of these.
void RequireLoadable(const std::string& path, const std::string& target) {
    try {
        SOptions options;
        options.m_File = path;
        LoadImage(options);
    } catch (const CImageError& error) {
        throw std::runtime_error("cannot write '" + Printable(target) +
                                 "': the image has contents that would not load again: " + error.m_Text);
    }
}

} // namespace

int RunConvert(const SOptions& options) {
    auto image = LoadImage(options);
    ReplaceFile(options.m_Output, [&](const std::string& path) {
        {
            const CProgress progress("writing " + options.m_Output, CProgress::WRITING, FileSize(options.m_File));
            errno = 0;
            if (!image->SaveFile(path)) {
                ThrowCannotWrite(options.m_Output);
            }
        }
        image.reset();                                          // not in memory twice
        if (!IsImported(options) && path != options.m_Output) { // else it is a device
            RequireLoadable(path, options.m_Output);
        }
    });
    return STATUS_OK;
}

} // namespace marlune::tool
