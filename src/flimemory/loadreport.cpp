// Finds out why a load stored nothing.
#include "src/flimemory/loadreport.h"

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

bool HasStoredNothing(const CPastLoad& load) {
    for (int i = 0; i < load.m_Image->SectionsCount(); ++i) {
        if (PlanSection(*load.m_Image->GetSection(i), *load.m_Image, load.m_AddressSpace, load.m_Window, load.m_Target,
                        false)) {
            return false;
        }
    }
    return true;
}

std::string DescribeEmptyLoad(const CPastLoad& load) {
    const std::set<std::string> spaces = LoadableSpaces(*load.m_Image);
    std::string text = "Nothing was loaded from '" + load.m_Image->GetFileName() + "': ";
    if (spaces.count(load.m_AddressSpace) > 0) {
        return text + "address space '" + load.m_AddressSpace + "' has no LAU for these addresses and cells.";
    }
    text += "it has nothing in address space '" + load.m_AddressSpace + "'.";
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
