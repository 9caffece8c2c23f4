// Loading: copies section contents into the cells of a memory.
#ifndef MARLUNE_FLIMEMORY_LOADMEMORY_H
#define MARLUNE_FLIMEMORY_LOADMEMORY_H

#include <algorithm>
#include <array>
#include <cstdint>
#include <limits>
#include <string>

#include "objectfile/objectfile.h"
#include "objectfile/section.h"
#include "src/flimemory/loadplan.h"

namespace marlune::foreign {

/// Copies section contents into a storage's cells. LAUs in packed form are copied as numbers, all others as text.
///
/// TStorage has these of CStorage: the type CWord, the members m_Name, m_ByteBitWidth and m_Size (for LoadMemory only),
/// and Write, WriteNumbers, FillZero and NumbersFrom.
template <typename TStorage>
class CLauCopier {
public:
    CLauCopier(TStorage& storage, const ObjectFile::CSectionData& data, const CSectionCopy& copy)
        : m_Storage(storage), m_Data(data),
          m_Step(static_cast<int>(std::min(copy.m_Stride, static_cast<unsigned>(std::numeric_limits<int>::max())))),
          m_Reversed(copy.m_Reversed) {}

    /// Copies `count` LAUs of the section to as many cells of the storage. All must exist.
    void Copy(int index, std::uint32_t cell, int count) {
        while (count > 0) {
            int copied = CopyNumbers(index, cell, count);
            if (copied == 0) {
                m_Storage.Write(cell, WordOfText(index));
                copied = 1;
            }
            index = static_cast<int>(index + std::int64_t{copied} * m_Step); // beyond the last one it does not matter
            cell += static_cast<std::uint32_t>(copied);
            count -= copied;
        }
    }

private:
    using CWord = typename TStorage::CWord;
    static constexpr int NUMBERS = 1024;

    /// Copies LAUs in packed form, perhaps not all of them. Returns how many.
    int CopyNumbers(int index, std::uint32_t cell, int count) {
        const std::int64_t span = (count - std::int64_t{1}) * m_Step + 1;
        if (m_Data.IsUntouchedZero(index, static_cast<int>(span))) {
            m_Storage.FillZero(cell, static_cast<std::uint32_t>(count));
            return count;
        }
        if (std::uint64_t* const numbers = m_Storage.NumbersFrom(cell)) {
            return m_Data.CopyBytes(index, m_Step, count, m_Reversed, numbers);
        }
        const int copied = m_Data.CopyBytes(index, m_Step, std::min(count, NUMBERS), m_Reversed, m_Numbers.data());
        m_Storage.WriteNumbers(cell, m_Numbers.data(), static_cast<std::uint32_t>(copied));
        return copied;
    }

    CWord WordOfText(int index) const {
        std::string text = m_Data.GetByte(index);
        if (m_Reversed) {
            std::reverse(text.begin(), text.end());
        }
        return CWord("0b" + text);
    }

    TStorage& m_Storage;
    const ObjectFile::CSectionData& m_Data;
    const int m_Step;
    const bool m_Reversed;
    std::array<std::uint64_t, NUMBERS> m_Numbers{};
};

/// Copies the sections of one address space into a memory, a LAU to a cell, as PlanSection says. Cells that no section
/// covers keep their contents. Throws what PlanSection does; what was stored before stays.
template <typename TStorage>
CLoadResult LoadMemory(TStorage& storage, ObjectFile::CObjectFile const& objectFile, std::string const& addressSpace,
                       unsigned int cellBase, unsigned int lowAddress, unsigned int highAddress, unsigned int phase,
                       unsigned int stride, bool includeStackHeap) {
    const CLoadWindow window{cellBase, lowAddress, highAddress, phase, stride};
    const CLoadTarget target{storage.m_Name, storage.m_ByteBitWidth, storage.m_Size};
    CLoadResult result;
    for (int i = 0; i < objectFile.SectionsCount(); ++i) {
        const ObjectFile::CSection& section = *objectFile.GetSection(i);
        if (const auto copy = PlanSection(section, objectFile, addressSpace, window, target, includeStackHeap)) {
            CLauCopier<TStorage>(storage, *section.GetSectionData(), *copy)
                .Copy(copy->m_Index, copy->m_Cell, copy->m_Count);
            result.m_HasStored = true;
            if (copy->m_Beyond > 0 && result.m_CutSection == nullptr) {
                result.m_CutSection = &section;
                result.m_CutCount = copy->m_Beyond;
            }
        }
    }
    return result;
}

} // namespace marlune::foreign

#endif
