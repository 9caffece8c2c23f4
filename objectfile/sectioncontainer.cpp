#include "objectfile/section.h"

#include "objectfile/objectfile.h"

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
    section->m_Index = Count();
    return m_Sections.emplace_back(std::move(section)).get();
}

void CSectionContainer::Delete(CSection* section) {
    const int index = Find(section);
    if (index < 0) {
        return;
    }
    ForgetNames();
    m_Sections.erase(m_Sections.begin() + index);
    for (int i = index; i < Count(); ++i) {
        m_Sections[static_cast<std::size_t>(i)]->m_Index = i;
    }
}

CSection* CSectionContainer::Find(const std::string& name) const {
    for (; m_Indexed < m_Sections.size(); ++m_Indexed) {
        CSection* const section = m_Sections[m_Indexed].get();
        m_ByName.try_emplace(section->GetName(), section); // the first of a name stays
    }
    const auto found = m_ByName.find(name);
    return found == m_ByName.end() ? nullptr : found->second;
}

int CSectionContainer::Find(const CSection* section) const {
    return section != nullptr && section->m_Container == this ? section->m_Index : -1;
}

CSection* CSectionContainer::CreateSection(CSection::eType type, const std::string& name,
                                           const CMemoryOrganization& organization) {
    return Add(std::make_unique<CSection>(type, name, organization, m_Owner));
}

int CSectionContainer::RelocationCount() const {
    return std::accumulate(m_Sections.begin(), m_Sections.end(), 0,
                           [](int sum, const auto& section) { return sum + section->RelocationCount(); });
}

int CSectionContainer::SectionDataWordCount() const {
    return std::accumulate(m_Sections.begin(), m_Sections.end(), 0,
                           [](int sum, const auto& section) { return sum + section->GetSectionDataWordCount(); });
}

void CSectionContainer::Free() {
    ForgetNames();
    m_Sections.clear();
}

void CSectionContainer::ForgetNames() {
    m_ByName.clear();
    m_Indexed = 0;
}

} // namespace ObjectFile
