#ifndef MARLUNE_OBJECTFILE_BITSTORE_H
#define MARLUNE_OBJECTFILE_BITSTORE_H

#include <cstdint>
#include <map>
#include <vector>

namespace ObjectFile {

/// A sequence of up to 2^64 bits in which bits never written read as 0. Memory is taken in chunks of 64 KiB where
/// something was written. Within a 64-bit limb the bit with the smallest index is the most significant.
class CBitStore {
public:
    /// `count` (1 to 64) bits from `position` on, right-aligned, the first of them the most significant.
    std::uint64_t Get(std::uint64_t position, unsigned count) const;
    /// Stores the low `count` (1 to 64) bits of `bits`.
    void Set(std::uint64_t position, unsigned count, std::uint64_t bits);
    /// Makes `count` bits 0 and takes no memory for it.
    void Clear(std::uint64_t position, std::uint64_t count);
    void Free() { m_Chunks.clear(); }

    /// True when nothing was ever written there; false says nothing about the bits.
    bool IsUntouched(std::uint64_t position, std::uint64_t count) const;

    static constexpr std::uint64_t LIMBS_PER_CHUNK = 8192;
    static constexpr std::uint64_t BITS_PER_CHUNK = LIMBS_PER_CHUNK * 64;

    /// The limbs of chunk number `position / BITS_PER_CHUNK`, or none when nothing was written there.
    const std::uint64_t* FindChunk(std::uint64_t position) const;
    /// The same, created when absent.
    std::uint64_t* MakeChunk(std::uint64_t position);

private:
    std::map<std::uint64_t, std::vector<std::uint64_t>> m_Chunks;
};

} // namespace ObjectFile

#endif
