// Splits the text of a foreign attribute.
#include "bridge/core/foreigntext.h"

namespace marlune::bridge {

namespace {

constexpr std::string_view BLANKS = " \t";

std::string_view Trim(std::string_view text) {
    const std::size_t first = text.find_first_not_of(BLANKS);
    return first == std::string_view::npos ? "" : text.substr(first, text.find_last_not_of(BLANKS) - first + 1);
}

} // namespace

std::optional<CForeignText> ParseForeignText(std::string_view text) {
    const std::size_t semicolon = text.find(';');
    if (semicolon == std::string_view::npos) {
        return std::nullopt;
    }
    const std::string_view call = Trim(text.substr(0, semicolon));
    const std::size_t blank = call.find_first_of(BLANKS);
    if (blank == std::string_view::npos) {
        return std::nullopt;
    }
    return CForeignText{std::string(call.substr(0, blank)), std::string(Trim(call.substr(blank))),
                        std::string(Trim(text.substr(semicolon + 1)))};
}

std::string DefaultParameters(unsigned mode, unsigned dataBits, unsigned addressBits) {
    constexpr unsigned MOST_ADDRESS_BITS = 32;
    constexpr unsigned SPARSE_SIZE = 0xFFFFFFFF;
    const unsigned cells = addressBits < MOST_ADDRESS_BITS ? 1U << addressBits : SPARSE_SIZE;
    return std::to_string(mode) + " " + std::to_string(dataBits) + " " + std::to_string(cells);
}

} // namespace marlune::bridge
