// Any bytes as an image file, used as a simulator and the image tool use one.
#include <iostream>

#include "fuzz/inputfile.h"
#include "tests/objectfile/imagecheck.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    std::cerr.setstate(std::ios::failbit); // warnings are not of interest
    WriteInput(bytes, size);
    const std::string outcome = CheckImage(FilePath());
    ExpectNoFault(outcome == "loaded" || outcome == "error" ? "" : outcome);
    return 0;
}
