// Imports arbitrary bytes as a program of another toolchain, in the format that they show or as $readmemh text, for
// memories of several widths. What becomes an image must save, load again, and save as the same text.
#include "fuzz/inputfile.h"
#include "tools/import/format.h"
#include "tools/import/importer.h"

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <optional>
#include <stdexcept>

namespace {

using namespace marlune::tool;

/// The text of an image without its time stamp.
std::string Save(ObjectFile::CObjectFile& image) {
    image.SaveFile(FilePath());
    std::ifstream file(FilePath(), std::ios::binary);
    std::string text{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    const std::size_t stamp = text.find('\n') + 1;
    return text.erase(stamp, text.find('\n', stamp) - stamp);
}

std::unique_ptr<ObjectFile::CObjectFile> Import(eFormat format, const CImportOptions& options) {
    try {
        return ImportProgram(FilePath(), format, options, [](const std::string& /*text*/) {});
    } catch (const std::runtime_error&) {
        return nullptr;
    }
}

eFormat FormatOfInput() {
    try {
        const eFormat format = RecogniseFormat(FilePath());
        return format == eFormat::OBJECT ? eFormat::BINARY : format;
    } catch (const std::runtime_error&) {
        return eFormat::READMEMH;
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    constexpr std::uint64_t MOST_LAUS = 1 << 20; // to be written as text
    WriteInput(bytes, size);
    const eFormat format = FormatOfInput();
    for (const std::uint32_t width : {8U, 9U, 32U, 1024U}) {
        WriteInput(bytes, size);
        CImportOptions options;
        options.m_Space = "ram";
        options.m_Width = width;
        options.m_Order = size % 2 == 0 ? ObjectFile::BO_LITTLE : ObjectFile::BO_BIG;
        const auto image = Import(format, options);
        std::uint64_t laus = 0;
        for (int i = 0; image != nullptr && i < image->SectionsCount(); ++i) {
            const ObjectFile::CSection& section = *image->GetSection(i);
            laus += section.GetType() == ObjectFile::CSection::TYPE_BSS
                        ? 0
                        : static_cast<unsigned>(section.GetSectionDataByteCount());
        }
        if (image == nullptr || laus > MOST_LAUS) {
            continue;
        }
        const std::string text = Save(*image);
        ObjectFile::CObjectFile again;
        ObjectFile::CInputStream in(FilePath(), '\n');
        again.LoadFromStream(in);
        if (Save(again) != text) {
            std::abort();
        }
    }
    return 0;
}
