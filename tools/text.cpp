// Texts as the tool prints and reads them.
#include "tools/text.h"

namespace marlune::tool {

std::string HexDigits(std::uint64_t value, unsigned digits) {
    std::string text;
    do {
        text.insert(text.begin(), "0123456789abcdef"[value % 16]);
        value /= 16;
    } while (value != 0);
    return text.size() < digits ? std::string(digits - text.size(), '0') + text : text;
}

std::string Hex(std::uint64_t value) {
    return "0x" + HexDigits(value, 1);
}

std::string Printable(std::string_view text) {
    std::string result;
    for (const char character : text) {
        if (character >= ' ' && character <= '~') {
            result += character;
        } else {
            result += "\\x" + HexDigits(static_cast<unsigned char>(character), 2);
        }
    }
    return result;
}

std::string Counted(std::uint64_t count, const std::string& noun) {
    return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

} // namespace marlune::tool
