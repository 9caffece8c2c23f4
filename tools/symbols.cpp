// `symbols`: a file's symbols.
#include <array>
#include <iostream>

#include "tools/commands.h"
#include "tools/image.h"
#include "tools/table.h"

namespace marlune::tool {
namespace {

using ObjectFile::CSymbol;

std::string SymbolTypeName(const CSymbol& symbol) {
    static const std::array<const char*, 7> NAMES{"none", "private", "public", "weak", "extern", "absolute", "common"};
    return NAMES.at(static_cast<std::size_t>(symbol.GetType()));
}

std::string UsageName(const CSymbol& symbol) {
    static const std::array<const char*, 4> NAMES{"undefined", "function", "object", "file"};
    return NAMES.at(static_cast<std::size_t>(symbol.GetUsageType()));
}

void AddSymbols(CTable& table, std::uint64_t number, const ObjectFile::CSymbolTable& symbols) {
    for (int i = 0; i < symbols.Count(); ++i) {
        const CSymbol& symbol = *symbols.GetSymbol(i);
        const bool hasSection = symbol.HasSection() && symbol.GetSection() != nullptr;
        table.AddRow({symbol.GetName(), SymbolTypeName(symbol), UsageName(symbol),
                      hasSection ? CField(symbol.GetSection()->GetName()) : CField(), CHex{symbol.GetMemoryAddress()},
                      static_cast<std::uint64_t>(static_cast<std::uint32_t>(symbol.GetBlockSize())), number});
    }
}

} // namespace

int RunSymbols(const COptions& options) {
    const auto image = LoadImage(options);
    CTable table({{"Symbol", "name"},
                  {"Type", "type"},
                  {"Usage", "usage"},
                  {"Section", "section"},
                  {"Address", "address", true},
                  {"Size", "size", true},
                  {"Table", "table", true}});
    for (int i = 0; i < image->SymbolTablesCount(); ++i) {
        AddSymbols(table, static_cast<std::uint64_t>(i), *image->GetSymbolTable(i));
    }
    if (options.m_Json) {
        PrintJson({{"file", options.m_File}, {"symbols", table.Json()}});
    } else {
        table.Print(std::cout);
    }
    return STATUS_OK;
}

} // namespace marlune::tool
