// Some lines of a text, by index.
#include "objectfile/textlines.h"

#include <iterator>

namespace ObjectFile {

namespace {

/// Lengths are written seven bits a character, the lowest first; all but the last character have bit 7 set.
void AppendLine(std::string& lines, std::string_view text) {
    std::size_t length = text.size();
    for (; length >= 0x80; length >>= 7U) {
        lines += static_cast<char>(length | 0x80U);
    }
    lines += static_cast<char>(length);
    lines += text;
}

/// Removes the first line.
std::string_view TakeLine(std::string_view& lines) {
    std::size_t length = 0;
    unsigned shift = 0;
    bool more = true;
    for (; more; shift += 7) {
        const auto digit = static_cast<unsigned char>(lines.front());
        length |= static_cast<std::size_t>(digit & 0x7FU) << shift;
        more = digit >= 0x80;
        lines.remove_prefix(1);
    }
    const std::string_view text = lines.substr(0, length);
    lines.remove_prefix(length);
    return text;
}

} // namespace

CTextLines::CRuns::const_iterator CTextLines::Find(int line) const {
    const auto after = m_Runs.upper_bound(line);
    if (after == m_Runs.begin()) {
        return m_Runs.end();
    }
    const auto run = std::prev(after);
    return line - run->first < run->second.m_Count ? run : m_Runs.end();
}

bool CTextLines::Has(int line) const {
    return Find(line) != m_Runs.end();
}

std::string_view CTextLines::Get(int line) const {
    const auto run = Find(line);
    std::string_view lines = run->second.m_Lines;
    for (int i = run->first; i < line; ++i) {
        TakeLine(lines);
    }
    return TakeLine(lines);
}

void CTextLines::Set(int line, std::string_view text) {
    const std::string kept(text); // it may be one of ours
    Erase(line);
    Append(line, kept);
}

void CTextLines::Append(int line, std::string_view text) {
    auto run = m_Runs.lower_bound(line);
    if (run != m_Runs.begin()) {
        --run;
        const bool isNext = line - run->first == run->second.m_Count;
        if (isNext && run->second.m_Count < MAX_LINES && run->second.m_Lines.size() < MAX_SIZE) {
            ++run->second.m_Count;
            AppendLine(run->second.m_Lines, text);
            return;
        }
        run->second.m_Lines.shrink_to_fit(); // it is most likely complete
    }
    CRun& added = m_Runs[line];
    added.m_Count = 1;
    AppendLine(added.m_Lines, text);
}

void CTextLines::Erase(int line) {
    const auto found = Find(line);
    if (found == m_Runs.end()) {
        return;
    }
    // The lines before it stay in their run; those after it become a run of their own.
    const auto run = m_Runs.find(found->first);
    std::string_view rest = run->second.m_Lines;
    for (int i = run->first; i < line; ++i) {
        TakeLine(rest);
    }
    const std::size_t before = run->second.m_Lines.size() - rest.size();
    TakeLine(rest);
    const int countAfter = run->first + run->second.m_Count - line - 1;
    if (countAfter > 0) {
        m_Runs[line + 1] = {countAfter, std::string(rest)};
    }
    run->second.m_Count = line - run->first;
    run->second.m_Lines.resize(before);
    if (run->second.m_Count == 0) {
        m_Runs.erase(run);
    }
}

int CTextLines::Next(int line) const {
    if (Has(line)) {
        return line;
    }
    const auto after = m_Runs.lower_bound(line);
    return after == m_Runs.end() ? -1 : after->first;
}

} // namespace ObjectFile
