// The free text that a file may hold for each symbol.
#ifndef MARLUNE_OBJECTFILE_EXPANSIONTABLE_H
#define MARLUNE_OBJECTFILE_EXPANSIONTABLE_H

#include <memory>
#include <string>
#include <vector>

#include "objectfile/streams.h"

namespace ObjectFile {

/// Free text lines stored with a symbol. Most tables are empty and are held as a null pointer. Lines take little more
/// memory than their characters, because a file may hold millions of empty ones.
class CExpansionTable {
public:
    CExpansionTable() = default;
    CExpansionTable(const CExpansionTable& other);
    CExpansionTable(CExpansionTable&&) = default;
    CExpansionTable& operator=(const CExpansionTable& other);
    CExpansionTable& operator=(CExpansionTable&&) = default;
    virtual ~CExpansionTable() = default;

    /// Lines that the table's contents occupy in a file: two for a header text that is not empty, and its lines.
    int Count() const;

    std::string GetHeaderText() const { return m_Contents ? m_Contents->m_HeaderText : std::string(); }
    void SetHeaderText(const std::string& text) { Contents().m_HeaderText = text; }
    std::vector<std::string> GetLines() const;
    /// A file holds the line as it is, so it must not contain a newline.
    void AddLine(const std::string& line);

    /// A header is written only if its text is not empty, but the first two lines of a table of two or more lines
    /// are always read as a header.
    void LoadFromStream(CInputStream& in);
    void SaveToStream(COutputStream& out) const;

private:
    struct CContents {
        std::string m_HeaderText;
        std::string m_Lines; // each with a newline at its end
        int m_LineCount = 0;
    };
    CContents& Contents();

    std::unique_ptr<CContents> m_Contents; // none while the table is empty
};

} // namespace ObjectFile

#endif
