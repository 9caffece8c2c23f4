// Which LAUs of a program image go into a memory, and into which cells.
#ifndef MARLUNE_FLIMEMORY_LOADPLAN_H
#define MARLUNE_FLIMEMORY_LOADPLAN_H

#include <cstdint>
#include <optional>
#include <string>

#include "objectfile/objectfile.h"
#include "objectfile/section.h"

namespace marlune::foreign {

/// Which LAUs of an address space a memory takes, and where it puts them; all addresses count LAUs. Of the range
/// m_LowAddress to m_HighAddress, inclusive, it takes every m_Stride-th from m_Phase on, into the cells from
/// m_CellBase / m_Stride on.
struct CLoadWindow {
    unsigned m_CellBase;
    unsigned m_LowAddress;
    unsigned m_HighAddress;
    unsigned m_Phase;
    unsigned m_Stride;

    /// The number of LAUs in the range; the whole 32-bit range counts as 0xFFFFFFFF.
    std::uint32_t RangeLength() const;
};

/// The memory that is loaded.
struct CLoadTarget {
    std::string m_Name;
    std::uint32_t m_ByteBitWidth; // bits of a LAU
    std::uint32_t m_Size;         // cells
};

/// Where a section's LAUs go: those with indices m_Index, m_Index + stride, ... below m_End, into the cells from m_Cell
/// on.
struct CPlacement {
    std::uint64_t m_Index;
    std::uint64_t m_End;
    std::uint64_t m_Cell;
};

/// The LAUs of a section that go into a memory: those with indices m_Index, m_Index + m_Stride, ..., into as many cells
/// from m_Cell on.
struct CSectionCopy {
    int m_Index;
    std::uint32_t m_Cell;
    int m_Count;  // at least 1
    int m_Beyond; // LAUs that follow for which the memory has no cell
    unsigned m_Stride;
    bool m_Reversed; // the bits of each LAU are flipped end for end
};

/// What a load has done.
struct CLoadResult {
    bool m_HasStored = false;                           // did any section have a LAU for the memory?
    const ObjectFile::CSection* m_CutSection = nullptr; // the first one that lies across the memory's end, or none
    int m_CutCount = 0;                                 // its LAUs that were left out
};

/// Whether the section takes part in a load of the address space. Sections of debug or information type do not; stack
/// and heap do only if `includeStackHeap` says so. Throws CGeneralError if it would take part but has no absolute
/// address.
bool IsLoaded(const ObjectFile::CSection& section, const std::string& addressSpace, bool includeStackHeap);

/// Throws CGeneralError if the section's LAUs are not as wide as the memory's.
void CheckLauWidth(const CLoadTarget& target, const ObjectFile::CObjectFile& objectFile,
                   const ObjectFile::CSectionData& data);

/// The placement of a section of `count` LAUs at the address, or nothing if it lies outside the range. Sums are
/// computed in 64 bits, so that nothing wraps. Throws CGeneralError for a stride of 0.
std::optional<CPlacement> PlaceSection(const CLoadWindow& window, std::uint32_t address, std::uint64_t count);

/// What the section contributes to a load of the address space, or nothing. The bits of a little-endian section are
/// flipped, except in a memory of 1 bit. Throws what the functions above throw.
std::optional<CSectionCopy> PlanSection(const ObjectFile::CSection& section, const ObjectFile::CObjectFile& objectFile,
                                        const std::string& addressSpace, const CLoadWindow& window,
                                        const CLoadTarget& target, bool includeStackHeap);

} // namespace marlune::foreign

#endif
