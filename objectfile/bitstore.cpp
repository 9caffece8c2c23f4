// A sequence of bits most of which may never be written.
#include "objectfile/bitstore.h"

#include <algorithm>

namespace ObjectFile {

namespace {

/// A limb with the bits from `first` to the one before `last` set, counted from the most significant; first < last.
constexpr std::uint64_t LimbMask(std::uint64_t first, std::uint64_t last) {
    return (~std::uint64_t{0} >> first) & (~std::uint64_t{0} << (64 - last));
}

void ClearBits(std::uint64_t* limbs, std::uint64_t begin, std::uint64_t end) {
    while (begin < end) {
        const std::uint64_t limb = begin / 64;
        const std::uint64_t stop = std::min(end, (limb + 1) * 64);
        limbs[limb] &= ~LimbMask(begin % 64, stop - limb * 64);
        begin = stop;
    }
}

} // namespace

void CBitStore::Set(std::uint64_t position, unsigned count, std::uint64_t bits) {
    while (count > 0) { // twice when the bits lie in two limbs
        const auto offset = static_cast<unsigned>(position % 64);
        const unsigned part = std::min(count, 64 - offset);
        const std::uint64_t mask = LimbMask(offset, offset + part);
        count -= part;
        const std::uint64_t index = position % BITS_PER_CHUNK / 64;
        std::uint64_t& limb = MakeChunk(position / BITS_PER_CHUNK, index).m_Limbs[index];
        limb = (limb & ~mask) | (bits >> count << (64 - offset - part) & mask);
        position += part;
    }
}

void CBitStore::Clear(std::uint64_t position, std::uint64_t count) {
    const std::uint64_t end = position + count;
    auto chunk = m_Chunks.lower_bound(position / BITS_PER_CHUNK);
    while (chunk != m_Chunks.end() && chunk->first * BITS_PER_CHUNK < end) {
        const std::uint64_t base = chunk->first * BITS_PER_CHUNK;
        const std::uint64_t first = std::max(position, base) - base;
        const std::uint64_t last = std::min(end - base, BITS_PER_CHUNK);
        if (last - first == BITS_PER_CHUNK) {
            chunk = m_Chunks.erase(chunk);
        } else {
            ClearBits(chunk->second.data(), first, std::min<std::uint64_t>(last, chunk->second.size() * 64));
            ++chunk;
        }
    }
}

bool CBitStore::IsUntouched(std::uint64_t position, std::uint64_t count) const {
    const auto chunk = m_Chunks.lower_bound(position / BITS_PER_CHUNK);
    return chunk == m_Chunks.end() || chunk->first * BITS_PER_CHUNK >= position + count;
}

CBitStore::CConstLimbs CBitStore::FindChunk(std::uint64_t chunk) const {
    const auto found = m_Chunks.find(chunk);
    return found == m_Chunks.end() ? CConstLimbs{} : CConstLimbs{found->second.data(), found->second.size()};
}

CBitStore::CLimbs CBitStore::MakeChunk(std::uint64_t chunk, std::uint64_t limb) {
    std::vector<std::uint64_t>& limbs = m_Chunks[chunk];
    if (limb >= limbs.size()) {
        // Grown by doubling, at the end to exactly a chunk.
        const std::uint64_t wanted = std::max<std::uint64_t>(limb + 1, 2 * std::uint64_t{limbs.size()});
        limbs.reserve(static_cast<std::size_t>(std::min(LIMBS_PER_CHUNK, wanted)));
        limbs.resize(limbs.capacity());
    }
    return {limbs.data(), limbs.size()};
}

void CBitAppender::AppendLimbs(const std::uint64_t* limbs, std::uint64_t count) {
    if (m_Position % 64 != 0) {
        std::for_each(limbs, limbs + count, [this](std::uint64_t limb) { Append(64, limb); });
        return;
    }
    while (count > 0) {
        const std::uint64_t first = m_Position / 64 % CBitStore::LIMBS_PER_CHUNK;
        const std::uint64_t run = std::min(count, CBitStore::LIMBS_PER_CHUNK - first);
        const auto chunk = m_Store->MakeChunk(m_Position / CBitStore::BITS_PER_CHUNK, first + run - 1);
        std::copy_n(limbs, run, chunk.m_Limbs + first);
        m_Position += run * 64;
        limbs += run;
        count -= run;
    }
    m_Limbs = {}; // they may have moved
}

} // namespace ObjectFile
