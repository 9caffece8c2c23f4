// Computes cells as a load would fill them.
#include "tools/cells.h"

#include <algorithm>
#include <iterator>

#include "marlune_int"

namespace marlune::tool {
namespace {

/// What foreign::LoadMemory requires of a memory, for a block of cells whose limbs the caller owns. Cell 0 is the first
/// of them.
class CCellBlock {
public:
    using CWord = marlune_int<1024, true>;

    CCellBlock(std::uint32_t width, std::uint64_t* limbs)
        : m_ByteBitWidth(width), m_Limbs(limbs), m_LimbsPerCell((width + 63) / 64) {}

    /// Keeps the low bits, which are what a test bench reads back.
    void Write(std::uint32_t cell, const CWord& value) {
        std::uint64_t* const limbs = LimbsOf(cell);
        for (unsigned i = 0; i < m_LimbsPerCell; ++i) {
            limbs[i] = value.Limb(2 * i) | std::uint64_t{value.Limb(2 * i + 1)} << 32;
        }
        if (m_ByteBitWidth % 64 != 0) {
            limbs[m_LimbsPerCell - 1] &= (std::uint64_t{1} << (m_ByteBitWidth % 64)) - 1;
        }
    }
    void WriteNumbers(std::uint32_t first, const std::uint64_t* numbers, std::uint32_t count) {
        for (std::uint32_t i = 0; i < count; ++i) {
            Write(first + i, CWord::FromUnsigned(numbers[i]));
        }
    }
    void FillZero(std::uint32_t first, std::uint32_t count) { std::fill(LimbsOf(first), LimbsOf(first + count), 0U); }
    std::uint64_t* NumbersFrom(std::uint32_t first) const { return m_LimbsPerCell == 1 ? LimbsOf(first) : nullptr; }

private:
    std::uint64_t* LimbsOf(std::uint32_t cell) const { return m_Limbs + std::size_t{cell} * m_LimbsPerCell; }

    const std::uint32_t m_ByteBitWidth;
    std::uint64_t* const m_Limbs;
    const unsigned m_LimbsPerCell;
};

} // namespace

CLoadedCells::CLoadedCells(const ObjectFile::CObjectFile& image, const std::string& space, std::uint32_t width,
                           std::uint32_t size, const foreign::CLoadWindow& window)
    : m_Width(width), m_Size(size) {
    for (int i = 0; i < image.SectionsCount(); ++i) {
        const ObjectFile::CSection& section = *image.GetSection(i);
        if (const auto copy = foreign::PlanSection(section, image, space, window, {"memory", width, size}, false)) {
            AddPart(section, *copy);
        }
    }
    Sort();
}

void CLoadedCells::AddPart(const ObjectFile::CSection& section, const foreign::CSectionCopy& copy) {
    const std::uint64_t end = std::uint64_t{copy.m_Cell} + static_cast<unsigned>(copy.m_Count);
    NoteByteOrder(section.GetByteOrder());
    m_Parts.push_back({&section, copy, copy.m_Cell, end, m_Parts.size(), end});
}

int CLoadedCells::IndexOf(const CPart& part, std::uint64_t cell) {
    const std::uint64_t offset = (cell - part.m_First) * part.m_Copy.m_Stride;
    return static_cast<int>(static_cast<unsigned>(part.m_Copy.m_Index) + offset);
}

void CLoadedCells::NoteByteOrder(ObjectFile::eByteOrder order) {
    m_ByteOrder = m_Parts.empty() || m_ByteOrder == order ? order : ObjectFile::BO_LITTLE;
}

void CLoadedCells::Sort() {
    std::stable_sort(m_Parts.begin(), m_Parts.end(),
                     [](const CPart& a, const CPart& b) { return a.m_First < b.m_First; });
    for (CPart& part : m_Parts) {
        if (m_Runs.empty() || part.m_First > m_Runs.back().m_End) {
            m_Runs.push_back({part.m_First, part.m_End});
        }
        m_Runs.back().m_End = std::max(m_Runs.back().m_End, part.m_End);
        part.m_MaxEnd = m_Runs.back().m_End;
    }
}

std::vector<const CLoadedCells::CPart*> CLoadedCells::PartsIn(std::uint64_t first, std::uint64_t end) const {
    std::vector<const CPart*> parts;
    auto part = std::lower_bound(m_Parts.begin(), m_Parts.end(), end,
                                 [](const CPart& candidate, std::uint64_t cell) { return candidate.m_First < cell; });
    while (part != m_Parts.begin() && std::prev(part)->m_MaxEnd > first) {
        --part;
        if (part->m_End > first) {
            parts.push_back(&*part);
        }
    }
    std::sort(parts.begin(), parts.end(), [](const CPart* a, const CPart* b) { return a->m_Order < b->m_Order; });
    return parts;
}

bool CLoadedCells::IsZero(std::uint64_t first, std::uint32_t count) const {
    const auto parts = PartsIn(first, first + count);
    return std::all_of(parts.begin(), parts.end(), [&](const CPart* part) {
        const std::uint64_t from = std::max(first, part->m_First);
        const std::uint64_t to = std::min(first + count, part->m_End);
        const std::uint64_t span = (to - from - 1) * part->m_Copy.m_Stride + 1;
        return part->m_Section->GetSectionData()->IsUntouchedZero(IndexOf(*part, from), static_cast<int>(span));
    });
}

void CLoadedCells::Read(std::uint64_t first, std::uint32_t count, std::uint64_t* limbs) const {
    std::fill_n(limbs, std::size_t{count} * LimbsPerCell(), 0U);
    CCellBlock block(m_Width, limbs);
    for (const CPart* const part : PartsIn(first, first + count)) {
        const std::uint64_t from = std::max(first, part->m_First);
        const std::uint64_t to = std::min(first + count, part->m_End);
        foreign::CLauCopier<CCellBlock>(block, *part->m_Section->GetSectionData(), part->m_Copy)
            .Copy(IndexOf(*part, from), static_cast<std::uint32_t>(from - first), static_cast<int>(to - from));
    }
}

} // namespace marlune::tool
