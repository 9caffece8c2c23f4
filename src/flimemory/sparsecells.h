#ifndef MARLUNE_FLIMEMORY_SPARSECELLS_H
#define MARLUNE_FLIMEMORY_SPARSECELLS_H

#include <cstddef>
#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <utility>
#include <vector>

#include "marlune_int"

namespace marlune::foreign::fli {

/// An ordered map from 32-bit address to word that is made for memories: it holds cells in blocks of 64 addresses,
/// found through a hash table, and a word of up to 64 significant bits takes 8 bytes.
///
/// Not copyable; iterators are invalidated when a cell is added.
class CSparseCells {
public:
    using CWord = marlune_int<1024, true>;

    /// The word at the address; an absent cell is created as zero.
    CWord Read(std::uint32_t address);

    /// Inserts or overwrites the cell.
    void Write(std::uint32_t address, const CWord& word);

    /// Inserts or overwrites count cells from the first on.
    void WriteNumbers(std::uint32_t first, const std::uint64_t* numbers, std::uint32_t count);

    /// The same as writing zero to count cells from the first on, without taking memory for each.
    void FillZero(std::uint32_t first, std::uint32_t count);

    /// The number of cells present.
    std::uint64_t size() const { return m_Size; }
    bool empty() const { return m_Size == 0; }
    /// 1 if the cell is present, else 0; never creates one.
    std::size_t count(std::uint32_t address) const;

private:
    static constexpr unsigned BLOCK_CELLS = 64;

    /// A slot of the hash table: free, or a block of cells of which some are present. All but the words stands in the
    /// slot, for what an access costs are the places in memory that it visits.
    class CBlock {
    public:
        bool IsFree() const { return m_Present == 0; }
        std::uint32_t Number() const { return m_Number; } // address / BLOCK_CELLS
        bool Has(unsigned cell) const { return ((m_Present >> cell) & 1U) != 0; }
        bool HasAll(std::uint64_t cells) const { return (cells & ~m_Present) == 0; }
        bool IsWide(unsigned cell) const { return ((m_Wide >> cell) & 1U) != 0; }
        bool HasWide(std::uint64_t cells) const { return (cells & m_Wide) != 0; }
        void SetWide(unsigned cell, bool wide);
        /// Of a cell that is present; those of following cells that are present too follow.
        std::uint64_t& Word(unsigned cell) { return m_Words[Rank(cell)]; }
        std::uint64_t Word(unsigned cell) const { return m_Words[Rank(cell)]; }
        /// Adds those of the cells (bit i: cell i) that are absent, as zero, to the block of this number; returns how
        /// many they were.
        unsigned Insert(std::uint32_t number, std::uint64_t cells);

    private:
        unsigned Rank(unsigned cell) const;

        std::uint32_t m_Number = 0;
        std::uint32_t m_Capacity = 0;             // of m_Words
        std::uint64_t m_Present = 0;              // bit i: cell i exists
        std::uint64_t m_Wide = 0;                 // bit i: the word of cell i is the index of its value in m_WideWords
        std::unique_ptr<std::uint64_t[]> m_Words; // of the cells present, in address order
    };

    /// A block, or a run of blocks of zeros that are not in the table.
    struct CSpan {
        std::uint32_t m_First; // block number
        std::uint32_t m_Last;
        const CBlock* m_Block; // null for a run
    };

public:
    /// Walks the cells in address order; a cell is a pair of address and word, by value.
    class const_iterator {
    public:
        std::pair<std::uint32_t, CWord> operator*() const;
        const_iterator& operator++();
        bool operator==(const const_iterator& other) const; // of one map
        bool operator!=(const const_iterator& other) const { return !(*this == other); }

    private:
        friend class CSparseCells;
        void SkipAbsent();

        const CSparseCells* m_Cells = nullptr;
        std::vector<CSpan> m_Spans; // ordered by number
        std::size_t m_Index = 0;
        std::uint64_t m_Cell = 0; // in the span
    };

    const_iterator begin() const;
    const_iterator end() const { return {}; }

private:
    /// The slot of the block, or the free one where it would be.
    static std::size_t SlotOf(const std::vector<CBlock>& slots, std::uint32_t number);
    /// The block of this number, with the cells (bit i: cell i), which are created as zero where they are absent.
    CBlock& BlockWith(std::uint32_t number, std::uint64_t cells);
    std::size_t FindSlot(std::uint32_t number);
    void AddSlots();
    void FillBlocks(std::uint32_t first, std::uint32_t last);
    bool IsInZeroRun(std::uint32_t number) const;

    void StoreWide(CBlock& block, unsigned cell, const CWord& word);
    CWord Load(const CBlock& block, unsigned cell) const;

    std::vector<CBlock> m_Slots; // open addressing, a power of two, at most three quarters of them taken
    std::size_t m_BlockCount = 0;
    std::uint64_t m_Size = 0;
    std::size_t m_LastSlot = 0; // accesses come in runs
    // First to last number of runs of blocks whose cells are all present, and zero unless the block is in the table.
    std::map<std::uint32_t, std::uint32_t> m_ZeroRuns;
    std::deque<CWord> m_WideWords;
    std::vector<std::uint64_t> m_FreeWideWords;
};

} // namespace marlune::foreign::fli

#endif
