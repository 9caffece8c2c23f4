// The record of a file that holds all section headers.
#include "objectfile/sectioncontainer.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <numeric>

namespace ObjectFile {

CSectionContainer::CSectionContainer(CObjectFile* owner, int lineAddress, int count)
    : m_Owner(owner), m_LineAddress(lineAddress), m_PendingCount(count) {}

void CSectionContainer::LoadFromStream(CInputStream& in, Queue& queue) {
    for (int i = 0; i < m_PendingCount; ++i) {
        Add(std::make_unique<CSection>(m_Owner))->LoadFromStream(in, queue);
    }
    m_PendingCount = -1;
}

void CSectionContainer::SaveToStream(COutputStream& out, Queue& queue) {
    for (const auto& section : m_Sections) {
        section->SaveToStream(out, queue);
    }
}

CSection* CSectionContainer::Get(int index) const {
    return index >= 0 && index < Count() ? m_Sections[static_cast<std::size_t>(index)].get() : nullptr;
}

void CSectionContainer::Add(CSection* section) {
    Add(std::unique_ptr<CSection>(section));
}

CSection* CSectionContainer::Add(std::unique_ptr<CSection> section) {
    section->m_Owner = m_Owner;
    section->m_Container = this;
    section->m_Number = m_NextNumber++;
    return m_Sections.emplace_back(std::move(section)).get();
}

void CSectionContainer::Delete(CSection* section) {
    const int index = Find(section);
    if (index < 0) {
        return;
    }
    m_ByName.erase(KeyOf(*section));
    m_Members.erase(section);
    m_Sections.erase(m_Sections.begin() + index);
}

CSection* CSectionContainer::Find(const std::string& name) const {
    if (!m_WasAsked) { // most containers are asked only once, and then a search costs less than an index
        m_WasAsked = true;
        const auto found = std::find_if(m_Sections.begin(), m_Sections.end(),
                                        [&](const auto& section) { return section->m_Name == name; });
        return found == m_Sections.end() ? nullptr : found->get();
    }
    Index();
    const auto first = m_ByName.lower_bound({name, 0});
    return first != m_ByName.end() && first->first.first == name ? first->second : nullptr;
}

int CSectionContainer::Find(const CSection* section) const {
    Index();
    return m_Members.count(section) != 0 ? IndexOf(*section) : -1;
}

void CSectionContainer::Index() const {
    while (m_Members.size() < m_Sections.size()) {
        CSection* const section = m_Sections[m_Members.size()].get();
        m_ByName.emplace(KeyOf(*section), section);
        m_Members.insert(section);
    }
}

int CSectionContainer::IndexOf(const CSection& section) const {
    // A section's index is its number until a section before it is deleted.
    const auto number = static_cast<std::size_t>(section.m_Number);
    if (number < m_Sections.size() && m_Sections[number].get() == &section) {
        return static_cast<int>(number);
    }
    const auto found =
        std::lower_bound(m_Sections.begin(), m_Sections.end(), section.m_Number,
                         [](const auto& candidate, std::uint64_t wanted) { return candidate->m_Number < wanted; });
    return static_cast<int>(found - m_Sections.begin());
}

CSection* CSectionContainer::CreateSection(CSection::eType type, const std::string& name,
                                           const CMemoryOrganization& organization) {
    return Add(std::make_unique<CSection>(type, name, organization, m_Owner));
}

void CSectionContainer::Rename(CSection& section, const std::string& name) {
    auto entry = m_ByName.extract(KeyOf(section)); // while the characters that it views still exist
    section.m_Name = name;
    if (!entry.empty()) { // already indexed
        entry.key() = KeyOf(section);
        m_ByName.insert(std::move(entry));
    }
}

CSectionContainer::CNameKey CSectionContainer::KeyOf(const CSection& section) {
    return {section.m_Name, section.m_Number};
}

int CSectionContainer::RelocationCount() const {
    return std::accumulate(m_Sections.begin(), m_Sections.end(), 0,
                           [](int sum, const auto& section) { return sum + section->RelocationCount(); });
}

int CSectionContainer::SectionDataWordCount() const {
    const std::int64_t words =
        std::accumulate(m_Sections.begin(), m_Sections.end(), std::int64_t{0},
                        [](std::int64_t sum, const auto& section) { return sum + section->GetSectionDataWordCount(); });
    return static_cast<int>(std::min<std::int64_t>(words, std::numeric_limits<int>::max()));
}

void CSectionContainer::Free() {
    m_ByName.clear();
    m_Members.clear();
    m_Sections.clear();
}

} // namespace ObjectFile
