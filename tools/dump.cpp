// `dump`: the cells as a load fills them.
#include <iostream>

#include "tools/cells.h"
#include "tools/cellwriter.h"
#include "tools/commands.h"
#include "tools/image.h"
#include "tools/output.h"
#include "tools/progress.h"
#include "tools/text.h"

namespace marlune::tool {

int RunDump(const COptions& options) {
    const auto image = LoadImage(options);
    const std::string space = options.m_Space.value();
    const CLoadedCells cells(*image, space, options.m_Width.value(), options.m_Size, options.m_Window);
    if (cells.Runs().empty()) {
        Warn(options.m_File, "nothing of address space '" + Printable(space) + "' goes into this memory");
    }
    const CWriteOptions format{options.m_CellFormat, options.m_All, options.m_Order.value_or(cells.ByteOrder())};
    WriteOutput(options.m_Output, [&](std::ostream& out) { WriteCells(out, cells, format); });
    return STATUS_OK;
}

} // namespace marlune::tool
