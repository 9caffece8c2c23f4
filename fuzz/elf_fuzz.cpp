// Converts arbitrary bytes as an ELF file. What converts has an address for each section, and its text form can be
// written.
#include "elftovexon/elftovexon.h"
#include "fuzz/inputfile.h"

#include "general_error"

#include <iostream>
#include <stdexcept>

namespace {

/// False after an error of a kind that is documented; any other ends the run.
bool Convert(ElfToVexon& converter) {
    try {
        converter.Convert();
        return true;
    } catch (const marlune::exceptions::CGeneralError&) {
    } catch (const ObjectFile::general_error&) { // two symbols of one name
    } catch (const std::out_of_range&) {         // a relocation section with a short name
    }
    return false;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    std::cerr.setstate(std::ios::failbit); // warnings are not of interest
    WriteInput(bytes, size);
    try {
        ElfToVexon converter(FilePath().c_str());
        if (Convert(converter)) {
            converter.SaveToFile(FilePath().c_str());
        }
    } catch (const marlune::exceptions::CGeneralError&) {
    }
    return 0;
}
