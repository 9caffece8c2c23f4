// The record of a file that holds all section headers.
#ifndef MARLUNE_OBJECTFILE_SECTIONCONTAINER_H
#define MARLUNE_OBJECTFILE_SECTIONCONTAINER_H

#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_set>
#include <utility>

#include "objectfile/persistentobject.h"
#include "objectfile/section.h"

namespace ObjectFile {

/// The sections of one object file in order.
class CSectionContainer : public CPersistentObject {
public:
    /// `count` sections are read by LoadFromStream; the owner is borrowed.
    CSectionContainer(CObjectFile* owner, int lineAddress, int count);

    int Count() const override { return static_cast<int>(m_Sections.size()); }
    int GetLineAddress() const override { return m_LineAddress; }
    void SetLineAddress(int lineAddress) override { m_LineAddress = lineAddress; }
    int GetLineSize() const override { return LINES_PER_SECTION * Count(); }
    void LoadFromStream(CInputStream& in, Queue& queue) override;
    void SaveToStream(COutputStream& out, Queue& queue) override;

    /// None if there is no such section.
    CSection* Get(int index) const;
    /// Takes ownership of the section.
    void Add(CSection* section);
    CSection* Add(std::unique_ptr<CSection> section);
    /// Removes and destroys the section; does nothing if it is not in the container.
    void Delete(CSection* section);
    /// The first section of that name, or none.
    CSection* Find(const std::string& name) const;
    /// The section's index, -1 if it is not in the container. The pointer is not dereferenced before that is known,
    /// because the section may have been destroyed.
    int Find(const CSection* section) const;
    CSection* CreateSection(CSection::eType type, const std::string& name, const CMemoryOrganization& organization);

    int RelocationCount() const;
    int SectionDataWordCount() const;
    /// Destroys all sections.
    void Free();

private:
    friend class CSection;
    static constexpr int LINES_PER_SECTION = 17;

    /// The index of a section of this container.
    int IndexOf(const CSection& section) const;
    /// Gives a section of this container another name.
    void Rename(CSection& section, const std::string& name);

    using CNameKey = std::pair<std::string_view, std::uint64_t>; // a view of the section's name, and its number
    static CNameKey KeyOf(const CSection& section);

    void Index() const;

    std::deque<std::unique_ptr<CSection>> m_Sections; // by ascending number
    std::uint64_t m_NextNumber = 0;
    // Indices of the first m_Members.size() sections, filled when asked for
    mutable std::unordered_set<const CSection*> m_Members;
    mutable std::map<CNameKey, CSection*> m_ByName;
    mutable bool m_WasAsked = false; // for a name
    CObjectFile* m_Owner;
    int m_LineAddress;
    int m_PendingCount;
};

} // namespace ObjectFile

#endif
