// The parameter text of a memory instance.
#ifndef MARLUNE_FLIMEMORY_PARAMETERS_H
#define MARLUNE_FLIMEMORY_PARAMETERS_H

#include <string>
#include <vector>

namespace marlune::foreign::fli {

struct CParameters {
    bool m_ReadIsSynchronous = false;
    unsigned m_ByteBitWidth = 0; // bits of one LAU
    unsigned m_SizeInBytes = 0;  // LAUs, and so cells
};

/// The text's parts between blanks; none is empty.
std::vector<std::string> SplitArguments(const std::string& text);

/// Reads "<read_is_synchronous> <byte_bit_width> <size_in_bytes>", separated by blanks. Throws CGeneralError for
/// another number of parameters or a width of 0, and std::invalid_argument for a text that is not a literal.
CParameters ParseParameters(const std::string& text);

} // namespace marlune::foreign::fli

#endif
