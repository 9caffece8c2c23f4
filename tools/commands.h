// The sub-commands. Each prints its result to standard output and returns the exit status: STATUS_OK or STATUS_BAD. If
// it cannot answer at all, it throws an exception derived from std::exception.
#ifndef MARLUNE_TOOLS_COMMANDS_H
#define MARLUNE_TOOLS_COMMANDS_H

#include <cstdint>
#include <optional>
#include <string>

#include "src/flimemory/loadmemory.h"
#include "tools/import/importoptions.h"

namespace marlune::tool {

constexpr int STATUS_OK = 0;
constexpr int STATUS_BAD = 1;   // a bad image, or one that such a memory refuses
constexpr int STATUS_USAGE = 2; // wrong usage

/// What the command line says. Each sub-command reads the members that concern it.
struct COptions : CImportOptions {
    std::string m_File;
    bool m_NamesMemory = false;    // address space and width are those of a memory, whatever the file
    bool m_WritesBytes = false;    // bytes are written in a byte order, whatever the file
    bool m_RequiresMemory = false; // a program of another toolchain needs address space and width
    std::string m_Output;          // empty for standard output
    bool m_Json = false;
    std::uint32_t m_Size = 0; // cells
    foreign::CLoadWindow m_Window{0, 0, 0xFFFFFFFF, 0, 1};
    std::string m_CellFormat = "hex";
    bool m_All = false; // also the cells that nothing was loaded into
    std::string m_Svg;  // file for a drawing; empty for none
};

int RunInfo(const COptions& options);
int RunSymbols(const COptions& options);
int RunLines(const COptions& options);
int RunCheck(const COptions& options);
int RunConvert(const COptions& options);
int RunDump(const COptions& options);
int RunMap(const COptions& options);

} // namespace marlune::tool

#endif
