// Per-prefix state that is emptied and filled again at every clock edge.
#ifndef MARLUNE_FLIMEMORY_PREFIXMAP_H
#define MARLUNE_FLIMEMORY_PREFIXMAP_H

#include <cstddef>
#include <memory>

namespace marlune::foreign::fli {

/// An ordered map from port prefix to T. The possible prefixes are fixed when an instance is elaborated, so a prefix is
/// given by its index in their order.
///
/// Implementation note: an array with a place for each possible entry. No operation allocates, and an entry that is
/// created again reuses its place.
template <typename T>
class CPrefixMap {
public:
    explicit CPrefixMap(std::size_t prefixes)
        : m_Count(prefixes), m_Places(prefixes > 0 ? std::make_unique<CPlace[]>(prefixes) : nullptr) {}

    /// The value of the prefix; an absent entry is created as T().
    T& operator[](std::size_t prefix) {
        CPlace& place = m_Places[prefix];
        if (!place.m_Present) {
            place.m_Value = T();
            place.m_Present = true;
        }
        return place.m_Value;
    }

    /// Inserts or overwrites the entry.
    void Set(std::size_t prefix, const T& value) {
        m_Places[prefix].m_Value = value;
        m_Places[prefix].m_Present = true;
    }

    void erase(std::size_t prefix) { m_Places[prefix].m_Present = false; }

    void clear() {
        Drain([](const T&) {});
    }

    /// Removes all entries, in the order of the prefixes, and calls visit(value) for each.
    template <typename TVisitor>
    void Drain(TVisitor&& visit) {
        for (std::size_t i = 0; i < m_Count; ++i) {
            CPlace& place = m_Places[i];
            if (place.m_Present) {
                place.m_Present = false;
                visit(place.m_Value);
            }
        }
    }

    /// The other map must have the same prefixes.
    void swap(CPrefixMap& other) noexcept { m_Places.swap(other.m_Places); }

private:
    struct CPlace {
        T m_Value{};
        bool m_Present = false;
    };

    std::size_t m_Count;
    std::unique_ptr<CPlace[]> m_Places;
};

} // namespace marlune::foreign::fli

#endif
