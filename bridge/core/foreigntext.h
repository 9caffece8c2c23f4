// The text of a foreign attribute.
#ifndef MARLUNE_BRIDGE_CORE_FOREIGNTEXT_H
#define MARLUNE_BRIDGE_CORE_FOREIGNTEXT_H

#include <optional>
#include <string>
#include <string_view>

namespace marlune::bridge {

/// The parts of the text "init_function library; parameters".
struct CForeignText {
    std::string m_Function;
    std::string m_Library; // a path, or a bare file name that is searched for
    std::string m_Parameters;
};

/// Nothing if the text has another form. The parameters may be empty; they are not checked.
std::optional<CForeignText> ParseForeignText(std::string_view text);

/// The parameters of a memory that gives none: as wide as its data ports, with a cell for each address. It is sparse
/// from 32 address bits on. Widths are in bits.
std::string DefaultParameters(unsigned mode, unsigned dataBits, unsigned addressBits);

} // namespace marlune::bridge

#endif
