// The sections of a file by their addresses.
#ifndef MARLUNE_TOOLS_LAYOUT_H
#define MARLUNE_TOOLS_LAYOUT_H

#include <cstdint>
#include <string>
#include <vector>

#include "objectfile/objectfile.h"

namespace marlune::tool {

/// A range of LAU addresses: those of a section, or of a gap between sections if there is none.
struct CPiece {
    const ObjectFile::CSection* m_Section = nullptr;
    std::uint64_t m_First = 0;
    std::uint64_t m_Count = 0;
    const ObjectFile::CSection* m_Overlaps = nullptr; // an earlier section with which it shares addresses
    std::uint64_t m_Position = 0;                     // on the scale of its space, which shortens gaps
    std::uint64_t m_Length = 0;                       // on that scale

    std::uint64_t End() const { return m_First + m_Count; }
    bool IsShortened() const { return m_Length < m_Count; }
};

/// An address space: its sections and the gaps between them by ascending address, borrowed from the image.
struct CSpace {
    std::string m_Name;
    std::vector<CPiece> m_Pieces;
    std::uint64_t m_End = 0;   // after the highest address in use
    std::uint64_t m_InUse = 0; // LAUs that are not in gaps
    std::uint64_t m_Scale = 0; // the length of the scale: of all pieces, with gaps shortened

    std::uint64_t First() const { return m_Pieces.front().m_First; }
};

/// The address spaces in the order of their first sections, with those sections that have contents, a fixed address
/// and a place in memory; stack and heap only if asked for. Addresses are the low 32 bits, as a load takes them.
std::vector<CSpace> LayOut(const ObjectFile::CObjectFile& image, bool withStackAndHeap);

/// "address space 'ram': 0x0 to 0xfff, 96 of 4096 LAUs in use".
std::string Heading(const CSpace& space);

/// The place of a position on the space's scale in a picture of `length` steps.
std::uint64_t Scaled(const CSpace& space, std::uint64_t position, std::uint64_t length);

} // namespace marlune::tool

#endif
