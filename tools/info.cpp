// `info`: what is in a file.
#include <iostream>

#include "tools/commands.h"
#include "tools/image.h"
#include "tools/table.h"

namespace marlune::tool {
namespace {

using ObjectFile::CObjectFile;
using ObjectFile::CSection;

CField Number(int value) {
    return static_cast<std::uint64_t>(static_cast<std::uint32_t>(value));
}

std::string OrderName(const ObjectFile::CMemoryOrganization& organization) {
    return organization.GetByteOrder() == ObjectFile::BO_LITTLE ? "little" : "big";
}

int SymbolCount(const CObjectFile& image) {
    int count = 0;
    for (int i = 0; i < image.SymbolTablesCount(); ++i) {
        count += image.GetSymbolTable(i)->Count();
    }
    return count;
}

/// The organization that all sections share, if there is one.
std::vector<CFact> Facts(const CObjectFile& image, const COptions& options) {
    const bool uniform = image.GetMemoryOrganizationIsValid();
    const auto ifUniform = [&](CField field) { return uniform ? std::move(field) : CField(); };
    const ObjectFile::CLineTable* lines = image.GetLineTable();
    return {{"File", "file", options.m_File},
            {"Kind", "kind", KindOfImage(options)},
            {"Address space", "space", ifUniform(image.GetAddressSpaceName())},
            {"Word bits", "word_bits", ifUniform(Number(image.GetWordBitSize()))},
            {"LAUs per word", "units_per_word", ifUniform(Number(image.GetBytesPerWord()))},
            {"Byte order", "byte_order", ifUniform(OrderName(image))},
            {"Entry point", "entry_point", image.GetEntryPointIsSet() ? CField(CHex{image.GetEntryPoint()}) : CField()},
            {"Symbols", "symbols", Number(SymbolCount(image))},
            {"Lines", "lines", std::uint64_t{lines != nullptr ? lines->GetRows().size() : 0}},
            {"Sections", "section_count", Number(image.SectionsCount())}};
}

CTable Sections(const CObjectFile& image) {
    CTable table({{"Section", "name"},
                  {"Type", "type"},
                  {"Space", "space"},
                  {"Address", "address", true},
                  {"Absolute", "absolute"},
                  {"LAUs", "units", true},
                  {"Bits", "unit_bits", true},
                  {"Order", "byte_order"},
                  {"Relocations", "relocations", true}});
    for (int i = 0; i < image.SectionsCount(); ++i) {
        const CSection& section = *image.GetSection(i);
        table.AddRow({section.GetName(), TypeName(section.GetType()), section.GetAddressSpaceName(),
                      CHex{section.GetMemoryByteAddress()}, section.GetMemoryByteAddressIsAbsolute(), LauCount(section),
                      LauBits(section), OrderName(section), Number(section.RelocationCount())});
    }
    return table;
}

} // namespace

int RunInfo(const COptions& options) {
    const auto image = LoadImage(options);
    const std::vector<CFact> facts = Facts(*image, options);
    const CTable sections = Sections(*image);
    if (options.m_Json) {
        CJson document = ToJson(facts);
        document["sections"] = sections.Json();
        PrintJson(document);
        return STATUS_OK;
    }
    Print(std::cout, facts);
    std::cout << (sections.IsEmpty() ? "" : "\n");
    sections.Print(std::cout);
    return STATUS_OK;
}

} // namespace marlune::tool
