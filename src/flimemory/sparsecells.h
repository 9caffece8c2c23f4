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

    struct CBlock {
        std::uint32_t m_Number = 0;               // address / BLOCK_CELLS
        std::uint32_t m_Capacity = 0;             // of m_Words
        std::uint64_t m_Present = 0;              // bit i: cell i exists
        std::uint64_t m_Wide = 0;                 // bit i: the word of cell i is the index of its value in m_WideWords
        std::unique_ptr<std::uint64_t[]> m_Words; // of the cells present, in address order

        bool Has(unsigned cell) const { return ((m_Present >> cell) & 1U) != 0; }
        unsigned Rank(unsigned cell) const;
        std::uint64_t& Insert(unsigned cell);
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
    CBlock* FindBlock(std::uint32_t number) const;
    CBlock& FindOrAddBlock(std::uint32_t number);
    void Rehash(std::size_t slotCount);
    static std::size_t SlotOf(std::uint32_t number, std::size_t slotCount);

    void SetWide(CBlock& block, unsigned cell, std::uint64_t& slot, const CWord& word);
    CWord Load(const CBlock& block, unsigned cell) const;

    std::vector<std::unique_ptr<CBlock>> m_Slots; // open addressing, a power of two, at most half full
    std::size_t m_BlockCount = 0;
    std::size_t m_Size = 0;
    CBlock* m_LastBlock = nullptr; // accesses come in runs
    std::deque<CWord> m_WideWords;
    std::vector<std::uint64_t> m_FreeWideWords;
};

} // namespace marlune::foreign::fli

#endif
