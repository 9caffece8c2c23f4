// Tables for the terminal, and the same as JSON.
#include "tools/table.h"

#include <algorithm>
#include <iostream>

#include "tools/text.h"

namespace marlune::tool {
namespace {

constexpr std::size_t MAX_COLUMN = 60;  // characters; a longer field overflows its column
constexpr std::size_t MAX_FIELD = 1000; // characters; a longer field is cut

struct CToText {
    std::string operator()(std::monostate /*nothing*/) const { return "-"; }
    std::string operator()(const std::string& text) const { return text.empty() ? "-" : Printable(text); }
    std::string operator()(std::uint64_t number) const { return std::to_string(number); }
    std::string operator()(std::int64_t number) const { return std::to_string(number); }
    std::string operator()(CHex number) const { return Hex(number.m_Value); }
    std::string operator()(bool flag) const { return flag ? "yes" : "no"; }
};

struct CToJson {
    CJson operator()(std::monostate /*nothing*/) const { return nullptr; }
    CJson operator()(CHex number) const { return number.m_Value; }
    template <typename T>
    CJson operator()(const T& value) const {
        return value;
    }
};

std::string Padded(const std::string& text, std::size_t width, bool right) {
    const std::string blanks(width - std::min(width, text.size()), ' ');
    return right ? blanks + text : text + blanks;
}

std::string TextOf(const CField& field) {
    std::string text = std::visit(CToText(), field);
    if (text.size() > MAX_FIELD) {
        text.replace(MAX_FIELD, std::string::npos, "...");
    }
    return text;
}
CJson JsonOf(const CField& field) {
    return std::visit(CToJson(), field);
}

} // namespace

void Print(std::ostream& out, const std::vector<CFact>& facts) {
    std::size_t width = 0;
    for (const CFact& fact : facts) {
        width = std::max(width, fact.m_Title.size());
    }
    for (const CFact& fact : facts) {
        out << Padded(fact.m_Title, width, false) << "  " << TextOf(fact.m_Value) << '\n';
    }
}

CJson ToJson(const std::vector<CFact>& facts) {
    CJson object = CJson::object();
    for (const CFact& fact : facts) {
        object[fact.m_Key] = JsonOf(fact.m_Value);
    }
    return object;
}

void CTable::Print(std::ostream& out) const {
    if (m_Rows.empty()) {
        return;
    }
    std::vector<std::size_t> widths;
    for (std::size_t column = 0; column < m_Columns.size(); ++column) {
        std::size_t width = m_Columns[column].m_Title.size();
        for (const auto& row : m_Rows) {
            const std::size_t size = TextOf(row[column]).size();
            width = std::max(width, size <= MAX_COLUMN ? size : 0);
        }
        widths.push_back(width);
    }
    const auto printLine = [&](auto textOf) {
        std::string line;
        for (std::size_t column = 0; column < m_Columns.size(); ++column) {
            line += Padded(textOf(column), widths[column], m_Columns[column].m_Right) + "  ";
        }
        out << line.substr(0, line.find_last_not_of(' ') + 1) << '\n';
    };
    printLine([&](std::size_t column) { return m_Columns[column].m_Title; });
    for (const auto& row : m_Rows) {
        printLine([&](std::size_t column) { return TextOf(row[column]); });
    }
}

CJson CTable::Json() const {
    CJson rows = CJson::array();
    for (const auto& row : m_Rows) {
        CJson object = CJson::object();
        for (std::size_t column = 0; column < m_Columns.size(); ++column) {
            object[m_Columns[column].m_Key] = JsonOf(row[column]);
        }
        rows.push_back(std::move(object));
    }
    return rows;
}

void PrintJson(const CJson& document) {
    std::cout << document.dump(2, ' ', false, CJson::error_handler_t::replace) << '\n';
}

} // namespace marlune::tool
