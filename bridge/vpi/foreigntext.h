#ifndef MARLUNE_BRIDGE_VPI_FOREIGNTEXT_H
#define MARLUNE_BRIDGE_VPI_FOREIGNTEXT_H

#include <optional>
#include <string>
#include <string_view>

/// The text of a foreign attribute, "init_function library; parameters", taken apart.
struct SForeignText {
    std::string m_Function;
    std::string m_Library; ///< a path, or a bare file name that is searched for
    std::string m_Parameters;
};

/// Nothing when the text is of another form. The parameters may be empty and are not looked at.
std::optional<SForeignText> ParseForeignText(std::string_view text);

#endif
