#include "bridge/vpi/signal.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

namespace {

mtiTypeIdTag g_StdLogic;

using CPositionTable = std::array<unsigned char, 256>;

constexpr CPositionTable PositionsOfCharacters() {
    CPositionTable table{};
    for (const std::string_view literals : {std::string_view("UX01ZWLH-"), std::string_view("ux01zwlh-")}) {
        for (std::size_t position = 0; position < literals.size(); ++position) {
            table[static_cast<unsigned char>(literals[position])] = static_cast<unsigned char>(position);
        }
    }
    return table;
}

constexpr CPositionTable POSITIONS = PositionsOfCharacters();

/// 0 for what is neither a bit nor a vector of bits: a real, or a scalar of several bits (VHDL's integers and
/// enumerations).
int WidthOf(vpiHandle object) {
    const int width = vpi_get(vpiSize, object);
    const bool isLogic = vpi_get(vpiType, object) != vpiRealVar && (width == 1 || vpi_get(vpiVector, object) != 0);
    return isLogic ? width : 0;
}

} // namespace

mtiSignalIdTag::mtiSignalIdTag(std::string name, vpiHandle object, const char* literals)
    : m_Name(std::move(name)), m_Object(object), m_Literals(literals), m_Width(WidthOf(object)) {
    if (m_Width > 0 && vpi_get(vpiVector, object) != 0) {
        m_Type = {MTI_TYPE_ARRAY, m_Width, &g_StdLogic};
    }
}

void mtiSignalIdTag::Read(unsigned char* positions) const {
    t_vpi_value value{vpiBinStrVal, {nullptr}};
    vpi_get_value(m_Object, &value);
    const char* text = value.value.str;
    std::transform(text, text + m_Width, positions, [](char c) { return POSITIONS[static_cast<unsigned char>(c)]; });
}

void mtiSignalIdTag::Drive(mtiLongT value) {
    const auto position = static_cast<unsigned char>(value);
    // The interface passes an array's address as a number.
    const auto* positions = m_Type.m_Kind == MTI_TYPE_ARRAY
                                ? reinterpret_cast<const unsigned char*>(value) // NOLINT(performance-no-int-to-ptr)
                                : &position;
    if (std::equal(m_Driven.begin(), m_Driven.end(), positions) && !m_Driven.empty()) {
        return;
    }
    m_Driven.assign(positions, positions + m_Width);
    Put();
}

void mtiSignalIdTag::Put() {
    m_Text.resize(m_Driven.size());
    std::transform(m_Driven.begin(), m_Driven.end(), m_Text.begin(), [this](auto p) { return m_Literals[p]; });
    t_vpi_value value{vpiBinStrVal, {m_Text.data()}};
    vpi_put_value(m_Object, &value, nullptr, vpiNoDelay);
}
