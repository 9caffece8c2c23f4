// `map`: a picture of each address space.
#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <optional>
#include <sstream>

#include <sys/ioctl.h>
#include <unistd.h>

#include "tools/commands.h"
#include "tools/drawing.h"
#include "tools/image.h"
#include "tools/layout.h"
#include "tools/output.h"
#include "tools/table.h"
#include "tools/text.h"

namespace marlune::tool {
namespace {

constexpr const char* PLACE = "Place"; // title of the last column, the bars
constexpr std::size_t USUAL_BAR = 40;  // characters
constexpr std::size_t SHORTEST_BAR = 10;
constexpr std::size_t LONGEST_BAR = 160;

/// The number of columns: from the environment, or else from the terminal that standard output is; none if neither
/// says.
std::optional<std::size_t> TerminalColumns() {
    if (const char* const columns = std::getenv("COLUMNS")) {
        if (const int count = std::atoi(columns); count > 0) {
            return count;
        }
    }
    winsize size{};
    if (isatty(STDOUT_FILENO) != 0 && ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0) {
        return size.ws_col;
    }
    return std::nullopt;
}

char MarkOf(const CPiece& piece) {
    if (piece.m_Section == nullptr) {
        return piece.IsShortened() ? '~' : '.';
    }
    return piece.m_Overlaps != nullptr ? '!' : '#';
}

/// The piece's place in its address space, at least one character of it.
std::string Bar(const CSpace& space, const CPiece& piece, std::size_t length) {
    const auto begin = static_cast<std::size_t>(Scaled(space, piece.m_Position, length - 1));
    const auto end =
        std::max(static_cast<std::size_t>(Scaled(space, piece.m_Position + piece.m_Length, length)), begin + 1);
    std::string bar(length, ' ');
    const char mark = MarkOf(piece);
    std::fill_n(bar.begin() + static_cast<std::ptrdiff_t>(begin), end - begin, mark);
    return "|" + bar + "|";
}

CTable Pieces(const CSpace& space, std::size_t barLength) {
    CTable table({{"Section", "section"},
                  {"Type", "type"},
                  {"First", "first", true},
                  {"Last", "last", true},
                  {"LAUs", "units", true},
                  {PLACE, "place"}});
    for (const CPiece& piece : space.m_Pieces) {
        const bool gap = piece.m_Section == nullptr;
        table.AddRow({gap ? CField() : CField(piece.m_Section->GetName()),
                      gap ? "gap" : TypeName(piece.m_Section->GetType()), CHex{piece.m_First}, CHex{piece.End() - 1},
                      piece.m_Count, Bar(space, piece, barLength)});
    }
    return table;
}

/// The length of the bar with which the table is as wide as the terminal, if that is possible.
std::size_t BarLength(const CSpace& space) {
    const auto columns = TerminalColumns();
    if (!columns) {
        return USUAL_BAR;
    }
    std::ostringstream table;
    Pieces(space, SHORTEST_BAR).Print(table);
    const std::size_t before = table.str().find(PLACE); // in the line of titles
    const std::size_t taken = before + Bar(space, space.m_Pieces.front(), SHORTEST_BAR).size();
    return std::min(SHORTEST_BAR + (*columns > taken ? *columns - taken : 0), LONGEST_BAR);
}

} // namespace

int RunMap(const COptions& options) {
    const auto image = LoadImage(options);
    const std::vector<CSpace> spaces = LayOut(*image, true);
    if (options.m_Json) {
        CJson list = CJson::array();
        for (const CSpace& space : spaces) {
            list.push_back({{"space", space.m_Name}, {"pieces", Pieces(space, USUAL_BAR).Json()}});
        }
        PrintJson({{"file", options.m_File}, {"spaces", list}});
    } else if (spaces.empty()) {
        std::cout << Printable(options.m_File) << ": no section has contents at a fixed address\n";
    }
    for (const CSpace& space : spaces) {
        if (!options.m_Json) {
            std::cout << (&space == &spaces.front() ? "" : "\n") << Heading(space) << '\n';
            Pieces(space, BarLength(space)).Print(std::cout);
        }
    }
    if (!options.m_Svg.empty()) {
        WriteOutput(options.m_Svg, [&](std::ostream& out) { DrawSvg(out, Printable(options.m_File), spaces); });
    }
    return STATUS_OK;
}

} // namespace marlune::tool
