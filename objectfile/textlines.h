// Some lines of a text, by index.
#ifndef MARLUNE_OBJECTFILE_TEXTLINES_H
#define MARLUNE_OBJECTFILE_TEXTLINES_H

#include <cstddef>
#include <map>
#include <string>
#include <string_view>

namespace ObjectFile {

/// Some lines of a text, by line index, in little more memory than their characters.
///
/// Implementation note: runs of neighbouring lines share a block, in which its length precedes each line. A look-up
/// costs O(log runs) and a walk over at most 512 lines.
class CTextLines {
public:
    bool Has(int line) const;
    /// The text of a line, which must exist; valid until the next change.
    std::string_view Get(int line) const;
    /// Adds or replaces a line.
    void Set(int line, std::string_view text);
    /// Does nothing if the line does not exist.
    void Erase(int line);
    void Clear() { m_Runs.clear(); }

    /// The first line from `line` on, or -1.
    int Next(int line) const;

private:
    static constexpr int MAX_LINES = 512;                         // of a run, whose lines are searched one by one
    static constexpr std::size_t MAX_SIZE = std::size_t{1} << 16; // beyond it a run takes no further line

    struct CRun {
        int m_Count = 0;
        std::string m_Lines;
    };
    using CRuns = std::map<int, CRun>; // by the index of the first line

    /// The run with the line, or the end.
    CRuns::const_iterator Find(int line) const;
    void Append(int line, std::string_view text);

    CRuns m_Runs;
};

} // namespace ObjectFile

#endif
