// Makes an image from a file of any format.
#include "tools/import/importer.h"

#include <stdexcept>

#include "tools/import/format.h"
#include "tools/import/imagebuilder.h"
#include "tools/text.h"

namespace marlune::tool {
namespace {

/// The text form keeps a name up to its first blank or comment.
void RequireSpaceName(const std::string& name) {
    for (const char character : name) {
        if (static_cast<unsigned char>(character) <= ' ') {
            throw std::runtime_error("an address space name has no blanks: '" + Printable(name) + "'");
        }
    }
    if (name.find("//") != std::string::npos) {
        throw std::runtime_error("an address space name has no '//': '" + Printable(name) + "'");
    }
}

} // namespace

std::unique_ptr<ObjectFile::CObjectFile> ImportProgram(const std::string& path, eFormat format,
                                                       const CImportOptions& options, const CWarn& warn) {
    const CFormat& row = FormatRow(format);
    if (row.m_Read == nullptr) {
        throw std::runtime_error(std::string(row.m_Title) + ": this build of marlune-image lacks " + row.m_Library);
    }
    if (LauBits(options) % 8 != 0 && format != eFormat::READMEMH) {
        throw std::runtime_error("bytes form LAUs of a multiple of 8 bits, not of " + Counted(LauBits(options), "bit"));
    }
    RequireSpaceName(options.m_Space.value_or(""));
    CProgram program;
    row.m_Read(path, options, program, warn);
    auto image = BuildImage(program, options, warn);
    image->SetFileName(path);
    return image;
}

} // namespace marlune::tool
