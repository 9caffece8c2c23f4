// Finding the segment that holds a section.
#ifndef MARLUNE_ELFTOVEXON_SEGMENTINDEX_H
#define MARLUNE_ELFTOVEXON_SEGMENTINDEX_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include <elf.h>

namespace marlune::elf {

/// The segments of one type (PT_LOAD or PT_TLS), searched for those that hold a section in memory and, unless the
/// section is SHT_NOBITS, in the file.
///
/// Holding is four inequalities: the section begins at or after the segment and ends at or before it, in memory and in
/// the file. So a segment is a point in four dimensions and a query asks for the points below another point. A k-d tree
/// (J. L. Bentley, "Multidimensional Binary Search Trees Used for Associative Searching", 1975) answers that in
/// O(log n) steps for segments as a linker makes them, and in O(n^(3/4)) for any others.
class CSegmentIndex {
public:
    /// Borrows the headers.
    CSegmentIndex(const std::vector<Elf64_Phdr>& headers, Elf64_Word type);

    /// The first segment that holds the section, in the order of the headers; for SHT_NOBITS the last one. Or none.
    /// Ranges do not wrap around: one that goes beyond the end of the address space lies in no segment.
    const Elf64_Phdr* Find(const Elf64_Shdr& section) const;

private:
    using CPoint = std::array<std::uint64_t, 4>; // a segment holds a section when no coordinate is above the section's

    /// A range of m_Segments, [m_Begin, m_End), and what is known of it.
    struct CNode {
        std::size_t m_Begin;
        std::size_t m_End;
        CPoint m_Least;      // of each coordinate
        std::size_t m_First; // the smallest header index
        std::size_t m_Last;  // and the largest one
        std::size_t m_Right; // the node of its second half; the first half's is the next node; 0 in a leaf
    };
    struct CQuery;

    static CPoint PointOf(const Elf64_Phdr& segment);
    std::size_t Build(std::size_t begin, std::size_t end, std::size_t dimension);
    void Search(std::size_t node, CQuery& query) const;

    const std::vector<Elf64_Phdr>* m_Headers;
    std::vector<std::size_t> m_Segments; // header indices in the tree's order
    std::vector<CNode> m_Nodes;
};

} // namespace marlune::elf

#endif
