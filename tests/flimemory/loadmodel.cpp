// The model of a load: each LAU is asked on its own.
#include "tests/flimemory/loadmodel.h"

#include <algorithm>
#include <iterator>
#include <stdexcept>

#include "src/flimemory/loadmemory.h"
#include "src/flimemory/storage.h"

using marlune::foreign::fli::CStorage;
using ObjectFile::CObjectFile;
using ObjectFile::CSection;

namespace {

std::string RandomBits(std::mt19937& random, std::size_t count) {
    std::string bits;
    for (std::size_t i = 0; i < count; ++i) {
        bits += static_cast<char>('0' + random() % 2);
    }
    return bits;
}

std::uint32_t NearAPlace(std::mt19937& random, unsigned spread) {
    const std::uint32_t places[] = {0, 100, 0xFFFFFFFFU - 60};
    return places[random() % 3] + static_cast<std::uint32_t>(random() % spread);
}

constexpr std::size_t MAX_WIDTH = 1024; // of a memory
constexpr unsigned CELLS = 200;         // compared of each memory

/// Digits of a LAU, at least 1.
std::size_t WidthOf(const CSection& section) {
    return static_cast<std::size_t>(
        std::max(1, ObjectFile::CSectionData::ByteBitSizeOf(section.GetWordBitSize(), section.GetBytesPerWord())));
}

/// Stores a section's LAUs in cells below the limit, with `reversed` their bits end for end.
void Take(const CSection& section, const CLoadWindow& window, std::uint64_t limit, bool reversed,
          std::map<std::uint64_t, std::string>& cells) {
    const std::int64_t start = static_cast<std::uint32_t>(section.GetMemoryByteAddress());
    const std::int64_t low = window.m_LowAddress;
    const std::int64_t firstGroup = start > low ? (start - low) / window.m_Stride : 0;
    for (int k = 0; k < section.GetSectionDataByteCount(); ++k) {
        const std::int64_t address = start + k;
        const std::int64_t offset = address - low - window.m_Phase;
        const auto cell =
            static_cast<std::uint64_t>((address - low) / window.m_Stride + window.m_CellBase / window.m_Stride);
        if (address > window.m_HighAddress || offset < 0 || offset % window.m_Stride != 0 ||
            offset / window.m_Stride < firstGroup || cell >= limit) {
            continue;
        }
        std::string bits = section.GetSectionData()->GetByte(k);
        if (reversed) {
            bits.assign(bits.rbegin(), bits.rend());
        }
        cells[cell] = bits;
    }
}

} // namespace

void AddRandomSections(CObjectFile& file, std::mt19937& random, int wordBitSize, int bytesPerWord) {
    constexpr CSection::eType TYPES[] = {CSection::TYPE_DATA, CSection::TYPE_TEXT, CSection::TYPE_DEBUG,
                                         CSection::TYPE_INFO};
    const char* const names[] = {".data", ".stack", ".heap", ".text"};
    const char* const spaces[] = {"ram", "ra", "rom", ""};
    const auto pick = [&](auto& list) { return list[random() % 3 == 0 ? random() % std::size(list) : 0]; };
    const auto width = static_cast<std::size_t>(wordBitSize / bytesPerWord);
    for (auto sections = random() % 3; sections > 0; --sections) {
        const auto order = random() % 2 == 0 ? ObjectFile::BO_BIG : ObjectFile::BO_LITTLE;
        CSection& section =
            *file.CreateSection(pick(TYPES), pick(names), {wordBitSize, bytesPerWord, order, pick(spaces)});
        section.SetMemoryByteAddress(NearAPlace(random, 60));
        section.SetMemoryByteAddressIsAbsolute(true);
        ObjectFile::CSectionData& data = *section.CreateSectionData();
        data.FillZero(static_cast<int>(random() % 80));
        for (int i = random() % 5 == 0 ? data.GetByteCount() : 0; i < data.GetByteCount(); ++i) {
            data.SetByte(i, RandomBits(random, width));
        }
    }
}

CLoadWindow RandomWindow(std::mt19937& random) {
    CLoadWindow window{static_cast<unsigned>(random() % 9), NearAPlace(random, 90), NearAPlace(random, 90),
                       static_cast<unsigned>(random() % 5), static_cast<unsigned>(1 + random() % 4)};
    if (random() % 3 == 0) {
        window.m_LowAddress = 0;
        window.m_HighAddress = 0xFFFFFFFF;
    }
    return window;
}

