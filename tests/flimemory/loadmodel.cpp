#include "tests/flimemory/loadmodel.h"

#include <algorithm>

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

} // namespace

CSection& AddSection(CObjectFile& file, unsigned long long address, const std::string& bits, int wordBitSize,
                     int bytesPerWord, ObjectFile::eByteOrder order, CSection::eType type, const std::string& name) {
    CSection& section = *file.CreateSection(type, name, CObjectFile(wordBitSize, bytesPerWord, order, "ram"));
    section.SetMemoryByteAddress(address);
    section.SetMemoryByteAddressIsAbsolute(true);
    section.AddData(bits.c_str());
    return section;
}

void AddRandomSections(CObjectFile& file, std::mt19937& random, int wordBitSize, int bytesPerWord) {
    const auto width = static_cast<std::size_t>(wordBitSize / bytesPerWord);
    for (auto sections = random() % 3; sections > 0; --sections) {
        const auto order = random() % 2 == 0 ? ObjectFile::BO_BIG : ObjectFile::BO_LITTLE;
        CSection& section = AddSection(file, NearAPlace(random, 60), "", wordBitSize, bytesPerWord, order);
        if (random() % 5 == 0) {
            section.CreateSectionData()->FillZero(static_cast<int>(random() % 80));
        } else {
            section.AddData(RandomBits(random, (random() % 80) * width).c_str());
        }
    }
}

CWindow RandomWindow(std::mt19937& random) {
    CWindow window{static_cast<unsigned>(random() % 9), NearAPlace(random, 90), NearAPlace(random, 90),
                   static_cast<unsigned>(random() % 5), static_cast<unsigned>(1 + random() % 4)};
    if (random() % 3 == 0) {
        window.m_Low = 0;
        window.m_High = 0xFFFFFFFF;
    }
    return window;
}

std::map<std::uint64_t, std::string> ExpectedCells(const CObjectFile& file, const CWindow& window, std::uint64_t size) {
    std::map<std::uint64_t, std::string> cells;
    const std::uint64_t range = window.m_High > window.m_Low ? window.m_High - std::uint64_t{window.m_Low}
                                                             : window.m_Low - std::uint64_t{window.m_High};
    const std::uint64_t limit = std::min(size, range == 0xFFFFFFFF ? range : range + 1);
    for (int s = 0; s < file.SectionsCount(); ++s) {
        const CSection& section = *file.GetSection(s);
        const std::int64_t start = static_cast<std::uint32_t>(section.GetMemoryByteAddress());
        const std::int64_t low = window.m_Low;
        const std::int64_t firstGroup = start > low ? (start - low) / window.m_Stride : 0;
        for (int k = 0; k < section.GetSectionDataByteCount(); ++k) {
            const std::int64_t address = start + k;
            const std::int64_t offset = address - low - window.m_Phase;
            if (address > window.m_High || offset < 0 || offset % window.m_Stride != 0 ||
                offset / window.m_Stride < firstGroup) {
                continue;
            }
            const auto cell =
                static_cast<std::uint64_t>((address - low) / window.m_Stride + window.m_CellBase / window.m_Stride);
            if (cell < limit) {
                std::string bits = section.GetSectionData()->GetByte(k);
                if (bits.size() > 1 && section.GetByteOrder() == ObjectFile::BO_LITTLE) {
                    bits.assign(bits.rbegin(), bits.rend());
                }
                cells[cell] = bits;
            }
        }
    }
    return cells;
}
