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

} // namespace marlune::bridge
