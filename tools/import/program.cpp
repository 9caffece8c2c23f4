// The parts of a program in the order of their addresses, checked against each other.
#include "tools/import/program.h"

#include <algorithm>
#include <limits>
#include <stdexcept>

#include "tools/text.h"

namespace marlune::tool {
namespace {

/// The highest address allowed, some LAUs below the wrap-around, so that a section can be extended to whole LAUs.
constexpr std::uint64_t HIGHEST_END = std::numeric_limits<std::uint64_t>::max() - 4096;

} // namespace

void CProgram::Add(CBytePool& pool, std::uint64_t address, std::string_view bytes) {
    if (m_Extents.empty() || m_Extents.back().m_Address + m_Extents.back().m_Size != address) {
        m_Extents.push_back({address, 0, pool.Size()});
    }
    m_Extents.back().m_Size += bytes.size();
    pool.Append(bytes);
}

void CProgram::Arrange(const CWarn& warn) {
    const auto byAddress = [](const auto& a, const auto& b) { return a.m_Address < b.m_Address; };
    const auto isEmpty = [](const CExtent& extent) { return extent.m_Size == 0; };
    m_Extents.erase(std::remove_if(m_Extents.begin(), m_Extents.end(), isEmpty), m_Extents.end());
    std::stable_sort(m_Extents.begin(), m_Extents.end(), byAddress);
    if (m_Sections.empty()) {
        for (const CExtent& extent : m_Extents) {
            m_Sections.push_back({"", ObjectFile::CSection::TYPE_DATA, extent.m_Address, extent.m_Size, 0});
        }
    }
    if (m_Sections.empty()) {
        throw std::runtime_error("there is nothing to load in it");
    }
    std::stable_sort(m_Sections.begin(), m_Sections.end(), byAddress);
    std::vector<CProgramSection> apart;
    for (CProgramSection& section : m_Sections) {
        if (section.m_Address > HIGHEST_END || section.m_Size > HIGHEST_END - section.m_Address) {
            throw std::runtime_error("the section '" + Printable(section.m_Name) + "' at " + Hex(section.m_Address) +
                                     " has " + Hex(section.m_Size) + " bytes, which is beyond all addresses");
        }
        const bool overlaps = !apart.empty() && apart.back().End() > section.m_Address;
        if (overlaps && !section.IsZero()) {
            if (!apart.back().IsZero()) {
                throw std::runtime_error(Describe(apart.back()) + " and " + Describe(section) + " overlap");
            }
            WarnOfLeftOut(apart.back(), section, warn);
            apart.pop_back();
        }
        if (overlaps && section.IsZero()) {
            WarnOfLeftOut(section, apart.back(), warn);
        } else {
            apart.push_back(std::move(section));
        }
    }
    m_Sections = std::move(apart);
}

void CProgram::WarnOfLeftOut(const CProgramSection& zeros, const CProgramSection& other, const CWarn& warn) const {
    warn("the zeros of " + Describe(zeros) + " overlap " + Describe(other) + " and are left out");
}

void CProgram::Read(std::uint64_t address, char* to, std::size_t count) const {
    std::fill_n(to, count, '\0');
    auto extent = std::upper_bound(m_Extents.begin(), m_Extents.end(), address,
                                   [](std::uint64_t a, const CExtent& e) { return a < e.m_Address; });
    extent -= extent == m_Extents.begin() ? 0 : 1;
    for (; extent != m_Extents.end() && extent->m_Address < address + count; ++extent) {
        const std::uint64_t from = std::max(address, extent->m_Address);
        const std::uint64_t end = std::min(address + count, extent->m_Address + extent->m_Size);
        if (from < end) {
            m_Source->Read(extent->m_Offset + (from - extent->m_Address), to + (from - address),
                           static_cast<std::size_t>(end - from));
        }
    }
}

std::string CProgram::Describe(const CProgramSection& section) const {
    const std::string range = (m_WordBytes == 1 ? "bytes " : "words ") + Hex(section.m_Address / m_WordBytes) + " to " +
                              Hex((section.End() - 1) / m_WordBytes);
    return section.m_Name.empty() ? range : "section '" + Printable(section.m_Name) + "' (" + range + ")";
}

std::string CProgram::DescribeAddress(std::uint64_t address) const {
    return (m_WordBytes == 1 ? "byte " : "word ") + Hex(address / m_WordBytes);
}

} // namespace marlune::tool
