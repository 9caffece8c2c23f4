// The readers of program files, a function for each format. Each fills a program that is not yet arranged. It throws
// CReadError, or std::runtime_error if no line is to blame.
#ifndef MARLUNE_TOOLS_IMPORT_READERS_H
#define MARLUNE_TOOLS_IMPORT_READERS_H

#include <stdexcept>
#include <string>

#include "tools/import/importoptions.h"
#include "tools/import/program.h"

namespace marlune::tool {

/// What is wrong in a line of a text format.
class CReadError : public std::runtime_error {
public:
    /// `line` counts from 1; 0 when the reader does not know it.
    CReadError(long line, const std::string& text) : std::runtime_error(text), m_Line(line) {}

    const long m_Line;
};

using CReader = void(const std::string& path, const CImportOptions& options, CProgram& program, const CWarn& warn);

/// The loadable segments of an executable for any machine, of 32 or 64 bits and either byte order, at their physical
/// addresses, its sections and its symbols. Relocatable files are refused.
CReader ReadElf;
CReader ReadIntelHex;
CReader ReadSRecords;
/// Words in hexadecimal with @addresses and comments; digits x and z are 0.
CReader ReadReadMemH;
/// The bytes as they are, from address 0 on.
CReader ReadBinary;

} // namespace marlune::tool

#endif
