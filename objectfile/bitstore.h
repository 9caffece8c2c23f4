// A sequence of bits most of which may never be written.
#ifndef MARLUNE_OBJECTFILE_BITSTORE_H
#define MARLUNE_OBJECTFILE_BITSTORE_H

#include <cstdint>
#include <map>
#include <vector>

namespace ObjectFile {

/// A sequence of up to 2^64 bits in which bits never written read as 0. Within a 64-bit limb the bit with the smallest
/// index is the most significant.
///
/// Implementation note: a map holds chunks of 4 KiB where something was written. A chunk takes memory up to its last
/// limb in use. Finding a chunk costs O(log chunks). Small chunks keep the memory in proportion to what was written,
/// wherever that is.
class CBitStore {
public:
    static constexpr std::uint64_t LIMBS_PER_CHUNK = 512;
    static constexpr std::uint64_t BITS_PER_CHUNK = LIMBS_PER_CHUNK * 64;

    /// Stores the low `count` (1 to 64) bits of `bits`.
    void Set(std::uint64_t position, unsigned count, std::uint64_t bits);
    /// Makes `count` bits 0; takes no memory for it.
    void Clear(std::uint64_t position, std::uint64_t count);
    void Free() { m_Chunks.clear(); }

    /// True if nothing was ever written there; false says nothing about the bits.
    bool IsUntouched(std::uint64_t position, std::uint64_t count) const;

    /// The limbs of a chunk that are in use; those after them are 0.
    template <typename TLimb>
    struct CLimbSpan {
        TLimb* m_Limbs = nullptr;
        std::uint64_t m_Count = 0;
    };
    using CLimbs = CLimbSpan<std::uint64_t>;
    using CConstLimbs = CLimbSpan<const std::uint64_t>;
    CConstLimbs FindChunk(std::uint64_t chunk) const;
    /// The same, with at least limb number `limb` in use.
    CLimbs MakeChunk(std::uint64_t chunk, std::uint64_t limb);

private:
    std::map<std::uint64_t, std::vector<std::uint64_t>> m_Chunks;
};

/// Reads a store that does not change meanwhile, and finds a chunk once for many reads in it.
class CBitReader {
public:
    explicit CBitReader(const CBitStore& store) : m_Store(&store) {}

    /// `count` (1 to 64) bits from `position` on, right-aligned, the first of them the most significant.
    std::uint64_t Get(std::uint64_t position, unsigned count) {
        const std::uint64_t limb = position / 64;
        const auto offset = static_cast<unsigned>(position % 64);
        std::uint64_t bits = Limb(limb) << offset;
        if (offset + count > 64) {
            bits |= Limb(limb + 1) >> (64 - offset);
        }
        return bits >> (64 - count);
    }

    /// 64 bits, from 64 * limb on.
    std::uint64_t Limb(std::uint64_t limb) {
        const std::uint64_t chunk = limb / CBitStore::LIMBS_PER_CHUNK;
        if (chunk != m_Chunk) {
            m_Limbs = m_Store->FindChunk(chunk);
            m_Chunk = chunk;
        }
        const std::uint64_t index = limb % CBitStore::LIMBS_PER_CHUNK;
        return index < m_Limbs.m_Count ? m_Limbs.m_Limbs[index] : 0;
    }

private:
    const CBitStore* m_Store;
    CBitStore::CConstLimbs m_Limbs;
    std::uint64_t m_Chunk = ~std::uint64_t{0};
};

/// Appends to a store after the last bit that was ever written.
class CBitAppender {
public:
    CBitAppender(CBitStore& store, std::uint64_t position) : m_Store(&store), m_Position(position) {}

    /// The low `count` (1 to 64) bits; higher ones must be 0.
    void Append(unsigned count, std::uint64_t bits) {
        const auto offset = static_cast<unsigned>(m_Position % 64);
        bits <<= 64 - count;
        *Limb() |= bits >> offset;
        m_Position += count;
        if (offset + count > 64) {
            *Limb() |= bits << (64 - offset);
        }
    }

    /// `count` times 64 bits, the first of them in the most significant bit of limbs[0].
    void AppendLimbs(const std::uint64_t* limbs, std::uint64_t count);

private:
    std::uint64_t* Limb() {
        const std::uint64_t limb = m_Position / 64;
        const std::uint64_t chunk = limb / CBitStore::LIMBS_PER_CHUNK;
        const std::uint64_t index = limb % CBitStore::LIMBS_PER_CHUNK;
        if (chunk != m_Chunk || index >= m_Limbs.m_Count) {
            m_Limbs = m_Store->MakeChunk(chunk, index);
            m_Chunk = chunk;
        }
        return m_Limbs.m_Limbs + index;
    }

    CBitStore* m_Store;
    std::uint64_t m_Position;
    CBitStore::CLimbs m_Limbs;
    std::uint64_t m_Chunk = ~std::uint64_t{0};
};

} // namespace ObjectFile

#endif
