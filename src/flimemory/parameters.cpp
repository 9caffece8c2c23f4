// Reads an instance's three parameters.
#include "src/flimemory/parameters.h"

#include <algorithm>

#include "general_error"
#include "number_cast"

namespace marlune::foreign::fli {

using exceptions::CGeneralError;

std::vector<std::string> SplitArguments(const std::string& text) {
    std::vector<std::string> arguments;
    std::size_t begin = 0;
    while (begin < text.size()) {
        const std::size_t end = std::min(text.find(' ', begin), text.size());
        if (end > begin) {
            arguments.push_back(text.substr(begin, end - begin));
        }
        begin = end + 1;
    }
    return arguments;
}

CParameters ParseParameters(const std::string& text) {
    constexpr std::size_t ARGUMENT_COUNT = 3;
    const std::vector<std::string> arguments = SplitArguments(text);
    if (arguments.size() != ARGUMENT_COUNT) {
        throw CGeneralError("At least " + std::to_string(ARGUMENT_COUNT) +
                            " arguments are needed: <read_is_synchronous> <byte_bit_width> <size_in_bytes>");
    }
    CParameters parameters;
    int suffixBits = 0;
    parameters.m_ReadIsSynchronous = detail::number_cast<bool>::Convert(arguments[0], suffixBits);
    parameters.m_ByteBitWidth = detail::number_cast<unsigned>::Convert(arguments[1], suffixBits);
    parameters.m_SizeInBytes = detail::number_cast<unsigned>::Convert(arguments[2], suffixBits);
    if (parameters.m_ByteBitWidth == 0) {
        throw CGeneralError("Byte bit with must be greater than zero");
    }
    return parameters;
}

} // namespace marlune::foreign::fli
