// How the tool writes numbers and names.
#ifndef MARLUNE_TOOLS_TEXT_H
#define MARLUNE_TOOLS_TEXT_H

#include <cstdint>
#include <string>
#include <string_view>

namespace marlune::tool {

/// Lower-case hexadecimal digits without a prefix, filled up with zeros to `digits`.
std::string HexDigits(std::uint64_t value, unsigned digits);
/// "0x" and as many digits as the value needs.
std::string Hex(std::uint64_t value);

/// The text with every byte that is not printable ASCII written like "\x1b", so that a name from a file cannot control
/// a terminal and columns stay aligned.
std::string Printable(std::string_view text);
/// "1 section", "2 sections".
std::string Counted(std::uint64_t count, const std::string& noun);

} // namespace marlune::tool

#endif
