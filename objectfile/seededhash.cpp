// SipHash-1-3.
#include "objectfile/seededhash.h"

#include <array>
#include <cstdint>
#include <cstring>

#include <sys/auxv.h>

namespace ObjectFile {

namespace {

using CKey = std::array<std::uint64_t, 2>;

/// The random bytes that the kernel hands to each process.
CKey ProcessKey() {
    CKey key{};
    // NOLINTNEXTLINE(performance-no-int-to-ptr): the system hands out the address as a number
    if (const auto* const bytes = reinterpret_cast<const void*>(getauxval(AT_RANDOM))) {
        std::memcpy(key.data(), bytes, sizeof key);
    }
    return key;
}

class CSipState {
public:
    explicit CSipState(const CKey& key)
        : m_V0(key[0] ^ 0x736f6d6570736575U), m_V1(key[1] ^ 0x646f72616e646f6dU), m_V2(key[0] ^ 0x6c7967656e657261U),
          m_V3(key[1] ^ 0x7465646279746573U) {}

    void Absorb(std::uint64_t word) {
        m_V3 ^= word;
        Round();
        m_V0 ^= word;
    }

    std::uint64_t Finish() {
        m_V2 ^= 0xFF;
        Round();
        Round();
        Round();
        return m_V0 ^ m_V1 ^ m_V2 ^ m_V3;
    }

private:
    static std::uint64_t Rotate(std::uint64_t value, unsigned count) { return value << count | value >> (64 - count); }

    void Round() {
        m_V0 += m_V1;
        m_V1 = Rotate(m_V1, 13) ^ m_V0;
        m_V0 = Rotate(m_V0, 32);
        m_V2 += m_V3;
        m_V3 = Rotate(m_V3, 16) ^ m_V2;
        m_V0 += m_V3;
        m_V3 = Rotate(m_V3, 21) ^ m_V0;
        m_V2 += m_V1;
        m_V1 = Rotate(m_V1, 17) ^ m_V2;
        m_V2 = Rotate(m_V2, 32);
    }

    std::uint64_t m_V0;
    std::uint64_t m_V1;
    std::uint64_t m_V2;
    std::uint64_t m_V3;
};

} // namespace

std::size_t CSeededHash::operator()(std::string_view text) const {
    static const CKey KEY = ProcessKey();
    CSipState state(KEY);
    const std::uint64_t length = text.size();
    std::uint64_t word = 0;
    for (; text.size() >= sizeof word; text.remove_prefix(sizeof word)) {
        std::memcpy(&word, text.data(), sizeof word);
        state.Absorb(word);
    }
    word = 0;
    if (!text.empty()) {
        std::memcpy(&word, text.data(), text.size());
    }
    state.Absorb(word | length << 56);
    return static_cast<std::size_t>(state.Finish());
}

} // namespace ObjectFile
