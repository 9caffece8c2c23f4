// Loads arbitrary bytes as a text object file. What loads is used as a memory loader would use it, saved, and loaded
// again from what was saved.
#include "fuzz/inputfile.h"
#include "objectfile/objectfile.h"

#include <algorithm>
#include <iostream>
#include <vector>

using namespace ObjectFile;

namespace {

/// Reads some bytes in each of the ways there are; all must agree.
void ReadSection(const CSection& section) {
    constexpr int CELLS = 64;
    const CSectionData* const data = section.GetSectionData();
    if (data == nullptr || data->GetByteBitSize() > 64) {
        return;
    }
    for (int address = 0; address < std::min(data->GetByteCount(), 1000);) {
        std::vector<std::uint64_t> cells(CELLS);
        const int copied = data->CopyBytes(address, 1, CELLS, false, cells.data());
        for (int i = 0; i < copied; ++i) {
            if (ConvBinToInt(data->GetByte(address + i), BO_BIG) != cells[static_cast<std::size_t>(i)]) {
                std::abort();
            }
        }
        address += std::max(copied, 1);
    }
}

bool Load(CObjectFile& objectFile) {
    try {
        CInputStream in(FilePath(), '\n');
        objectFile.LoadFromStream(in);
        for (int i = 0; i < objectFile.SectionsCount(); ++i) {
            ReadSection(*objectFile.GetSection(i));
            objectFile.GetSection(i)->IsStack(true);
        }
    } catch (const std::bad_alloc&) {
        throw;
    } catch (const std::exception&) {
        return false;
    }
    return true;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    std::cerr.setstate(std::ios::failbit); // warnings are not of interest
    WriteInput(bytes, size);
    CObjectFile objectFile;
    if (!Load(objectFile)) {
        return 0;
    }
    try {
        objectFile.SaveFile(FilePath());
    } catch (const general_error&) {
        return 0; // lines that belong to no record can make records overlap
    }
    CObjectFile again;
    Load(again);
    return 0;
}
