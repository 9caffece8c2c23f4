// The formats in which a memory's cells are written.
#ifndef MARLUNE_TOOLS_CELLWRITER_H
#define MARLUNE_TOOLS_CELLWRITER_H

#include <iosfwd>
#include <string>
#include <vector>

#include "tools/cells.h"

namespace marlune::tool {

struct CWriteOptions {
    std::string m_Format;           // one of CellFormats()
    bool m_All = false;             // also the cells that nothing was loaded into
    ObjectFile::eByteOrder m_Order; // of a cell's bytes, in formats that hold bytes
};

/// "hex", "bin", "readmemh", "ihex", "srec".
std::vector<std::string> CellFormats();

/// Writes the cells. Throws std::runtime_error, before it writes anything, if the format has no addresses for them.
void WriteCells(std::ostream& out, const CLoadedCells& cells, const CWriteOptions& options);

} // namespace marlune::tool

#endif
