// Arrays as GHDL passes them to foreign subprograms.
#ifndef MARLUNE_BRIDGE_DIRECT_VHDLARRAY_H
#define MARLUNE_BRIDGE_DIRECT_VHDLARRAY_H

#include <cstdint>
#include <string>

namespace marlune::bridge {

struct CVhdlRange {
    std::int32_t m_Left;
    std::int32_t m_Right;
    std::int32_t m_Direction;
    std::uint32_t m_Length;
};

/// An unconstrained array of one dimension: a byte for each element, the leftmost first. It holds the characters of a
/// string or the positions of std_logic values, and belongs to the caller.
struct CVhdlArray {
    char* m_Base;
    const CVhdlRange* m_Range;

    std::uint32_t GetLength() const { return m_Range->m_Length; }
    std::string GetText() const { return {m_Base, GetLength()}; }
};

} // namespace marlune::bridge

#endif
