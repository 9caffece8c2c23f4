// Turns the path of an instance into the name of its memory.
#include "src/flimemory/projectname.h"

#include <cctype>

namespace marlune {

namespace {

constexpr const char* REPLACED_CHARACTERS = "-=/*+%.:, ()[]{}><@#&\\";

bool IsWordCharacter(char c) {
    return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_' || c == '-';
}

bool IsInsideWord(const std::string& text, std::size_t position, std::size_t length) {
    const std::size_t end = position + length;
    return (position > 0 && IsWordCharacter(text[position - 1])) || (end < text.size() && IsWordCharacter(text[end]));
}

} // namespace

void RewriteString(std::string& text, const std::string& from, const std::string& to, bool wholeWord) {
    if (from.empty()) {
        return; // it would be found again and again
    }
    std::size_t position = 0;
    while ((position = text.find(from, position)) != std::string::npos) {
        if (wholeWord && IsInsideWord(text, position, from.size())) {
            position += from.size();
        } else {
            text.replace(position, from.size(), to);
            position += to.size();
        }
    }
}

std::string FixProjectName(const std::string& name) {
    std::string fixed = name;
    for (const char* c = REPLACED_CHARACTERS; *c != '\0'; ++c) {
        RewriteString(fixed, std::string(1, *c), "_", false);
    }
    return fixed;
}

} // namespace marlune
