#ifndef MARLUNE_FLIMEMORY_LOADMEMORY_H
#define MARLUNE_FLIMEMORY_LOADMEMORY_H

#include <algorithm>
#include <array>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>

#include "general_error"
#include "objectfile/objectfile.h"
#include "objectfile/section.h"

namespace marlune::foreign {

/// Which LAUs of an address space a memory takes, and where it puts them; all addresses count LAUs. Of the range
/// m_LowAddress to m_HighAddress, inclusive, it takes every m_Stride-th from m_Phase on, into the cells from
/// m_CellBase / m_Stride on.
struct CLoadWindow {
    unsigned m_CellBase;
    unsigned m_LowAddress;
    unsigned m_HighAddress;
    unsigned m_Phase;
    unsigned m_Stride;

    /// The number of LAUs in the range; the whole 32-bit range counts as 0xFFFFFFFF.
    std::uint32_t RangeLength() const {
        const std::uint32_t difference = std::max(m_LowAddress, m_HighAddress) - std::min(m_LowAddress, m_HighAddress);
        return difference == std::numeric_limits<std::uint32_t>::max() ? difference : difference + 1;
    }
};

/// Where a section's LAUs go: those with indices m_Index, m_Index + stride, ... below m_End, into the cells from
/// m_Cell.
struct CPlacement {
    std::uint64_t m_Index;
    std::uint64_t m_End;
    std::uint64_t m_Cell;
};

/// The placement of a section of so many LAUs at the address, or none where it lies outside of the range. Sums are
/// formed in 64 bits, so that nothing wraps. Throws CGeneralError for a stride of 0.
inline std::optional<CPlacement> PlaceSection(const CLoadWindow& window, std::uint32_t address, std::uint64_t units) {
    const std::uint64_t start = address;
    const std::uint64_t low = window.m_LowAddress;
    const std::uint64_t high = window.m_HighAddress;
    const std::uint64_t stride = window.m_Stride;
    if (high < start || low > start + units) {
        return std::nullopt;
    }
    if (stride == 0) {
        throw exceptions::CGeneralError("Stride must be greater than zero.");
    }
    const std::uint64_t end = high < start + units ? high + 1 - start : units;
    const std::uint64_t firstCell = window.m_CellBase / stride;
    if (low >= start) {
        return CPlacement{window.m_Phase + low - start, end, window.m_Phase / stride + firstCell};
    }
    const std::uint64_t distance = start - low;
    std::uint64_t grid = window.m_Phase + low + distance / stride * stride;
    if (grid < start) {
        grid += stride;
    }
    const std::uint64_t index = grid - start;
    return CPlacement{index, end, (distance + index) / stride + firstCell};
}

/// Whether the section takes part in a load of the address space. Throws CGeneralError if it would but has no place
/// yet.
inline bool IsLoaded(const ObjectFile::CSection& section, const std::string& addressSpace, bool includeStackHeap) {
    using ObjectFile::CSection;
    if (section.GetType() == CSection::TYPE_DEBUG || section.GetType() == CSection::TYPE_INFO) {
        return false;
    }
    if (!includeStackHeap && (section.IsStack(includeStackHeap) || section.IsHeap(includeStackHeap))) {
        return false;
    }
    if (section.GetAddressSpaceName() != addressSpace) {
        return false;
    }
    if (!section.GetMemoryByteAddressIsAbsolute()) {
        throw exceptions::CGeneralError("Loaded file does not contain absolute sections.");
    }
    return true;
}

/// Throws CGeneralError when the section's LAUs are not as wide as the memory's.
template <typename CStorage>
void CheckUnitWidth(const CStorage& storage, const ObjectFile::CObjectFile& objectFile,
                    const ObjectFile::CSectionData& data) {
    const auto width = static_cast<std::uint32_t>(data.GetByteLength(0));
    if (width != storage.m_ByteBitWidth) {
        const std::string name = storage.m_Name.substr(storage.m_Name.rfind('/') + 1);
        throw exceptions::CGeneralError("LAU mismatch: memory '" + name + "' has different LAU bitwidth (" +
                                        std::to_string(storage.m_ByteBitWidth) + ") than data stored in object file '" +
                                        objectFile.GetFileName() + "' (" + std::to_string(width) + ").");
    }
}

/// Copies section contents into a storage's cells. LAUs in packed form go as numbers, any other as the text that it is.
template <typename CStorage>
class CUnitCopier {
public:
    /// With reversed the bits of each LAU are flipped end for end. The step is that between LAUs.
    CUnitCopier(CStorage& storage, const ObjectFile::CSectionData& data, unsigned step, bool reversed)
        : m_Storage(storage), m_Data(data),
          m_Step(static_cast<int>(std::min(step, static_cast<unsigned>(std::numeric_limits<int>::max())))),
          m_Reversed(reversed) {}

