// Finds out why a load stored nothing.
#include "src/flimemory/loadreport.h"

#include "src/flimemory/loadplan.h"

namespace marlune::foreign {

std::set<std::string> LoadableSpaces(const ObjectFile::CObjectFile& image) {
    std::set<std::string> spaces;
    for (int i = 0; i < image.SectionsCount(); ++i) {
        const ObjectFile::CSection& section = *image.GetSection(i);
        const std::string& space = section.GetAddressSpaceName();
        if (section.GetSectionDataByteCount() > 0 && section.GetMemoryByteAddressIsAbsolute() &&
            IsLoaded(section, space, false)) {
            spaces.insert(space);
        }
    }
    return spaces;
}

std::string DescribeEmptyLoad(const ObjectFile::CObjectFile& image, const std::string& addressSpace) {
    const std::set<std::string> spaces = LoadableSpaces(image);
    std::string text = "Nothing was loaded from '" + image.GetFileName() + "': ";
    if (spaces.count(addressSpace) > 0) {
        return text + "address space '" + addressSpace + "' has no LAU for these addresses and cells.";
    }
    text += "it has nothing in address space '" + addressSpace + "'.";
    if (!spaces.empty()) {
        text += " It has address space";
        const char* separator = spaces.size() > 1 ? "s '" : " '";
        for (const std::string& space : spaces) {
            text += separator + space + "'";
            separator = ", '";
        }
        text += ".";
    }
    return text;
}

} // namespace marlune::foreign
