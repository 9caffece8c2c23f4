// Where the sections of each address space lie.
#include "tools/layout.h"

#include <algorithm>
#include <map>

#include "tools/image.h"
#include "tools/text.h"

namespace marlune::tool {
namespace {

using ObjectFile::CSection;

bool IsPlaced(const CSection& section, bool withStackAndHeap) {
    const bool stackOrHeap = section.IsStack(false) || section.IsHeap(false);
    const bool leftOut = stackOrHeap ? !withStackAndHeap : !ReasonLeftOut(section).empty();
    return !leftOut && section.GetMemoryByteAddressIsAbsolute() && LauCount(section) > 0;
}

/// Sorts the sections, finds overlaps and inserts the gaps.
void Arrange(CSpace& space) {
    std::stable_sort(space.m_Pieces.begin(), space.m_Pieces.end(),
                     [](const CPiece& a, const CPiece& b) { return a.m_First < b.m_First; });
    std::vector<CPiece> arranged;
    const CSection* highest = nullptr; // the section that ends at space.m_End
    for (CPiece piece : space.m_Pieces) {
        if (highest != nullptr && piece.m_First < space.m_End) {
            piece.m_Overlaps = highest;
        } else if (highest != nullptr && piece.m_First > space.m_End) {
            arranged.push_back({nullptr, space.m_End, piece.m_First - space.m_End, nullptr});
        }
        if (highest == nullptr || piece.End() > space.m_End) {
            highest = piece.m_Section;
            space.m_End = piece.End();
        }
        arranged.push_back(piece);
    }
    space.m_Pieces = std::move(arranged);
}

/// Gives the pieces their positions. Gaps are shortened so that the sections get two thirds of the scale.
void Scale(CSpace& space) {
    std::uint64_t gaps = 0;
    space.m_InUse = space.m_End - space.First();
    for (const CPiece& piece : space.m_Pieces) {
        gaps += piece.m_Section == nullptr ? 1 : 0;
        space.m_InUse -= piece.m_Section == nullptr ? piece.m_Count : 0;
    }
    const std::uint64_t longest = std::max<std::uint64_t>(space.m_InUse / (2 * std::max<std::uint64_t>(gaps, 1)), 1);
    std::uint64_t removed = space.First();
    for (CPiece& piece : space.m_Pieces) {
        piece.m_Position = piece.m_First - removed;
        piece.m_Length = piece.m_Section == nullptr ? std::min(piece.m_Count, longest) : piece.m_Count;
        removed += piece.m_Count - piece.m_Length;
    }
    space.m_Scale = space.m_End - removed;
}

} // namespace

std::vector<CSpace> LayOut(const ObjectFile::CObjectFile& image, bool withStackAndHeap) {
    std::vector<CSpace> spaces;
    std::map<std::string, std::size_t> indices; // into spaces, by name
    for (int i = 0; i < image.SectionsCount(); ++i) {
        const CSection& section = *image.GetSection(i);
        if (!IsPlaced(section, withStackAndHeap)) {
            continue;
        }
        const auto [index, isNew] = indices.emplace(section.GetAddressSpaceName(), spaces.size());
        if (isNew) {
            spaces.push_back(CSpace{section.GetAddressSpaceName(), {}, 0});
        }
        const auto address = static_cast<std::uint32_t>(section.GetMemoryByteAddress());
        spaces[index->second].m_Pieces.push_back({&section, address, LauCount(section), nullptr});
    }
    for (CSpace& space : spaces) {
        Arrange(space);
        Scale(space);
    }
    return spaces;
}

std::string Heading(const CSpace& space) {
    const std::uint64_t extent = space.m_End - space.First();
    return "address space '" + Printable(space.m_Name) + "': " + Hex(space.First()) + " to " + Hex(space.m_End - 1) +
           ", " + std::to_string(space.m_InUse) + " of " + Counted(extent, "LAU") + " in use";
}

std::uint64_t Scaled(const CSpace& space, std::uint64_t position, std::uint64_t length) {
    return position * length / space.m_Scale;
}

} // namespace marlune::tool
