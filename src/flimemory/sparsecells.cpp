// Finds, creates and drops the blocks of sparse cells.
#include "src/flimemory/sparsecells.h"

#include <algorithm>
#include <bitset>
#include <iterator>
#include <utility>

namespace marlune::foreign::fli {

namespace {

constexpr std::uint64_t ALL_CELLS = ~std::uint64_t{0};

constexpr std::uint64_t BitOf(unsigned cell) {
    return std::uint64_t{1} << cell;
}

unsigned CountOnes(std::uint64_t bits) {
    return static_cast<unsigned>(std::bitset<64>(bits).count());
}

} // namespace

void CSparseCells::CBlock::SetWide(unsigned cell, bool wide) {
    m_Wide = wide ? m_Wide | BitOf(cell) : m_Wide & ~BitOf(cell);
}

unsigned CSparseCells::CBlock::Rank(unsigned cell) const {
    const std::uint64_t below = m_Present & (BitOf(cell) - 1);
    if (below + 1 == BitOf(cell)) { // no gap below, the common case
        return cell;
    }
    return CountOnes(below);
}

unsigned CSparseCells::CBlock::CountPresent() const {
    return CountOnes(m_Present);
}

unsigned CSparseCells::CBlock::Insert(std::uint32_t number, std::uint64_t cells) {
    const std::uint64_t added = cells & ~m_Present;
    unsigned from = CountOnes(m_Present);
    unsigned to = CountOnes(m_Present | added);
    const unsigned count = to - from;
    if (to > m_Capacity) {
        std::uint32_t capacity = std::max(1U, m_Capacity);
        while (capacity < to) {
            capacity *= 4;
        }
        auto words = std::make_unique<std::uint64_t[]>(capacity);
        std::copy_n(m_Words.get(), from, words.get());
        m_Words = std::move(words);
        m_Capacity = capacity;
    }
    for (unsigned cell = BLOCK_CELLS; to > from; --cell) { // words move up, from the last on
        if ((added & BitOf(cell - 1)) != 0) {
            m_Words[--to] = 0;
        } else if (Has(cell - 1)) {
            m_Words[--to] = m_Words[--from];
        }
    }
    m_Present |= added;
    m_Number = number;
    return count;
}

CSparseCells::CWord CSparseCells::Read(std::uint32_t address) {
    const unsigned cell = address % BLOCK_CELLS;
    return Load(BlockWith(address / BLOCK_CELLS, BitOf(cell)), cell);
}

void CSparseCells::Write(std::uint32_t address, const CWord& word) {
    const unsigned cell = address % BLOCK_CELLS;
    CBlock& block = BlockWith(address / BLOCK_CELLS, BitOf(cell));
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
    m_WideWords[static_cast<std::size_t>(index)] = word;
}

CSparseCells::CWord CSparseCells::Load(const CBlock& block, unsigned cell) const {
    const std::uint64_t word = block.Word(cell);
    return block.IsWide(cell) ? m_WideWords[static_cast<std::size_t>(word)] : CWord::FromUnsigned(word);
}

std::size_t CSparseCells::count(std::uint32_t address) const {
    const std::uint32_t number = address / BLOCK_CELLS;
    if (!m_Slots.empty() && m_Slots[SlotOf(m_Slots, number)].Has(address % BLOCK_CELLS)) {
        return 1;
    }
    return IsInZeroRun(number) ? 1 : 0;
}

/// Fibonacci hashing, which spreads runs of numbers evenly (D. Knuth, The Art of Computer Programming, volume 3,
/// section 6.4).
std::size_t CSparseCells::HomeSlot(std::size_t slots, std::uint32_t number) {
    const std::uint64_t hash = (number * std::uint64_t{0x9E3779B97F4A7C15}) >> 32U;
    return static_cast<std::size_t>((hash * slots) >> 32U);
}

std::size_t CSparseCells::SlotOf(const std::vector<CBlock>& slots, std::uint32_t number) {
    std::size_t slot = HomeSlot(slots.size(), number);
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

CSparseCells::CBlock& CSparseCells::BlockWith(std::uint32_t number, std::uint64_t cells) {
    std::size_t slot = FindSlot(number);
    if (m_Slots[slot].HasAll(cells)) {
        return m_Slots[slot];
    }
    const bool isNew = m_Slots[slot].IsFree();
    if (isNew && (m_Numbers.size() + 1) * 4 > m_Slots.size() * 3) {
        AddSlots();
        slot = FindSlot(number);
    }
    CBlock& block = m_Slots[slot];
    if (isNew && IsInZeroRun(number)) { // all its cells are present, and counted
        block.Insert(number, ALL_CELLS);
    } else {
        m_Size += block.Insert(number, cells);
    }
    if (isNew) {
        m_Numbers.push_back(number);
    }
    return block;
}

void CSparseCells::WriteNumbers(std::uint32_t first, const std::uint64_t* numbers, std::uint32_t count) {
    while (count > 0) {
        const unsigned cell = first % BLOCK_CELLS;
        const unsigned part = std::min(count, BLOCK_CELLS - cell);
        const std::uint64_t cells = (ALL_CELLS >> (BLOCK_CELLS - part)) << cell;
        CBlock& block = BlockWith(first / BLOCK_CELLS, cells);
        if (block.HasWide(cells)) {
            for (unsigned i = 0; i < part; ++i) {
                Write(first + i, CWord::FromUnsigned(numbers[i]));
            }
        } else {
            std::copy_n(numbers, part, &block.Word(cell));
        }
        first += part;
        numbers += part;
        count -= part;
    }
}

void CSparseCells::FillZero(std::uint32_t first, std::uint32_t count) {
    std::uint64_t address = first;
    const std::uint64_t end = address + count;
    for (; address < end && address % BLOCK_CELLS != 0; ++address) {
        Write(static_cast<std::uint32_t>(address), CWord());
    }
    if (end - address >= BLOCK_CELLS) {
        FillBlocks(static_cast<std::uint32_t>(address / BLOCK_CELLS),
                   static_cast<std::uint32_t>(end / BLOCK_CELLS - 1));
        address = end / BLOCK_CELLS * BLOCK_CELLS;
    }
    for (; address < end; ++address) {
        Write(static_cast<std::uint32_t>(address), CWord());
    }
}

void CSparseCells::FillBlocks(std::uint32_t first, std::uint32_t last) {
    const auto [begin, end] = Numbers(first, last);
    std::for_each(begin, end, [this](std::uint32_t number) { DropBlock(number); });
    m_Numbers.erase(begin, end);
    m_SortedNumbers = m_Numbers.size();

    std::uint64_t added = std::uint64_t{last} - first + 1; // blocks that no run has counted
    auto run = m_ZeroRuns.upper_bound(first);
    if (run != m_ZeroRuns.begin() && std::prev(run)->second >= first) {
        --run;
    }
    std::uint32_t joinedFirst = first;
    std::uint32_t joinedLast = last;
    while (run != m_ZeroRuns.end() && run->first <= last) {
        added -= std::uint64_t{std::min(run->second, last)} - std::max(run->first, first) + 1;
        joinedFirst = std::min(joinedFirst, run->first);
        joinedLast = std::max(joinedLast, run->second);
        run = m_ZeroRuns.erase(run);
    }
    m_ZeroRuns[joinedFirst] = joinedLast;
    m_Size += added * BLOCK_CELLS;
}

/// Removes a block from the table, and moves up the blocks that it had pushed out of their slots (D. Knuth, The Art of
/// Computer Programming, volume 3, section 6.4, algorithm R).
void CSparseCells::DropBlock(std::uint32_t number) {
    std::size_t hole = SlotOf(m_Slots, number);
    CBlock& dropped = m_Slots[hole];
    for (unsigned cell = 0; cell < BLOCK_CELLS; ++cell) {
        if (dropped.IsWide(cell)) {
            m_FreeWideWords.push_back(dropped.Word(cell));
        }
    }
    m_Size -= IsInZeroRun(number) ? 0 : dropped.CountPresent();
    dropped = CBlock();
    const std::size_t mask = m_Slots.size() - 1;
    for (std::size_t slot = (hole + 1) & mask; !m_Slots[slot].IsFree(); slot = (slot + 1) & mask) {
        const std::size_t home = HomeSlot(m_Slots.size(), m_Slots[slot].Number());
        if (((slot - home) & mask) >= ((slot - hole) & mask)) {
            m_Slots[hole] = std::exchange(m_Slots[slot], CBlock());
            hole = slot;
        }
    }
}

std::pair<std::vector<std::uint32_t>::iterator, std::vector<std::uint32_t>::iterator>
CSparseCells::Numbers(std::uint32_t first, std::uint32_t last) {
    const auto sorted = m_Numbers.begin() + static_cast<std::ptrdiff_t>(m_SortedNumbers);
    std::sort(sorted, m_Numbers.end());
    std::inplace_merge(m_Numbers.begin(), sorted, m_Numbers.end());
    m_SortedNumbers = m_Numbers.size();
    const auto begin = std::lower_bound(m_Numbers.begin(), m_Numbers.end(), first);
    return {begin, std::upper_bound(begin, m_Numbers.end(), last)};
}

bool CSparseCells::IsInZeroRun(std::uint32_t number) const {
    const auto after = m_ZeroRuns.upper_bound(number);
    return after != m_ZeroRuns.begin() && std::prev(after)->second >= number;
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

} // namespace marlune::foreign::fli
