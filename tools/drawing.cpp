// Draws maps for the terminal and as SVG.
#include "tools/drawing.h"

#include <algorithm>
#include <array>
#include <ostream>

#include "tools/image.h"
#include "tools/text.h"

namespace marlune::tool {
namespace {

constexpr unsigned MARGIN = 16;
constexpr unsigned ROW = 22;
constexpr unsigned NAME_CHARACTERS = 28;
constexpr unsigned RANGE_X = MARGIN + 210;
constexpr unsigned COUNT_END_X = RANGE_X + 250;
constexpr unsigned LANE_X = COUNT_END_X + 16;
constexpr unsigned LANE_LENGTH = 480;
constexpr unsigned WIDTH = LANE_X + LANE_LENGTH + MARGIN;

struct CColour {
    ObjectFile::CSection::eType m_Type;
    const char* m_Fill;
    const char* m_Meaning;
};
constexpr std::array<CColour, 3> COLOURS{{{ObjectFile::CSection::TYPE_TEXT, "#3b6ea8", "text"},
                                          {ObjectFile::CSection::TYPE_DATA, "#4f9d69", "data"},
                                          {ObjectFile::CSection::TYPE_BSS, "#d9a441", "bss (zeros)"}}};

std::string Escaped(const std::string& text) {
    std::string result;
    for (const char character : text) {
        switch (character) {
        case '&':
            result += "&amp;";
            break;
        case '<':
            result += "&lt;";
            break;
        case '>':
            result += "&gt;";
            break;
        default:
            result += character;
        }
    }
    return result;
}

std::string Cut(const std::string& text) {
    return text.size() <= NAME_CHARACTERS ? text : text.substr(0, NAME_CHARACTERS - 3) + "...";
}

class CDrawing {
public:
    explicit CDrawing(std::ostream& out) : m_Out(out) {}

    void Begin(unsigned height, const std::string& title) {
        m_Out << R"(<svg xmlns="http://www.w3.org/2000/svg" width=")" << WIDTH << R"(" height=")" << height
              << R"(" font-family="monospace" font-size="12">)"
              << "\n<title>" << Escaped(title) << "</title>\n"
              << "<style>.gap{fill:#777;font-style:italic} .clash{fill:#b00020} .end{text-anchor:end} "
                 ".head{font-weight:bold}</style>\n";
        Box(0, 0, WIDTH, height, "#ffffff");
        Text(MARGIN, MARGIN + 12, "head", title);
        unsigned x = LANE_X;
        for (const CColour& colour : COLOURS) {
            Box(x, MARGIN + 2, 12, 12, colour.m_Fill);
            Text(x + 18, MARGIN + 12, "piece", colour.m_Meaning);
            x += 80;
        }
        m_Y = MARGIN + 2 * ROW;
    }

    void Space(const CSpace& space) {
        Text(MARGIN, m_Y + 15, "head", Heading(space));
        m_Y += ROW;
        for (const CPiece& piece : space.m_Pieces) {
            Piece(space, piece);
        }
        m_Y += ROW;
    }

    void End() { m_Out << "</svg>\n"; }

private:
    void Piece(const CSpace& space, const CPiece& piece) {
        const bool gap = piece.m_Section == nullptr;
        const std::string style = gap ? "gap" : piece.m_Overlaps != nullptr ? "clash" : "piece";
        Text(MARGIN, m_Y + 15, style,
             gap ? (piece.IsShortened() ? "gap, shortened" : "gap") : Cut(Printable(piece.m_Section->GetName())));
        Text(RANGE_X, m_Y + 15, style, Hex(piece.m_First) + " - " + Hex(piece.End() - 1));
        Text(COUNT_END_X, m_Y + 15, style + " end", std::to_string(piece.m_Count));
        Box(LANE_X, m_Y + 3, LANE_LENGTH, ROW - 6, "#f0f0f0");
        const auto begin = static_cast<unsigned>(Scaled(space, piece.m_Position, LANE_LENGTH - 1));
        const auto end = static_cast<unsigned>(Scaled(space, piece.m_Position + piece.m_Length, LANE_LENGTH));
        Box(LANE_X + begin, m_Y + 3, std::max(end, begin + 1) - begin, ROW - 6, gap ? "#d4d4d4" : Colour(piece));
        m_Y += ROW;
    }

    static const char* Colour(const CPiece& piece) {
        return std::find_if(COLOURS.begin(), COLOURS.end(),
                            [&](const CColour& candidate) { return candidate.m_Type == piece.m_Section->GetType(); })
            ->m_Fill;
    }

    void Box(unsigned x, unsigned y, unsigned width, unsigned height, const char* fill) {
        m_Out << "<rect x=\"" << x << "\" y=\"" << y << "\" width=\"" << width << "\" height=\"" << height
              << "\" fill=\"" << fill << "\"/>\n";
    }

    void Text(unsigned x, unsigned y, const std::string& style, const std::string& text) {
        m_Out << "<text x=\"" << x << "\" y=\"" << y << "\" class=\"" << style << "\">" << Escaped(text) << "</text>\n";
    }

    std::ostream& m_Out;
    unsigned m_Y = 0;
};

} // namespace

void DrawSvg(std::ostream& out, const std::string& title, const std::vector<CSpace>& spaces) {
    std::size_t rows = 2;
    for (const CSpace& space : spaces) {
        rows += space.m_Pieces.size() + 2;
    }
    CDrawing drawing(out);
    drawing.Begin(static_cast<unsigned>(rows * ROW + MARGIN), title);
    for (const CSpace& space : spaces) {
        drawing.Space(space);
    }
    drawing.End();
}

} // namespace marlune::tool
