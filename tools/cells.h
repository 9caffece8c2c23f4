#ifndef MARLUNE_TOOLS_CELLS_H
#define MARLUNE_TOOLS_CELLS_H

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "marlune_int"

namespace marlune::tool {

/// A memory to load an image into outside of a simulator: it has what foreign::LoadMemory asks of a storage. Cells take
/// memory only near those that are not zero.
class CCells {
public:
    using CWord = marlune_int<1024, true>;

    /// A range of cells.
    struct SRun {
        std::uint32_t m_First;
        std::uint64_t m_End; // behind the last
    };

    /// `width` in bits, 1 to 1024; `size` in cells.
    CCells(std::string name, std::uint32_t width, std::uint32_t size);

    /// Keeps the low `width` bits: what a test bench reads back.
    void Write(std::uint32_t cell, const CWord& value);

    /// Writes numbers to as many cells.
    void WriteNumbers(std::uint32_t first, const std::uint64_t* numbers, std::uint32_t count);

    /// Stores 0 in `count` cells and takes no memory for it.
    void FillZero(std::uint32_t first, std::uint32_t count);

    /// The cell in limbs of 32 bits, the least significant first; none where it and its neighbours are zero.
    const std::uint32_t* Find(std::uint32_t cell) const;
    /// The first cell at or after `cell` near others that are not zero (within an aligned block of PAGE_CELLS);
    /// m_Size when there is none.
    std::uint32_t NextPage(std::uint32_t cell) const;
    /// The cells that were written to, ascending, neighbours joined.
    std::vector<SRun> WrittenRuns() const;

    static constexpr std::uint32_t PAGE_CELLS = 1024;
    static constexpr std::uint64_t* m_Words64 = nullptr; // there is no array of words to store numbers into directly

    const std::string m_Name;
    const std::uint32_t m_ByteBitWidth;
    const std::uint32_t m_Size;

private:
    void Note(std::uint32_t first, std::uint32_t count);

    const unsigned m_Limbs;                                      // of a cell
    std::map<std::uint32_t, std::vector<std::uint32_t>> m_Pages; // by cell / PAGE_CELLS
    std::uint32_t* m_LastPage = nullptr; // the limbs of page m_LastNumber, which was written to last
    std::uint32_t m_LastNumber = 0;
    std::vector<SRun> m_Runs; // in the order of writing
};

} // namespace marlune::tool

#endif
