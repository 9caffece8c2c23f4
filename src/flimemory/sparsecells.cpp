#include "src/flimemory/sparsecells.h"

#include <algorithm>
#include <bitset>
#include <iterator>

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

CSparseCells::CBlock& CSparseCells::BlockWith(std::uint32_t number, std::uint64_t cells) {
    std::size_t slot = FindSlot(number);
    if (m_Slots[slot].HasAll(cells)) {
        return m_Slots[slot];
    }
    const bool isNew = m_Slots[slot].IsFree();
    if (isNew && (m_BlockCount + 1) * 4 > m_Slots.size() * 3) {
        AddSlots();
        slot = FindSlot(number);
    }
    CBlock& block = m_Slots[slot];
    if (isNew && IsInZeroRun(number)) { // all its cells are there, and counted
        block.Insert(number, ALL_CELLS);
    } else {
        m_Size += block.Insert(number, cells);
    }
    m_BlockCount += isNew ? 1 : 0;
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
    std::uint64_t added = std::uint64_t{last} - first + 1; // blocks of which no cell has been counted
    const auto clear = [&](CBlock& block) {
        m_Size += block.Insert(block.Number(), ALL_CELLS);
        for (unsigned cell = 0; cell < BLOCK_CELLS; ++cell) {
            Write(block.Number() * BLOCK_CELLS + cell, CWord());
        }
        added -= IsInZeroRun(block.Number()) ? 0 : 1;
    };
    if (added < m_Slots.size()) {
        for (std::uint32_t number = first; number - first <= last - first; ++number) {
            CBlock& block = m_Slots[SlotOf(m_Slots, number)];
            if (!block.IsFree()) {
                clear(block);
            }
        }
    } else {
        for (CBlock& block : m_Slots) {
            if (!block.IsFree() && block.Number() >= first && block.Number() <= last) {
                clear(block);
            }
        }
    }
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

bool CSparseCells::IsInZeroRun(std::uint32_t number) const {
    const auto behind = m_ZeroRuns.upper_bound(number);
    return behind != m_ZeroRuns.begin() && std::prev(behind)->second >= number;
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
    std::vector<CSpan>& spans = first.m_Spans;
    for (const CBlock& block : m_Slots) {
        if (!block.IsFree()) {
            spans.push_back({block.Number(), block.Number(), &block});
        }
    }
    const auto byNumber = [](const CSpan& a, const CSpan& b) { return a.m_First < b.m_First; };
    std::sort(spans.begin(), spans.end(), byNumber);
    const auto blocks = static_cast<std::ptrdiff_t>(spans.size());
    for (const auto& [runFirst, runLast] : m_ZeroRuns) { // what lies between the blocks in the table
        std::uint64_t next = runFirst;
        auto block = std::lower_bound(spans.begin(), spans.begin() + blocks, CSpan{runFirst, 0, nullptr}, byNumber);
        for (auto i = block - spans.begin(); i < blocks && spans[static_cast<std::size_t>(i)].m_First <= runLast; ++i) {
            const std::uint32_t number = spans[static_cast<std::size_t>(i)].m_First;
            if (next < number) {
                spans.push_back({static_cast<std::uint32_t>(next), number - 1, nullptr});
            }
            next = std::uint64_t{number} + 1;
        }
        if (next <= runLast) {
            spans.push_back({static_cast<std::uint32_t>(next), runLast, nullptr});
        }
    }
    std::sort(spans.begin(), spans.end(), byNumber);
    first.SkipAbsent();
    return first;
}

bool CSparseCells::const_iterator::operator==(const const_iterator& other) const {
    const bool atEnd = m_Index == m_Spans.size();
    const bool otherAtEnd = other.m_Index == other.m_Spans.size();
    return atEnd || otherAtEnd ? atEnd == otherAtEnd : m_Index == other.m_Index && m_Cell == other.m_Cell;
}

std::pair<std::uint32_t, CSparseCells::CWord> CSparseCells::const_iterator::operator*() const {
    const CSpan& span = m_Spans[m_Index];
    const auto address = static_cast<std::uint32_t>(std::uint64_t{span.m_First} * BLOCK_CELLS + m_Cell);
    return {address, span.m_Block == nullptr ? CWord() : m_Cells->Load(*span.m_Block, static_cast<unsigned>(m_Cell))};
}

CSparseCells::const_iterator& CSparseCells::const_iterator::operator++() {
    ++m_Cell;
    SkipAbsent();
    return *this;
}

void CSparseCells::const_iterator::SkipAbsent() {
    for (; m_Index < m_Spans.size(); ++m_Index, m_Cell = 0) {
        const CSpan& span = m_Spans[m_Index];
        const std::uint64_t cells = (std::uint64_t{span.m_Last} - span.m_First + 1) * BLOCK_CELLS;
        for (; m_Cell < cells; ++m_Cell) {
            if (span.m_Block == nullptr || span.m_Block->Has(static_cast<unsigned>(m_Cell))) {
                return;
            }
        }
    }
}

} // namespace marlune::foreign::fli