    /// Copies count LAUs, which lie in the section, to as many cells, which lie in the storage.
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
    using CWord = typename CStorage::CWord;
    static constexpr int NUMBERS = 1024;

    /// As many as there are in packed form, but not all at once.
    int CopyNumbers(int index, std::uint32_t cell, int count) {
        const std::int64_t span = (count - std::int64_t{1}) * m_Step + 1;
        if (m_Data.IsUntouchedZero(index, static_cast<int>(span))) {
            m_Storage.FillZero(cell, static_cast<std::uint32_t>(count));
            return count;
        }
        if (m_Storage.m_Words64 != nullptr) {
            return m_Data.CopyBytes(index, m_Step, count, m_Reversed, &m_Storage.m_Words64[cell]);
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

    CStorage& m_Storage;
    const ObjectFile::CSectionData& m_Data;
    const int m_Step;
    const bool m_Reversed;
    std::array<std::uint64_t, NUMBERS> m_Numbers{};
};

/// Copies the sections of one address space into a memory, a LAU to a cell: those that are not of debug or information
/// type, and stack and heap only if asked for. Cells that no section covers keep their contents.
///
/// The bits of a little-endian section are flipped end for end, but not those of a memory of 1 bit. Throws
/// CGeneralError for a section without an absolute address, for LAUs of another width than the memory's and for a
/// stride of 0; what was stored before stays.
template <typename CStorage>
void LoadMemory(CStorage& storage, ObjectFile::CObjectFile const& objectFile, std::string const& addressSpace,
                unsigned int cellBase, unsigned int lowAddress, unsigned int highAddress, unsigned int phase,
                unsigned int stride, bool includeStackHeap) {
    const CLoadWindow window{cellBase, lowAddress, highAddress, phase, stride};
    const std::uint64_t cellLimit = std::min(window.RangeLength(), storage.m_Size);
    for (int i = 0; i < objectFile.SectionsCount(); ++i) {
        const ObjectFile::CSection& section = *objectFile.GetSection(i);
        if (!IsLoaded(section, addressSpace, includeStackHeap)) {
            continue;
        }
        const auto units = static_cast<std::uint64_t>(std::max(section.GetSectionDataByteCount(), 0));
        if (units > 0) {
            CheckUnitWidth(storage, objectFile, *section.GetSectionData());
        }
        const auto placement = PlaceSection(window, static_cast<std::uint32_t>(section.GetMemoryByteAddress()), units);
        if (!placement || placement->m_Index >= placement->m_End || placement->m_Cell >= cellLimit) {
            continue;
        }
        const std::uint64_t taken = (placement->m_End - placement->m_Index + stride - 1) / stride;
        const std::uint64_t count = std::min(taken, cellLimit - placement->m_Cell);
        const bool reversed = storage.m_ByteBitWidth > 1 && section.GetByteOrder() == ObjectFile::BO_LITTLE;
        CUnitCopier<CStorage>(storage, *section.GetSectionData(), stride, reversed)
            .Copy(static_cast<int>(placement->m_Index), static_cast<std::uint32_t>(placement->m_Cell),
                  static_cast<int>(count));
    }
}

} // namespace marlune::foreign

#endif
