#ifndef MARLUNE_FLIMEMORY_SPARSECELLS_H
#define MARLUNE_FLIMEMORY_SPARSECELLS_H

#include <cstddef>
#include <cstdint>
#include <deque>
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

    /// The number of cells present.
    std::size_t size() const { return m_Size; }
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
        bool IsWide(unsigned cell) const { return ((m_Wide >> cell) & 1U) != 0; }
        void SetWide(unsigned cell, bool wide);
        /// Of a cell that is present.
        std::uint64_t& Word(unsigned cell) { return m_Words[Rank(cell)]; }
        std::uint64_t Word(unsigned cell) const { return m_Words[Rank(cell)]; }
        /// Adds a cell of zero to the block of this number.
        void Insert(std::uint32_t number, unsigned cell);

    private:
        unsigned Rank(unsigned cell) const;

        std::uint32_t m_Number = 0;
        std::uint32_t m_Capacity = 0;             // of m_Words
        std::uint64_t m_Present = 0;              // bit i: cell i exists
        std::uint64_t m_Wide = 0;                 // bit i: the word of cell i is the index of its value in m_WideWords
        std::unique_ptr<std::uint64_t[]> m_Words; // of the cells present, in address order
    };

public:
    /// Walks the cells in address order; a cell is a pair of address and word, by value.
    class const_iterator {
    public:
        std::pair<std::uint32_t, CWord> operator*() const;
        const_iterator& operator++();
        bool operator==(const const_iterator& other) const {
            return m_Index == other.m_Index && m_Cell == other.m_Cell;
        }
        bool operator!=(const const_iterator& other) const { return !(*this == other); }

    private:
        friend class CSparseCells;
        void SkipAbsent();

        const CSparseCells* m_Cells = nullptr;
        std::vector<const CBlock*> m_Blocks; // ordered by number
        std::size_t m_Index = 0;
        unsigned m_Cell = 0;
    };

    const_iterator begin() const;
    const_iterator end() const;

private:
    /// The slot of the block, or the free one where it would be.
    static std::size_t SlotOf(const std::vector<CBlock>& slots, std::uint32_t number);
    /// The block with the cell at the address, which is created as zero where it is absent.
    CBlock& BlockWithCell(std::uint32_t address);
    std::size_t FindSlot(std::uint32_t number);
    void AddSlots();

    void StoreWide(CBlock& block, unsigned cell, const CWord& word);
    CWord Load(const CBlock& block, unsigned cell) const;

    std::vector<CBlock> m_Slots; // open addressing, a power of two, at most three quarters of them taken
    std::size_t m_BlockCount = 0;
    std::size_t m_Size = 0;
    std::size_t m_LastSlot = 0; // accesses come in runs
    std::deque<CWord> m_WideWords;
    std::vector<std::uint64_t> m_FreeWideWords;
};

} // namespace marlune::foreign::fli

#endif
