#include "src/flimemory/sparsecells.h"

#include <algorithm>
#include <bitset>

namespace marlune::foreign::fli {

namespace {

unsigned CountOnes(std::uint64_t bits) {
    return static_cast<unsigned>(std::bitset<64>(bits).count());
}

} // namespace

void CSparseCells::CBlock::SetWide(unsigned cell, bool wide) {
    const std::uint64_t bit = std::uint64_t{1} << cell;
    m_Wide = wide ? m_Wide | bit : m_Wide & ~bit;
}

unsigned CSparseCells::CBlock::Rank(unsigned cell) const {
    const std::uint64_t below = m_Present & ((std::uint64_t{1} << cell) - 1);
    if (below + 1 == std::uint64_t{1} << cell) { // no gap below, the common case
        return cell;
    }
    return CountOnes(below);
}

void CSparseCells::CBlock::Insert(std::uint32_t number, unsigned cell) {
    const unsigned count = CountOnes(m_Present);
    if (count == m_Capacity) {
        const std::uint32_t capacity = std::max(1U, m_Capacity * 4);
        auto words = std::make_unique<std::uint64_t[]>(capacity);
        std::copy_n(m_Words.get(), count, words.get());
        m_Words = std::move(words);
        m_Capacity = capacity;
    }
    std::uint64_t* word = m_Words.get() + Rank(cell);
    std::copy_backward(word, m_Words.get() + count, m_Words.get() + count + 1);
    *word = 0;
    m_Present |= std::uint64_t{1} << cell;
    m_Number = number;
}

CSparseCells::CWord CSparseCells::Read(std::uint32_t address) {
    return Load(BlockWithCell(address), address % BLOCK_CELLS);
}

void CSparseCells::Write(std::uint32_t address, const CWord& word) {
    CBlock& block = BlockWithCell(address);
    const unsigned cell = address % BLOCK_CELLS;
    if (!word.IsZeroFrom(2)) {
        StoreWide(block, cell, word);
        return;
    }
    if (block.IsWide(cell)) {
        m_FreeWideWords.push_back(block.Word(cell));
        block.SetWide(cell, false);
    }
    block.Word(cell) = word.Low64();
}

void CSparseCells::StoreWide(CBlock& block, unsigned cell, const CWord& word) {
    std::uint64_t& index = block.Word(cell);
    if (!block.IsWide(cell)) {
        if (m_FreeWideWords.empty()) {
            m_WideWords.emplace_back();
            m_FreeWideWords.push_back(m_WideWords.size() - 1);
        }
        index = m_FreeWideWords.back();
        m_FreeWideWords.pop_back();
        block.SetWide(cell, true);
    }
    m_WideWords[index] = word;
}

CSparseCells::CWord CSparseCells::Load(const CBlock& block, unsigned cell) const {
    const std::uint64_t word = block.Word(cell);
    return block.IsWide(cell) ? m_WideWords[word] : CWord::FromUnsigned(word);
}

std::size_t CSparseCells::count(std::uint32_t address) const {
    if (m_Slots.empty()) {
        return 0;
    }
    const CBlock& block = m_Slots[SlotOf(m_Slots, address / BLOCK_CELLS)];
    return !block.IsFree() && block.Has(address % BLOCK_CELLS) ? 1 : 0;
}

/// Fibonacci hashing, which spreads runs of numbers evenly (D. Knuth, The Art of Computer Programming, volume 3,
/// section 6.4), and linear probing.
std::size_t CSparseCells::SlotOf(const std::vector<CBlock>& slots, std::uint32_t number) {
    const std::uint64_t hash = (number * std::uint64_t{0x9E3779B97F4A7C15}) >> 32U;
    auto slot = static_cast<std::size_t>((hash * slots.size()) >> 32U);
    while (!slots[slot].IsFree() && slots[slot].Number() != number) {
        slot = (slot + 1) & (slots.size() - 1);
    }
    return slot;
}

std::size_t CSparseCells::FindSlot(std::uint32_t number) {
    if (m_Slots.empty()) {
        AddSlots();
    }
    const CBlock& last = m_Slots[m_LastSlot];
    if (last.Number() != number || last.IsFree()) {
        m_LastSlot = SlotOf(m_Slots, number);
    }
    return m_LastSlot;
}

CSparseCells::CBlock& CSparseCells::BlockWithCell(std::uint32_t address) {
    const std::uint32_t number = address / BLOCK_CELLS;
    const unsigned cell = address % BLOCK_CELLS;
    std::size_t slot = FindSlot(number);
    if (!m_Slots[slot].Has(cell)) {
        if (m_Slots[slot].IsFree()) {
            if ((m_BlockCount + 1) * 4 > m_Slots.size() * 3) {
                AddSlots();
                slot = FindSlot(number);
            }
            ++m_BlockCount;
        }
        m_Slots[slot].Insert(number, cell);
        ++m_Size;
    }
    return m_Slots[slot];
}

void CSparseCells::AddSlots() {
    std::vector<CBlock> slots(std::max<std::size_t>(16, m_Slots.size() * 2));
    for (CBlock& block : m_Slots) {
        if (!block.IsFree()) {
            slots[SlotOf(slots, block.Number())] = std::move(block);
        }
    }
    m_Slots = std::move(slots);
    m_LastSlot = 0;
}

CSparseCells::const_iterator CSparseCells::begin() const {
    const_iterator first;
    first.m_Cells = this;
    for (const CBlock& block : m_Slots) {
        if (!block.IsFree()) {
            first.m_Blocks.push_back(&block);
        }
    }
    std::sort(first.m_Blocks.begin(), first.m_Blocks.end(),
              [](const CBlock* a, const CBlock* b) { return a->Number() < b->Number(); });
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
    return {block.Number() * BLOCK_CELLS + m_Cell, m_Cells->Load(block, m_Cell)};
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
