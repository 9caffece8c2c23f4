#include "tools/cells.h"

#include <algorithm>

namespace marlune::tool {

CCells::CCells(std::string name, std::uint32_t width, std::uint32_t size)
    : m_Name(std::move(name)), m_ByteBitWidth(width), m_Size(size), m_Limbs((width + 31) / 32) {}

void CCells::Write(std::uint32_t cell, const CWord& value) {
    Note(cell, 1);
    if (m_LastPage == nullptr || m_LastNumber != cell / PAGE_CELLS) {
        const auto page = m_Pages.find(cell / PAGE_CELLS);
        if (page == m_Pages.end() && value.IsZeroFrom(0)) {
            return;
        }
        std::vector<std::uint32_t>& limbs = page != m_Pages.end() ? page->second : m_Pages[cell / PAGE_CELLS];
        limbs.resize(std::size_t{m_Limbs} * PAGE_CELLS);
        m_LastPage = limbs.data();
        m_LastNumber = cell / PAGE_CELLS;
    }
    std::uint32_t* limbs = m_LastPage + std::size_t{cell % PAGE_CELLS} * m_Limbs;
    for (unsigned i = 0; i < m_Limbs; ++i) {
        limbs[i] = value.Limb(i);
    }
    if (m_ByteBitWidth % 32 != 0) {
        limbs[m_Limbs - 1] &= (1U << (m_ByteBitWidth % 32)) - 1;
    }
}

void CCells::WriteNumbers(std::uint32_t first, const std::uint64_t* numbers, std::uint32_t count) {
    for (std::uint32_t i = 0; i < count; ++i) {
        Write(first + i, CWord::FromUnsigned(numbers[i]));
    }
}

void CCells::FillZero(std::uint32_t first, std::uint32_t count) {
    Note(first, count);
    const std::uint64_t end = std::uint64_t{first} + count;
    for (auto page = m_Pages.lower_bound(first / PAGE_CELLS); page != m_Pages.end(); ++page) {
        const std::uint64_t pageFirst = std::uint64_t{page->first} * PAGE_CELLS;
        if (pageFirst >= end) {
            break;
        }
        const auto from = static_cast<std::size_t>(std::max<std::uint64_t>(first, pageFirst) - pageFirst);
        const auto to = static_cast<std::size_t>(std::min(end - pageFirst, std::uint64_t{PAGE_CELLS}));
        std::fill(&page->second[from * m_Limbs], &page->second[0] + to * m_Limbs, 0U);
    }
}

void CCells::Note(std::uint32_t first, std::uint32_t count) {
    if (m_Runs.empty() || m_Runs.back().m_End != first) {
        m_Runs.push_back({first, first});
    }
    m_Runs.back().m_End += count;
}

const std::uint32_t* CCells::Find(std::uint32_t cell) const {
    const auto page = m_Pages.find(cell / PAGE_CELLS);
    return page == m_Pages.end() ? nullptr : &page->second[std::size_t{cell % PAGE_CELLS} * m_Limbs];
}

std::uint32_t CCells::NextPage(std::uint32_t cell) const {
    const auto page = m_Pages.lower_bound(cell / PAGE_CELLS);
    return page == m_Pages.end() ? m_Size : std::max(cell, page->first * PAGE_CELLS);
}

std::vector<CCells::SRun> CCells::WrittenRuns() const {
    std::vector<SRun> sorted = m_Runs;
    std::sort(sorted.begin(), sorted.end(), [](const SRun& a, const SRun& b) { return a.m_First < b.m_First; });
    std::vector<SRun> joined;
    for (const SRun& run : sorted) {
        if (joined.empty() || run.m_First > joined.back().m_End) {
            joined.push_back(run);
        } else {
            joined.back().m_End = std::max(joined.back().m_End, run.m_End);
        }
    }
    return joined;
}

} // namespace marlune::tool
