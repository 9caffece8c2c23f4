// Raw bytes as a program.
#include "tools/import/readers.h"

namespace marlune::tool {

void ReadBinary(const std::string& path, const CImportOptions& /*options*/, CProgram& program, const CWarn& /*warn*/) {
    auto source = std::make_unique<CFileSource>(path);
    if (source->Size() > 0) {
        program.m_Extents.push_back({0, source->Size(), 0});
    }
    program.m_Source = std::move(source);
}

} // namespace marlune::tool
