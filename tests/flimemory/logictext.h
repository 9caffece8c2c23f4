// Vectors of DPI, written as text, and accesses with them.
#ifndef MARLUNE_TESTS_FLIMEMORY_LOGICTEXT_H
#define MARLUNE_TESTS_FLIMEMORY_LOGICTEXT_H

#include <string>
#include <vector>

#include "svdpi.h"
#include "tests/flimemory/library.h"

/// A vector as text, bit 0 last, of the letters 0, 1, z and x.
class CLogicText {
public:
    explicit CLogicText(const std::string& letters) : m_Records((letters.size() + 31) / 32), m_Size(letters.size()) {
        for (std::size_t i = 0; i < m_Size; ++i) {
            svPutBitselLogic(m_Records.data(), static_cast<int>(i),
                             static_cast<svLogic>(std::string("01zx").find(letters[m_Size - 1 - i])));
        }
    }
    std::string Letters() const {
        std::string letters;
        for (std::size_t i = m_Size; i-- > 0;) {
            letters += "01zx"[svGetBitselLogic(m_Records.data(), static_cast<int>(i))];
        }
        return letters;
    }

    std::vector<svLogicVecVal> m_Records;

private:
    std::size_t m_Size;
};

inline void DpiWrite(const std::string& memory, unsigned address, const std::string& letters) {
    const CLogicText vector(letters);
    EntryPoint(marlune_dpi_memory_write, "marlune_dpi_memory_write")(memory.c_str(), address, vector.m_Records.data());
}

/// What a read makes of a vector.
inline std::string DpiRead(const std::string& memory, unsigned address, const std::string& vectorBefore) {
    CLogicText vector(vectorBefore);
    EntryPoint(marlune_dpi_memory_read, "marlune_dpi_memory_read")(memory.c_str(), address, vector.m_Records.data());
    return vector.Letters();
}

#endif
