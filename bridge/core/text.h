// Questions about texts.
#ifndef MARLUNE_BRIDGE_CORE_TEXT_H
#define MARLUNE_BRIDGE_CORE_TEXT_H

#include <string_view>

namespace marlune::bridge {

inline bool BeginsWith(std::string_view text, std::string_view beginning) {
    return text.substr(0, beginning.size()) == beginning;
}

} // namespace marlune::bridge

#endif
