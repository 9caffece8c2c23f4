// Finds out why a load stored nothing, and what it left out.
#include "src/flimemory/loadreport.h"

namespace marlune::foreign {

namespace {

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

} // namespace

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

std::string DescribeLoad(const ObjectFile::CObjectFile& image, const std::string& addressSpace,
                         const CLoadResult& result) {
    if (!result.m_HasStored) {
        return DescribeEmptyLoad(image, addressSpace);
    }
    if (result.m_CutSection != nullptr) {
        return "The last " + std::to_string(result.m_CutCount) + " LAUs of section '" + result.m_CutSection->GetName() +
               "' in '" + image.GetFileName() + "' were not loaded: the memory ends before them.";
    }
    return "";
}

} // namespace marlune::foreign
