// `lines`: which source line is at which address.
#include <iostream>

#include "tools/commands.h"
#include "tools/image.h"
#include "tools/table.h"

namespace marlune::tool {
namespace {

/// A row may name a file that its table does not have.
CField FileName(const ObjectFile::CLineTable& lines, int index) {
    const auto& names = lines.GetFileNames();
    return index >= 0 && static_cast<std::size_t>(index) < names.size() ? CField(names[static_cast<std::size_t>(index)])
                                                                        : CField();
}

} // namespace

int RunLines(const COptions& options) {
    const auto image = LoadImage(options);
    CTable table({{"Address", "address", true}, {"File", "file"}, {"Line", "line", true}, {"End", "end_of_sequence"}});
    if (const ObjectFile::CLineTable* lines = image->GetLineTable()) {
        for (const ObjectFile::CLineInfo& row : lines->GetRows()) {
            table.AddRow({CHex{row.m_Address}, FileName(*lines, row.m_FileIndex), std::int64_t{row.m_Line},
                          row.m_EndOfSequence});
        }
    }
    if (options.m_Json) {
        PrintJson({{"file", options.m_File}, {"lines", table.Json()}});
    } else {
        table.Print(std::cout);
    }
    return STATUS_OK;
}

} // namespace marlune::tool
