// The cells of a memory, dense or sparse, as ports and test benches see them.
#ifndef MARLUNE_FLIMEMORY_STORAGE_H
#define MARLUNE_FLIMEMORY_STORAGE_H

#include <cstdint>
#include <string>

#include "marlune_int"
#include "src/flimemory/sparsecells.h"
#include "src/flimemory/zeroedpages.h"

namespace marlune::foreign::fli {

/// The contents of one memory instance.
///
/// A cell holds one whole value of a data port, and an address is a cell's index: 0 to m_Size - 1. Exactly one
/// representation is in use: m_Words64 for cells of up to 64 bits, m_WordsWide for wider ones, or m_Contents if the
/// size is SPARSE_SIZE, which means the whole 32-bit address range.
class CStorage {
public:
    using CWord = marlune_int<1024, true>;

    static constexpr std::uint32_t SPARSE_SIZE = 0xFFFFFFFF;
    static constexpr std::uint32_t WORD64_BITS = 64;

    /// All cells read as zero and take no memory until they are touched. Throws CGeneralError if the system cannot
    /// provide the address range.
    CStorage(std::string name, std::uint32_t byteBitWidth, std::uint32_t size);

    /// Whether the cells are numbers of 64 bits, so that accesses may use numbers instead of words.
    bool HoldsNumbers() const { return m_Words64 != nullptr; }

    /// The word at the address; a 64-bit cell is zero-extended, and an absent sparse cell is created. An address
    /// outside the memory is reported in the transcript and gives zero.
    void Read(std::uint32_t address, CWord& value);
    CWord Read(std::uint32_t address) {
        CWord value;
        Read(address, value);
        return value;
    }

    /// Stores the word; a 64-bit cell keeps its low 64 bits, whatever the LAU's width. An address outside the memory is
    /// reported in the transcript, and the write has no effect.
    void Write(std::uint32_t address, const CWord& value);

    /// The same for memories that hold numbers.
    void Read(std::uint32_t address, std::uint64_t& value) {
        value = address < m_Size ? m_Words64[address] : ReportRead(address);
    }
    void Write(std::uint32_t address, std::uint64_t value) {
        if (address < m_Size) {
            m_Words64[address] = value;
        } else {
            ReportWrite(address);
        }
    }

    /// The cells from the first on if they are numbers, else null.
    std::uint64_t* NumbersFrom(std::uint32_t first) { return HoldsNumbers() ? &m_Words64[first] : nullptr; }

    /// Calls visit(address, word) for each cell present from the first to the last address, in order. All cells of a
    /// dense memory are present.
    template <typename TVisitor>
    void VisitCells(std::uint32_t first, std::uint32_t last, TVisitor&& visit);

    /// Writes numbers of 64 bits to `count` cells from the first on, all of them inside the memory.
    void WriteNumbers(std::uint32_t first, const std::uint64_t* numbers, std::uint32_t count);

    /// The same as writing zero to `count` cells from the first on, all of them inside the memory. The cost grows only
    /// with the cells that were ever touched, and no memory is taken for each.
    void FillZero(std::uint32_t first, std::uint32_t count);

    CSparseCells m_Contents;
    CZeroedArray<std::uint64_t> m_Words64;
    CZeroedArray<CWord> m_WordsWide;
    std::string m_Name;           // the instance's path without its leading '/'
    std::uint32_t m_ByteBitWidth; // bits of a LAU
    std::uint32_t m_Size;         // cells

private:
    /// Print the message of an access outside the memory. The result of a read is zero.
    std::uint64_t ReportRead(std::uint32_t address) const;
    void ReportWrite(std::uint32_t address) const;
};

template <typename TVisitor>
void CStorage::VisitCells(std::uint32_t first, std::uint32_t last, TVisitor&& visit) {
    if (m_Words64 == nullptr && m_WordsWide == nullptr) {
        m_Contents.VisitCells(first, last, visit);
        return;
    }
    for (std::uint32_t address = first; address < m_Size && address <= last; ++address) {
        visit(address, Read(address));
    }
}

} // namespace marlune::foreign::fli

#endif
