// The text of a foreign attribute.
#ifndef MARLUNE_BRIDGE_CORE_FOREIGNTEXT_H
#define MARLUNE_BRIDGE_CORE_FOREIGNTEXT_H

#include <optional>
#include <string>
#include <string_view>

namespace marlune::bridge {

/// The text "init_function library; parameters", taken apart.
struct CForeignText {
    std::string m_Function;
    std::string m_Library; // a path, or a bare file name that is searched for
    std::string m_Parameters;
};

/// Nothing when the text is of another form. The parameters may be empty and are not looked at.
std::optional<CForeignText> ParseForeignText(std::string_view text);

/// The parameters of a memory that gives none: as wide as its data ports and as large as its addresses reach, which
/// makes it sparse from 32 bits on. Widths in bits.
std::string DefaultParameters(unsigned mode, unsigned dataBits, unsigned addressBits);

} // namespace marlune::bridge

#endif
