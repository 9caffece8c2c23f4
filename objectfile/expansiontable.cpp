// The free text that a file may hold for each symbol.
#include "objectfile/expansiontable.h"

#include <sstream>

#include "objectfile/utils.h"

namespace ObjectFile {

CExpansionTable::CExpansionTable(const CExpansionTable& other)
    : m_Contents(other.m_Contents ? std::make_unique<CContents>(*other.m_Contents) : nullptr) {}

CExpansionTable& CExpansionTable::operator=(const CExpansionTable& other) {
    return *this = CExpansionTable(other);
}

int CExpansionTable::Count() const {
    return m_Contents ? m_Contents->m_LineCount + (m_Contents->m_HeaderText.empty() ? 0 : 2) : 0;
}

std::vector<std::string> CExpansionTable::GetLines() const {
    std::vector<std::string> lines;
    std::istringstream text(m_Contents ? m_Contents->m_Lines : std::string());
    for (std::string line; std::getline(text, line);) {
        lines.push_back(line);
    }
    return lines;
}

void CExpansionTable::AddLine(const std::string& line) {
    CContents& contents = Contents();
    contents.m_Lines += line;
    contents.m_Lines += '\n';
    ++contents.m_LineCount;
}

void CExpansionTable::LoadFromStream(CInputStream& in) {
    m_Contents.reset();
    int count = Int<int>(in.GetLine());
    if (count > 1) {
        const int length = Int<int>(in.GetLine());
        SetHeaderText(in.GetLine(length));
        count -= 2;
    }
    for (; count > 0; --count) {
        AddLine(in.GetLine());
    }
}

void CExpansionTable::SaveToStream(COutputStream& out) const {
    out.WriteLine(Int<int>::ToString(Count(), 10), "symbol expansion data - count of lines");
    if (const std::string header = GetHeaderText(); !header.empty()) {
        out.WriteLine(std::to_string(header.size()));
        out.WriteLine(header);
    }
    for (const std::string& line : GetLines()) {
        out.WriteLine(line);
    }
}

CExpansionTable::CContents& CExpansionTable::Contents() {
    if (!m_Contents) {
        m_Contents = std::make_unique<CContents>();
    }
    return *m_Contents;
}

} // namespace ObjectFile
