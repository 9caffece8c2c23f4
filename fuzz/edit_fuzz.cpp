// Any bytes as a list of editing operations.
#include <iostream>

#include "fuzz/inputfile.h"
#include "tests/objectfile/editmodel.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    std::cerr.setstate(std::ios::failbit); // warnings are not of interest
    ExpectNoFault(RunEdits({reinterpret_cast<const char*>(bytes), size}, FilePath()));
    return 0;
}
