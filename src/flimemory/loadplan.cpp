// Decides which cells get which LAUs of an image.
#include "src/flimemory/loadplan.h"

#include <algorithm>
#include <limits>

#include "general_error"

namespace marlune::foreign {

using exceptions::CGeneralError;
using ObjectFile::CSection;

std::uint32_t CLoadWindow::RangeLength() const {
    const std::uint32_t difference = std::max(m_LowAddress, m_HighAddress) - std::min(m_LowAddress, m_HighAddress);
    return difference == std::numeric_limits<std::uint32_t>::max() ? difference : difference + 1;
}

bool IsLoaded(const CSection& section, const std::string& addressSpace, bool includeStackHeap) {
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
        throw CGeneralError("Loaded file does not contain absolute sections.");
    }
    return true;
}

void CheckLauWidth(const CLoadTarget& target, const ObjectFile::CObjectFile& objectFile,
                   const ObjectFile::CSectionData& data) {
    const auto width = static_cast<std::uint32_t>(data.GetByteLength(0));
    if (width != target.m_ByteBitWidth) {
        const std::string name = target.m_Name.substr(target.m_Name.rfind('/') + 1);
        throw CGeneralError("LAU mismatch: memory '" + name + "' has different LAU bitwidth (" +
                            std::to_string(target.m_ByteBitWidth) + ") than data stored in object file '" +
                            objectFile.GetFileName() + "' (" + std::to_string(width) + ").");
    }
}

std::optional<CPlacement> PlaceSection(const CLoadWindow& window, std::uint32_t address, std::uint64_t count) {
    const std::uint64_t start = address;
    const std::uint64_t low = window.m_LowAddress;
    const std::uint64_t high = window.m_HighAddress;
    const std::uint64_t stride = window.m_Stride;
    if (high < start || low > start + count) {
        return std::nullopt;
    }
    if (stride == 0) {
        throw CGeneralError("Stride must be greater than zero.");
    }
    const std::uint64_t end = high < start + count ? high + 1 - start : count;
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

std::optional<CSectionCopy> PlanSection(const CSection& section, const ObjectFile::CObjectFile& objectFile,
                                        const std::string& addressSpace, const CLoadWindow& window,
                                        const CLoadTarget& target, bool includeStackHeap) {
    if (!IsLoaded(section, addressSpace, includeStackHeap)) {
        return std::nullopt;
    }
    const auto available = static_cast<std::uint64_t>(std::max(section.GetSectionDataByteCount(), 0));
    if (available > 0) {
        CheckLauWidth(target, objectFile, *section.GetSectionData());
    }
    const auto place = PlaceSection(window, static_cast<std::uint32_t>(section.GetMemoryByteAddress()), available);
    const std::uint64_t cellLimit = std::min(window.RangeLength(), target.m_Size);
    if (!place || place->m_Index >= place->m_End || place->m_Cell >= cellLimit) {
        return std::nullopt;
    }
    const std::uint64_t taken = (place->m_End - place->m_Index + window.m_Stride - 1) / window.m_Stride;
    CSectionCopy copy{};
    copy.m_Index = static_cast<int>(place->m_Index);
    copy.m_Cell = static_cast<std::uint32_t>(place->m_Cell);
    copy.m_Count = static_cast<int>(std::min(taken, cellLimit - place->m_Cell));
    copy.m_Beyond = cellLimit == target.m_Size ? static_cast<int>(taken) - copy.m_Count : 0;
    copy.m_Stride = window.m_Stride;
    copy.m_Reversed = target.m_ByteBitWidth > 1 && section.GetByteOrder() == ObjectFile::BO_LITTLE;
    return copy;
}

} // namespace marlune::foreign
