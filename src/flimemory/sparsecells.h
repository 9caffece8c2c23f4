// The cells of a sparse memory.
#ifndef MARLUNE_FLIMEMORY_SPARSECELLS_H
#define MARLUNE_FLIMEMORY_SPARSECELLS_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <iterator>
#include <map>
#include <memory>
#include <utility>
#include <vector>

#include "marlune_int"

namespace marlune::foreign::fli {

/// An ordered map from 32-bit address to word, made for memories.
///
/// Implementation note: blocks of 64 cells are kept in a hash table with open addressing. An access costs one look-up,
/// which usually finds the same block as the last one, and visits two places in memory. A word of up to 64 significant
/// bits takes 8 bytes; a wider one is the index of a word that is stored elsewhere. Blocks of zeros from a load are not
/// in the table but kept as runs, so that a gigabyte of them costs one entry. A list of the blocks' numbers is sorted
/// only when an order is asked for; with it, filling or visiting a range costs as much as the range has blocks.
///
/// Not copyable.
class CSparseCells {
public:
    using CWord = marlune_int<1024, true>;

    /// The word at the address; an absent cell is created as zero.
    CWord Read(std::uint32_t address);

    /// Inserts or overwrites the cell.
    void Write(std::uint32_t address, const CWord& word);

    /// Inserts or overwrites `count` cells from the first on.
    void WriteNumbers(std::uint32_t first, const std::uint64_t* numbers, std::uint32_t count);

    /// The same as writing zero to `count` cells from the first on, without taking memory for each.
    void FillZero(std::uint32_t first, std::uint32_t count);

    /// Calls visit(address, word) for each cell present from the first to the last address, in order.
    template <typename TVisitor>
    void VisitCells(std::uint32_t first, std::uint32_t last, TVisitor&& visit);

    /// The number of cells present.
    std::uint64_t size() const { return m_Size; }
    bool empty() const { return m_Size == 0; }
    /// 1 if the cell is present, else 0; never creates one.
    std::size_t count(std::uint32_t address) const;

private:
    static constexpr unsigned BLOCK_CELLS = 64;

    /// A slot of the hash table: free, or a block of cells of which some are present. Everything but the words is
    /// stored inline, to keep cache misses per access low.
    class CBlock {
    public:
        bool IsFree() const { return m_Present == 0; }
        std::uint32_t Number() const { return m_Number; } // address / BLOCK_CELLS
        bool Has(unsigned cell) const { return ((m_Present >> cell) & 1U) != 0; }
        bool HasAll(std::uint64_t cells) const { return (cells & ~m_Present) == 0; }
        bool IsWide(unsigned cell) const { return ((m_Wide >> cell) & 1U) != 0; }
        bool HasWide(std::uint64_t cells) const { return (cells & m_Wide) != 0; }
        unsigned CountPresent() const;
        void SetWide(unsigned cell, bool wide);
        /// The word of a cell that is present. The words of the next cells present follow it.
        std::uint64_t& Word(unsigned cell) { return m_Words[Rank(cell)]; }
        std::uint64_t Word(unsigned cell) const { return m_Words[Rank(cell)]; }
        /// Makes this the block with the number, and adds those of the cells (bit i: cell i) that are absent, as zero.
        /// Returns how many it added.
        unsigned Insert(std::uint32_t number, std::uint64_t cells);

    private:
        unsigned Rank(unsigned cell) const;

        std::uint32_t m_Number = 0;
        std::uint32_t m_Capacity = 0;             // of m_Words
        std::uint64_t m_Present = 0;              // bit i: cell i exists
        std::uint64_t m_Wide = 0;                 // bit i: the word of cell i is the index of its value in m_WideWords
        std::unique_ptr<std::uint64_t[]> m_Words; // of the cells present, in address order
    };

    /// The slot of a block unless another one has taken it.
    static std::size_t HomeSlot(std::size_t slots, std::uint32_t number);
    /// The slot of the block, or the free one where it would be.
    static std::size_t SlotOf(const std::vector<CBlock>& slots, std::uint32_t number);
    /// The block of this number, with the cells (bit i: cell i). Those that are absent are created as zero.
    CBlock& BlockWith(std::uint32_t number, std::uint64_t cells);
    std::size_t FindSlot(std::uint32_t number);
    void AddSlots();
    void FillBlocks(std::uint32_t first, std::uint32_t last);
    void DropBlock(std::uint32_t number);
    bool IsInZeroRun(std::uint32_t number) const;
    /// The numbers of the blocks from the first to the last, in order.
    std::pair<std::vector<std::uint32_t>::iterator, std::vector<std::uint32_t>::iterator> Numbers(std::uint32_t first,
                                                                                                  std::uint32_t last);

    void StoreWide(CBlock& block, unsigned cell, const CWord& word);
    CWord Load(const CBlock& block, unsigned cell) const;

    std::vector<CBlock> m_Slots;          // open addressing; their number is a power of two, at most 3/4 are taken
    std::vector<std::uint32_t> m_Numbers; // of all blocks in the table
    std::size_t m_SortedNumbers = 0;      // the first ones, which are in order
    std::uint64_t m_Size = 0;
    std::size_t m_LastSlot = 0; // of the last access, because accesses come in runs
    // Runs of blocks, first to last number, whose cells are all present, and zero unless the block is in the table.
    std::map<std::uint32_t, std::uint32_t> m_ZeroRuns;
    std::deque<CWord> m_WideWords;
    std::vector<std::uint64_t> m_FreeWideWords;
};

template <typename TVisitor>
void CSparseCells::VisitCells(std::uint32_t first, std::uint32_t last, TVisitor&& visit) {
    // Runs of zeros lie between the blocks: visit them up to a block, and then the block itself.
    std::uint64_t next = first;
    const auto visitZeros = [&](std::uint64_t end) {
        auto run = m_ZeroRuns.upper_bound(static_cast<std::uint32_t>(next / BLOCK_CELLS));
        run = run == m_ZeroRuns.begin() ? run : std::prev(run);
        for (; run != m_ZeroRuns.end() && std::uint64_t{run->first} * BLOCK_CELLS < end; ++run) {
            next = std::max(next, std::uint64_t{run->first} * BLOCK_CELLS);
            const std::uint64_t runEnd = (std::uint64_t{run->second} + 1) * BLOCK_CELLS;
            for (; next < std::min(runEnd, end); ++next) {
                visit(static_cast<std::uint32_t>(next), CWord());
            }
        }
        next = end;
    };
    const auto [begin, end] = Numbers(first / BLOCK_CELLS, last / BLOCK_CELLS);
    for (auto number = begin; number != end; ++number) {
        visitZeros(std::max(next, std::uint64_t{*number} * BLOCK_CELLS));
        const CBlock& block = m_Slots[SlotOf(m_Slots, *number)];
        for (; next <= last && next / BLOCK_CELLS == *number; ++next) {
            const auto cell = static_cast<unsigned>(next % BLOCK_CELLS);
            if (block.Has(cell)) {
                visit(static_cast<std::uint32_t>(next), Load(block, cell));
            }
        }
    }
    visitZeros(std::uint64_t{last} + 1);
}

} // namespace marlune::foreign::fli

#endif
