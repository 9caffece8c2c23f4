// All tables that the tool prints, for people and for scripts.
#ifndef MARLUNE_TOOLS_TABLE_H
#define MARLUNE_TOOLS_TABLE_H

#include <cstdint>
#include <iosfwd>
#include <string>
#include <variant>
#include <vector>

#include <nlohmann/json.hpp>

namespace marlune::tool {

using CJson = nlohmann::ordered_json;

/// A number that people read in hexadecimal.
struct CHex {
    std::uint64_t m_Value;
};

/// One field. std::monostate and an empty text print as "-"; in JSON std::monostate is null.
using CField = std::variant<std::monostate, std::string, std::uint64_t, std::int64_t, CHex, bool>;

/// One property of a whole file.
struct CFact {
    std::string m_Title; // for people
    std::string m_Key;   // for scripts
    CField m_Value;
};

/// A line for each fact; an object with a member for each.
void Print(std::ostream& out, const std::vector<CFact>& facts);
CJson ToJson(const std::vector<CFact>& facts);

/// Rows of fields under column titles.
class CTable {
public:
    struct CColumn {
        std::string m_Title; // for people
        std::string m_Key;   // for scripts
        bool m_Right = false;
    };

    explicit CTable(std::vector<CColumn> columns) : m_Columns(std::move(columns)) {}

    /// A field for each column.
    void AddRow(std::vector<CField> fields) { m_Rows.push_back(std::move(fields)); }
    bool IsEmpty() const { return m_Rows.empty(); }

    /// Aligned columns under their titles; nothing at all if there are no rows. One long field does not widen all rows,
    /// and a very long one is cut.
    void Print(std::ostream& out) const;
    /// An array with an object for each row.
    CJson Json() const;

private:
    std::vector<CColumn> m_Columns;
    std::vector<std::vector<CField>> m_Rows;
};

/// Writes the document to standard output. Bytes that are not UTF-8 become replacement characters.
void PrintJson(const CJson& document);

} // namespace marlune::tool

#endif
