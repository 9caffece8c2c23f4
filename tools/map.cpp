#include <algorithm>
#include <iostream>

#include "tools/commands.h"
#include "tools/drawing.h"
#include "tools/image.h"
#include "tools/layout.h"
#include "tools/output.h"
#include "tools/table.h"
#include "tools/text.h"

namespace marlune::tool {
namespace {

/// The piece's place in its address space, at least one character of it.
std::string Bar(const SSpace& space, const SPiece& piece) {
    constexpr std::size_t LENGTH = 40;
    const auto begin = static_cast<std::size_t>(Scaled(space, piece.m_First, LENGTH - 1));
    const auto end = std::max(static_cast<std::size_t>(Scaled(space, piece.End(), LENGTH)), begin + 1);
    std::string bar(LENGTH, ' ');
    const char mark = piece.m_Section == nullptr ? '.' : piece.m_Overlaps != nullptr ? '!' : '#';
    std::fill_n(bar.begin() + static_cast<std::ptrdiff_t>(begin), end - begin, mark);
    return "|" + bar + "|";
}

CTable Pieces(const SSpace& space) {
    CTable table({{"Section", "section"},
                  {"Type", "type"},
                  {"First", "first", true},
                  {"Last", "last", true},
                  {"LAUs", "units", true},
                  {"Place", "place"}});
    for (const SPiece& piece : space.m_Pieces) {
        const bool gap = piece.m_Section == nullptr;
        table.AddRow({gap ? CField() : CField(piece.m_Section->GetName()),
                      gap ? "gap" : TypeName(piece.m_Section->GetType()), SHex{piece.m_First}, SHex{piece.End() - 1},
                      piece.m_Count, Bar(space, piece)});
    }
    return table;
}

} // namespace

int RunMap(const SOptions& options) {
    const auto image = LoadImage(options);
    const std::vector<SSpace> spaces = LayOut(*image, true);
    if (options.m_Json) {
        CJson list = CJson::array();
        for (const SSpace& space : spaces) {
            list.push_back({{"space", space.m_Name}, {"pieces", Pieces(space).Json()}});
        }
        PrintJson({{"file", options.m_File}, {"spaces", list}});
    } else if (spaces.empty()) {
        std::cout << Printable(options.m_File) << ": no section has contents at a fixed address\n";
    }
    for (const SSpace& space : spaces) {
        if (!options.m_Json) {
            std::cout << (&space == &spaces.front() ? "" : "\n") << Heading(space) << '\n';
            Pieces(space).Print(std::cout);
        }
    }
    if (!options.m_Svg.empty()) {
        WriteOutput(options.m_Svg, [&](std::ostream& out) { DrawSvg(out, Printable(options.m_File), spaces); });
    }
    return STATUS_OK;
}

} // namespace marlune::tool
