// Reads and assigns values as VPI passes them: texts of digits.
#include "bridge/vpi/signal.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace marlune::bridge {

namespace {

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

} // namespace

int WidthOf(vpiHandle object) {
    const int width = vpi_get(vpiSize, object);
    const bool isLogic = vpi_get(vpiType, object) != vpiRealVar && (width == 1 || vpi_get(vpiVector, object) != 0);
    return isLogic ? width : 0;
}

void CVpiSignal::Read(unsigned char* positions) const {
    t_vpi_value value{vpiBinStrVal, {nullptr}};
    vpi_get_value(m_Object, &value);
    const char* text = value.value.str;
    std::transform(text, text + m_Width, positions, [](char c) { return POSITIONS[static_cast<unsigned char>(c)]; });
}

void CVpiSignal::Drive(const unsigned char* positions) {
    if (std::equal(m_Driven.begin(), m_Driven.end(), positions) && !m_Driven.empty()) {
        return;
    }
    m_Driven.assign(positions, positions + m_Width);
    Put();
}

void CVpiSignal::Put() {
    m_Text.resize(m_Driven.size());
    std::transform(m_Driven.begin(), m_Driven.end(), m_Text.begin(), [this](auto p) { return m_Literals[p]; });
    t_vpi_value value{vpiBinStrVal, {m_Text.data()}};
    vpi_put_value(m_Object, &value, nullptr, vpiNoDelay);
}

} // namespace marlune::bridge
