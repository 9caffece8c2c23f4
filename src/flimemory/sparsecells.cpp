#include "src/flimemory/sparsecells.h"

#include <algorithm>
#include <bitset>

namespace marlune::foreign::fli {

unsigned CSparseCells::CBlock::Rank(unsigned cell) const {
    const std::uint64_t below = m_Present & ((std::uint64_t{1} << cell) - 1);
    if (below + 1 == std::uint64_t{1} << cell) { // no gap below, the common case
        return cell;
    }
    return static_cast<unsigned>(std::bitset<BLOCK_CELLS>(below).count());
}

std::uint64_t& CSparseCells::CBlock::Insert(unsigned cell) {
    const auto count = static_cast<unsigned>(std::bitset<BLOCK_CELLS>(m_Present).count());
    const unsigned rank = Rank(cell);
    if (count == m_Capacity) {
        const std::uint32_t capacity = m_Capacity == 0 ? 1 : m_Capacity * 4;
        std::unique_ptr<std::uint64_t[]> words(new std::uint64_t[capacity]);
        std::copy_n(m_Words.get(), count, words.get());
        m_Words = std::move(words);
        m_Capacity = capacity;
    }
    std::copy_backward(&m_Words[rank], &m_Words[count], &m_Words[count] + 1);
    m_Present |= std::uint64_t{1} << cell;
    m_Words[rank] = 0;
    return m_Words[rank];
}

CSparseCells::CWord CSparseCells::Read(std::uint32_t address) {
    CBlock& block = FindOrAddBlock(address / BLOCK_CELLS);
    const unsigned cell = address % BLOCK_CELLS;
    if (!block.Has(cell)) {
        block.Insert(cell);
        ++m_Size;
        return {};
    }
    return Load(block, cell);
}

void CSparseCells::Write(std::uint32_t address, const CWord& word) {
    CBlock& block = FindOrAddBlock(address / BLOCK_CELLS);
    const unsigned cell = address % BLOCK_CELLS;
    const bool present = block.Has(cell);
    std::uint64_t& slot = present ? block.m_Words[block.Rank(cell)] : block.Insert(cell);
    m_Size += present ? 0 : 1;
    const std::uint64_t bit = std::uint64_t{1} << cell;
    if (word.IsZeroFrom(2)) {
        if ((block.m_Wide & bit) != 0) {
            m_FreeWideWords.push_back(slot);
            block.m_Wide &= ~bit;
        }
        slot = word.Low64();
    } else {
        SetWide(block, cell, slot, word);
    }
}

void CSparseCells::SetWide(CBlock& block, unsigned cell, std::uint64_t& slot, const CWord& word) {
    const std::uint64_t bit = std::uint64_t{1} << cell;
    if ((block.m_Wide & bit) != 0) {
        m_WideWords[slot] = word;
        return;
    }
    if (m_FreeWideWords.empty()) {
        m_WideWords.push_back(word);
        slot = m_WideWords.size() - 1;
    } else {
        slot = m_FreeWideWords.back();
        m_FreeWideWords.pop_back();
        m_WideWords[slot] = word;
    }
    block.m_Wide |= bit;
}

CSparseCells::CWord CSparseCells::Load(const CBlock& block, unsigned cell) const {
    const std::uint64_t word = block.m_Words[block.Rank(cell)];
    return ((block.m_Wide >> cell) & 1U) != 0 ? m_WideWords[word] : CWord::FromUnsigned(word);
}

std::size_t CSparseCells::count(std::uint32_t address) const {
    const CBlock* block = FindBlock(address / BLOCK_CELLS);
    return block != nullptr && block->Has(address % BLOCK_CELLS) ? 1 : 0;
}

/// Multiplicative hashing: the upper half of the product with 2^64 / golden ratio (D. Knuth, The Art of Computer
/// Programming, volume 3, section 6.4).
std::size_t CSparseCells::SlotOf(std::uint32_t number, std::size_t slotCount) {
    return static_cast<std::size_t>((number * 0x9E3779B97F4A7C15U) >> 32U) & (slotCount - 1);
}

CSparseCells::CBlock* CSparseCells::FindBlock(std::uint32_t number) const {
    if (m_Slots.empty()) {
        return nullptr;
    }
    std::size_t slot = SlotOf(number, m_Slots.size());
    while (m_Slots[slot] != nullptr && m_Slots[slot]->m_Number != number) {
        slot = (slot + 1) & (m_Slots.size() - 1);
    }
    return m_Slots[slot].get();
}

CSparseCells::CBlock& CSparseCells::FindOrAddBlock(std::uint32_t number) {
    if (m_LastBlock != nullptr && m_LastBlock->m_Number == number) {
        return *m_LastBlock;
    }
    CBlock* block = FindBlock(number);
    if (block == nullptr) {
        if ((m_BlockCount + 1) * 2 > m_Slots.size()) {
            Rehash(std::max<std::size_t>(16, m_Slots.size() * 2));
        }
        auto added = std::make_unique<CBlock>();
        added->m_Number = number;
        block = added.get();
        std::size_t slot = SlotOf(number, m_Slots.size());
        while (m_Slots[slot] != nullptr) {
            slot = (slot + 1) & (m_Slots.size() - 1);
        }
        m_Slots[slot] = std::move(added);
        ++m_BlockCount;
    }
    m_LastBlock = block;
    return *block;
}

void CSparseCells::Rehash(std::size_t slotCount) {
    std::vector<std::unique_ptr<CBlock>> slots(slotCount);
    for (std::unique_ptr<CBlock>& block : m_Slots) {
        if (block != nullptr) {
            std::size_t slot = SlotOf(block->m_Number, slotCount);
            while (slots[slot] != nullptr) {
                slot = (slot + 1) & (slotCount - 1);
            }
            slots[slot] = std::move(block);
        }
    }
    m_Slots = std::move(slots);
}

CSparseCells::const_iterator CSparseCells::begin() const {
    const_iterator first;
    first.m_Cells = this;
    for (const std::unique_ptr<CBlock>& block : m_Slots) {
        if (block != nullptr) {
            first.m_Blocks.push_back(block.get());
        }
    }
    std::sort(first.m_Blocks.begin(), first.m_Blocks.end(),
              [](const CBlock* a, const CBlock* b) { return a->m_Number < b->m_Number; });
    first.SkipAbsent();
    return first;
}

CSparseCells::const_iterator CSparseCells::end() const {
    const_iterator last;
    last.m_Index = m_BlockCount;
    return last;
}

std::pair<std::uint32_t, CSparseCells::CWord> CSparseCells::const_iterator::operator*() const {
    const CBlock& block = *m_Blocks[m_Index];
    return {block.m_Number * BLOCK_CELLS + m_Cell, m_Cells->Load(block, m_Cell)};
}

CSparseCells::const_iterator& CSparseCells::const_iterator::operator++() {
    ++m_Cell;
    SkipAbsent();
    return *this;
}

void CSparseCells::const_iterator::SkipAbsent() {
    for (; m_Index < m_Blocks.size(); ++m_Index, m_Cell = 0) {
        for (; m_Cell < BLOCK_CELLS; ++m_Cell) {
            if (m_Blocks[m_Index]->Has(m_Cell)) {
                return;
            }
        }
    }
}

} // namespace marlune::foreign::fli
