// Allocation of storages, accesses to whole words, and the messages of out-of-range accesses.
#include "src/flimemory/storage.h"

#include <algorithm>
#include <utility>

#include "general_error"
#include "mti.h"
#include "src/flimemory/simulatortext.h"

namespace marlune::foreign::fli {

namespace {

constexpr const char* READ_OUTSIDE =
    "error: '%s': Access outside of memory, address: %d, max value: %d. Returning 0.\n";
constexpr const char* WRITE_OUTSIDE =
    "error: '%s': Access outside of memory, address: %d, max value: %d. Not writing anything.\n";

/// Addresses and sizes of 2^31 and more print as negative numbers.
void PrintOutside(const char* format, const CStorage& storage, std::uint32_t address) {
    mti_PrintFormatted(SimulatorText(format), storage.m_Name.c_str(), static_cast<int>(address),
                       static_cast<int>(storage.m_Size));
}

} // namespace

CStorage::CStorage(std::string name, std::uint32_t byteBitWidth, std::uint32_t size)
    : m_Name(std::move(name)), m_ByteBitWidth(byteBitWidth), m_Size(size) {
    if (m_Size == SPARSE_SIZE) {
        return;
    }
    if (m_ByteBitWidth <= WORD64_BITS) {
        m_Words64 = MakeZeroedArray<std::uint64_t>(m_Size);
    } else {
        m_WordsWide = MakeZeroedArray<CWord>(m_Size);
    }
    if (m_Words64 == nullptr && m_WordsWide == nullptr) {
        throw exceptions::CGeneralError("Cannot allocate memory '" + m_Name + "' of " + std::to_string(m_Size) +
                                        " cells.");
    }
}

std::uint64_t CStorage::ReportRead(std::uint32_t address) const {
    PrintOutside(READ_OUTSIDE, *this, address);
    return 0;
}

void CStorage::ReportWrite(std::uint32_t address) const {
    PrintOutside(WRITE_OUTSIDE, *this, address);
}

void CStorage::Read(std::uint32_t address, CWord& value) {
    if (address >= m_Size) {
        value = CWord::FromUnsigned(ReportRead(address));
    } else if (m_Words64 != nullptr) {
        value = CWord::FromUnsigned(m_Words64[address]);
    } else if (m_WordsWide != nullptr) {
        value = m_WordsWide[address];
    } else {
        value = m_Contents.Read(address);
    }
}

void CStorage::Write(std::uint32_t address, const CWord& value) {
    if (address >= m_Size) {
        ReportWrite(address);
    } else if (m_Words64 != nullptr) {
        m_Words64[address] = value.Low64();
    } else if (m_WordsWide != nullptr) {
        m_WordsWide[address] = value;
    } else {
        m_Contents.Write(address, value);
    }
}

void CStorage::WriteNumbers(std::uint32_t first, const std::uint64_t* numbers, std::uint32_t count) {
    if (m_Words64 != nullptr) {
        std::copy_n(numbers, count, &m_Words64[first]);
    } else if (m_WordsWide != nullptr) {
        std::transform(numbers, numbers + count, &m_WordsWide[first], CWord::FromUnsigned);
    } else {
        m_Contents.WriteNumbers(first, numbers, count);
    }
}

void CStorage::FillZero(std::uint32_t first, std::uint32_t count) {
    if (m_Words64 != nullptr) {
        ClearBytes(&m_Words64[first], count * sizeof(std::uint64_t));
    } else if (m_WordsWide != nullptr) {
        ClearBytes(&m_WordsWide[first], count * sizeof(CWord));
    } else {
        m_Contents.FillZero(first, count);
    }
}

} // namespace marlune::foreign::fli