CExpectedLoad ExpectedLoad(const CObjectFile& file, const std::string& space, const CLoadWindow& window,
                           std::size_t width, std::uint64_t size, bool includeStackHeap) {
    CExpectedLoad load;
    const std::uint64_t range = window.m_HighAddress > window.m_LowAddress
                                    ? window.m_HighAddress - std::uint64_t{window.m_LowAddress}
                                    : window.m_LowAddress - std::uint64_t{window.m_HighAddress};
    const std::uint64_t limit = std::min(size, range == 0xFFFFFFFF ? range : range + 1);
    try {
        for (int s = 0; s < file.SectionsCount(); ++s) {
            const CSection& section = *file.GetSection(s);
            const bool isStackOrHeap = section.GetName() == ".stack" || section.GetName() == ".heap";
            const bool isWanted = section.GetType() != CSection::TYPE_DEBUG &&
                                  section.GetType() != CSection::TYPE_INFO && (includeStackHeap || !isStackOrHeap) &&
                                  section.GetAddressSpaceName() == space;
            if (isWanted && !section.GetMemoryByteAddressIsAbsolute()) {
                return {load.m_Cells, "General error: Loaded file does not contain absolute sections."};
            }
            if (!isWanted || section.GetSectionDataByteCount() < 1) {
                continue;
            }
            if (section.GetSectionData()->GetByte(0).size() != width) {
                return {load.m_Cells, "General error: LAU mismatch"};
            }
            Take(section, window, limit, width > 1 && section.GetByteOrder() == ObjectFile::BO_LITTLE, load.m_Cells);
        }
    } catch (const std::out_of_range& error) { // a LAU that its line does not hold
        load.m_Error = error.what();
    }
    return load;
}

std::string CheckLoad(const CObjectFile& file, std::mt19937& random) {
    const CSection& section =
        *file.GetSection(static_cast<int>(random() % static_cast<unsigned>(file.SectionsCount())));
    const auto width = std::min<std::size_t>(WidthOf(section) + (random() % 20 == 0 ? 1 : 0), MAX_WIDTH);
    const bool includeStackHeap = random() % 4 == 0;
    const auto size = random() % 3 == 0 ? CStorage::SPARSE_SIZE : static_cast<unsigned>(random() % CELLS);
    CLoadWindow window = RandomWindow(random);
    if (random() % 3 > 0) {
        window.m_LowAddress = static_cast<unsigned>(section.GetMemoryByteAddress() + random() % 60 - 30);
        window.m_HighAddress = static_cast<unsigned>(window.m_LowAddress + random() % 90);
    }
    CStorage storage("top/mem", static_cast<unsigned>(width), size);
    std::string error;
    for (unsigned cell = 0; cell < std::min(size, CELLS); ++cell) {
        storage.Write(cell, CStorage::CWord(3));
    }
    try {
        marlune::foreign::LoadMemory(storage, file, section.GetAddressSpaceName(), window.m_CellBase,
                                     window.m_LowAddress, window.m_HighAddress, window.m_Phase, window.m_Stride,
                                     includeStackHeap);
    } catch (const std::exception& thrown) {
        error = thrown.what();
    }
    for (int i = 0; i < file.SectionsCount(); ++i) {
        if (file.GetSection(i)->GetSectionDataByteCount() > 5000 || WidthOf(*file.GetSection(i)) > MAX_WIDTH) {
            return ""; // too long for the model
        }
    }
    CExpectedLoad expected = ExpectedLoad(file, section.GetAddressSpaceName(), window, width, size, includeStackHeap);
    if (error.empty() != expected.m_Error.empty() || error.rfind(expected.m_Error, 0) != 0) {
        return "a load ends in '" + error + "', not in '" + expected.m_Error + "'";
    }
    for (unsigned cell = 0; cell < std::min(size, CELLS); ++cell) {
        expected.m_Cells.emplace(cell, "11"); // not loaded into
    }
    for (const auto& [cell, bits] : expected.m_Cells) {
        const bool cut = size != CStorage::SPARSE_SIZE && width <= 64 && bits.size() > 64; // as a cell does
        const CStorage::CWord word("0b" + (cut ? bits.substr(bits.size() - 64) : bits));
        if (!(storage.Read(static_cast<unsigned>(cell)) == word)) {
            return "cell " + std::to_string(cell);
        }
    }
    return "";
}
