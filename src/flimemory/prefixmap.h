#ifndef MARLUNE_FLIMEMORY_PREFIXMAP_H
#define MARLUNE_FLIMEMORY_PREFIXMAP_H

#include <algorithm>
#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace marlune::foreign::fli {

/// An ordered map from port prefix to T for state that is emptied and filled again at every edge: an entry that goes
/// leaves its place behind, so that it comes back without allocating.
template <typename T>
class CPrefixMap {
public:
    /// The prefix's value; an absent entry is created as T().
    T& operator[](const std::string& prefix) {
        auto place = LowerBound(prefix);
        if (place == m_Places.end() || place->m_Prefix != prefix) {
            place = m_Places.insert(place, CPlace{prefix, T(), true});
        } else if (!place->m_Present) {
            place->m_Value = T();
            place->m_Present = true;
        }
        return place->m_Value;
    }

    void erase(const std::string& prefix) {
        const auto place = LowerBound(prefix);
        if (place != m_Places.end() && place->m_Prefix == prefix) {
            place->m_Present = false;
        }
    }

    void clear() {
        for (CPlace& place : m_Places) {
            place.m_Present = false;
        }
    }

    void swap(CPrefixMap& other) noexcept { m_Places.swap(other.m_Places); }

    std::size_t size() const {
        return static_cast<std::size_t>(
            std::count_if(m_Places.begin(), m_Places.end(), [](const CPlace& place) { return place.m_Present; }));
    }
    bool empty() const { return size() == 0; }

    /// Calls visit(prefix, value) for each entry, ordered by prefix.
    template <typename TVisitor>
    void ForEach(TVisitor&& visit) const {
        for (const CPlace& place : m_Places) {
            if (place.m_Present) {
                visit(place.m_Prefix, place.m_Value);
            }
        }
    }

private:
    struct CPlace {
        std::string m_Prefix;
        T m_Value;
        bool m_Present;
    };

    typename std::vector<CPlace>::iterator LowerBound(const std::string& prefix) {
        return std::lower_bound(m_Places.begin(), m_Places.end(), prefix,
                                [](const CPlace& place, const std::string& wanted) { return place.m_Prefix < wanted; });
    }

    std::vector<CPlace> m_Places; // ordered by prefix
};

} // namespace marlune::foreign::fli

#endif
