// Finding the segment that holds a section.
#include "elftovexon/segmentindex.h"

#include <algorithm>
#include <functional>
#include <limits>
#include <utility>

namespace marlune::elf {

namespace {

constexpr std::size_t LEAF_SIZE = 4;

/// The end of a range, or the last address if the range goes beyond it.
std::uint64_t End(std::uint64_t begin, std::uint64_t size) {
    return begin + std::min(size, std::numeric_limits<std::uint64_t>::max() - begin);
}

bool Contains(std::uint64_t outer, std::uint64_t outerSize, std::uint64_t inner, std::uint64_t innerSize) {
    return inner >= outer && innerSize <= outerSize && inner - outer <= outerSize - innerSize;
}

bool Holds(const Elf64_Phdr& segment, const Elf64_Shdr& section) {
    return Contains(segment.p_vaddr, segment.p_memsz, section.sh_addr, section.sh_size) &&
           (section.sh_type == SHT_NOBITS ||
            Contains(segment.p_offset, segment.p_filesz, section.sh_offset, section.sh_size));
}

} // namespace

struct CSegmentIndex::CQuery {
    const Elf64_Shdr& m_Section;
    CPoint m_Point;
    bool m_WantsLast;
    const Elf64_Phdr* m_Found = nullptr;
    std::size_t m_Index = 0; // of m_Found

    /// Is there a better answer in the node, as far as it shows?
    bool MayImprove(const CNode& node) const {
        const bool better = m_Found == nullptr || (m_WantsLast ? node.m_Last > m_Index : node.m_First < m_Index);
        return better && std::equal(node.m_Least.begin(), node.m_Least.end(), m_Point.begin(), std::less_equal<>());
    }
    void Offer(const Elf64_Phdr& segment, std::size_t index) {
        const bool better = m_Found == nullptr || (m_WantsLast ? index > m_Index : index < m_Index);
        if (better && Holds(segment, m_Section)) {
            m_Found = &segment;
            m_Index = index;
        }
    }
};

CSegmentIndex::CSegmentIndex(const std::vector<Elf64_Phdr>& headers, Elf64_Word type) : m_Headers(&headers) {
    for (std::size_t i = 0; i < headers.size(); ++i) {
        if (headers[i].p_type == type) {
            m_Segments.push_back(i);
        }
    }
    if (!m_Segments.empty()) {
        Build(0, m_Segments.size(), 0);
    }
}

/// Ends are complemented, so that what is above the section's is below it.
CSegmentIndex::CPoint CSegmentIndex::PointOf(const Elf64_Phdr& segment) {
    return {segment.p_vaddr, ~End(segment.p_vaddr, segment.p_memsz), segment.p_offset,
            ~End(segment.p_offset, segment.p_filesz)};
}

/// Appends the tree of a range that is not empty; returns the index of its root.
std::size_t CSegmentIndex::Build(std::size_t begin, std::size_t end, std::size_t dimension) {
    const std::size_t index = m_Nodes.size();
    CNode node{begin, end, PointOf((*m_Headers)[m_Segments[begin]]), m_Segments[begin], m_Segments[begin], 0};
    for (std::size_t i = begin; i < end; ++i) {
        const CPoint point = PointOf((*m_Headers)[m_Segments[i]]);
        std::transform(point.begin(), point.end(), node.m_Least.begin(), node.m_Least.begin(),
                       [](std::uint64_t a, std::uint64_t b) { return std::min(a, b); });
        node.m_First = std::min(node.m_First, m_Segments[i]);
        node.m_Last = std::max(node.m_Last, m_Segments[i]);
    }
    m_Nodes.push_back(node);
    if (end - begin > LEAF_SIZE) {
        const auto at = [this](std::size_t i) { return m_Segments.begin() + static_cast<std::ptrdiff_t>(i); };
        const std::size_t middle = begin + (end - begin) / 2;
        std::nth_element(at(begin), at(middle), at(end), [&](std::size_t a, std::size_t b) {
            return PointOf((*m_Headers)[a])[dimension] < PointOf((*m_Headers)[b])[dimension];
        });
        const std::size_t next = (dimension + 1) % node.m_Least.size();
        Build(begin, middle, next);
        const std::size_t right = Build(middle, end, next);
        m_Nodes[index].m_Right = right;
    }
    return index;
}

const Elf64_Phdr* CSegmentIndex::Find(const Elf64_Shdr& section) const {
    constexpr std::uint64_t ANY = std::numeric_limits<std::uint64_t>::max();
    const bool noBits = section.sh_type == SHT_NOBITS;
    CQuery query{section,
                 {section.sh_addr, ~End(section.sh_addr, section.sh_size), noBits ? ANY : section.sh_offset,
                  noBits ? ANY : ~End(section.sh_offset, section.sh_size)},
                 noBits};
    if (!m_Nodes.empty()) {
        Search(0, query);
    }
    return query.m_Found;
}

void CSegmentIndex::Search(std::size_t index, CQuery& query) const {
    const CNode& node = m_Nodes[index];
    if (!query.MayImprove(node)) {
        return;
    }
    if (node.m_Right == 0) {
        for (std::size_t i = node.m_Begin; i < node.m_End; ++i) {
            query.Offer((*m_Headers)[m_Segments[i]], m_Segments[i]);
        }
        return;
    }
    // The half that may hold the better answer comes first; then the other one seldom needs a search.
    std::size_t better = index + 1;
    std::size_t other = node.m_Right;
    if (query.m_WantsLast ? m_Nodes[other].m_Last > m_Nodes[better].m_Last
                          : m_Nodes[other].m_First < m_Nodes[better].m_First) {
        std::swap(better, other);
    }
    Search(better, query);
    Search(other, query);
}

} // namespace marlune::elf
