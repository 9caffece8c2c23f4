// `check`: what is wrong with a file, and what a load would refuse or leave out.
#include <array>
#include <iostream>
#include <limits>
#include <map>
#include <set>
#include <stdexcept>

#include "tools/commands.h"
#include "tools/image.h"
#include "tools/layout.h"
#include "tools/progress.h"
#include "tools/table.h"
#include "tools/text.h"

namespace marlune::tool {
namespace {

using ObjectFile::CSection;
using ObjectFile::CSectionData;

constexpr int MOST_BITS = 1024; // of a memory's cell

class CChecker {
public:
    /// `warnings` are those of an import.
    CChecker(const ObjectFile::CObjectFile& image, const COptions& options, const std::vector<std::string>& warnings)
        : m_Image(image), m_Options(options),
          m_Table({{"Finding", "severity"}, {"Section", "section"}, {"What", "text"}}) {
        for (const std::string& text : warnings) {
            Warn("", text);
        }
    }

    void Run() {
        for (int i = 0; i < m_Image.SectionsCount(); ++i) {
            CheckSection(*m_Image.GetSection(i));
        }
        CheckOverlaps();
        CheckNames();
        if (m_Loaded == 0) {
            Warn("", "nothing would be loaded" +
                         (m_Options.m_Space ? " from address space '" + Printable(*m_Options.m_Space) + "'" : ""));
        }
    }

    int Report() const {
        if (m_Options.m_Json) {
            PrintJson({{"file", m_Options.m_File},
                       {"ok", m_Errors == 0},
                       {"sections", m_Image.SectionsCount()},
                       {"loaded", m_Loaded},
                       {"findings", m_Table.Json()}});
        } else {
            m_Table.Print(std::cout);
            std::cout << (m_Table.IsEmpty() ? "" : "\n") << Printable(m_Options.m_File) << ": " << m_Loaded << " of "
                      << Counted(static_cast<std::uint64_t>(m_Image.SectionsCount()), "section") << " to load, "
                      << Counted(m_Errors, "error") << ", " << Counted(m_Warnings, "warning") << '\n';
        }
        return m_Errors == 0 ? STATUS_OK : STATUS_BAD;
    }

private:
    void Error(const std::string& section, const std::string& text) {
        m_Table.AddRow({"error", section, text});
        ++m_Errors;
    }
    void Warn(const std::string& section, const std::string& text) {
        m_Table.AddRow({"warning", section, text});
        ++m_Warnings;
    }

    void CheckSection(const CSection& section) {
        const std::string& space = section.GetAddressSpaceName();
        try {
            if (!foreign::IsLoaded(section, m_Options.m_Space.value_or(space), false)) {
                const std::string reason = ReasonLeftOut(section);
                const std::string otherSpace = "in another address space, '" + Printable(space) + "'";
                m_Table.AddRow({"left out", section.GetName(), reason.empty() ? otherSpace : reason});
                return;
            }
            if (LauCount(section) == 0) {
                m_Table.AddRow({"left out", section.GetName(), "no contents"});
                return;
            }
            ++m_Loaded;
            CheckLaus(section);
        } catch (const std::exception& error) {
            Error(section.GetName(), error.what());
        }
        if (section.GetMemoryByteAddress() > std::numeric_limits<std::uint32_t>::max()) {
            Warn(section.GetName(),
                 "of its address " + Hex(section.GetMemoryByteAddress()) + " a load takes only the low 32 bits");
        }
        if (section.RelocationCount() > 0) {
            Warn(section.GetName(), "a load does not apply its " +
                                        Counted(static_cast<std::uint64_t>(section.RelocationCount()), "relocation"));
        }
    }

    /// The LAUs' width, and that each of them is a number.
    void CheckLaus(const CSection& section) {
        const CSectionData& data = *section.GetSectionData();
        // Without a width to compare with, all sections of an address space must agree with its first.
        const auto first = m_Widths
                               .try_emplace(section.GetAddressSpaceName(),
                                            m_Options.m_Width.value_or(static_cast<unsigned>(data.GetByteLength(0))))
                               .first;
        foreign::CheckLauWidth({"memory", first->second, 0}, m_Image, data);
        if (section.GetType() == CSection::TYPE_BSS) {
            return; // zeros, and maybe very many
        }
        CheckDigits(section, data);
    }

    /// Reports the first LAU that a load stops at or misreads.
    void CheckDigits(const CSection& section, const CSectionData& data) {
        if (data.GetByteBitSize() > MOST_BITS) {
            Warn(section.GetName(), "of its " + std::to_string(data.GetByteBitSize()) +
                                        "-bit LAUs a memory keeps only the low " + std::to_string(MOST_BITS) + " bits");
            return;
        }
        std::array<std::uint64_t, MOST_BITS / 64> limbs{};
        for (int lau = 0; lau < data.GetByteCount(); ++lau) {
            if (data.GetByteBits(lau, limbs.data())) {
                continue;
            }
            const std::string where = "the LAU at " + Hex(section.GetMemoryByteAddress() + static_cast<unsigned>(lau));
            try {
                const std::string digits = data.GetByte(lau);
                if (digits.size() < static_cast<std::size_t>(data.GetByteBitSize()) ||
                    digits.find_first_not_of("01") != std::string::npos) {
                    Warn(section.GetName(), where + " is not " + std::to_string(data.GetByteBitSize()) +
                                                " binary digits: " + Printable(digits));
                    return;
                }
            } catch (const std::out_of_range&) {
                Error(section.GetName(), where + " lies beyond the end of its line, where a load stops");
                return;
            }
        }
    }

    void CheckOverlaps() {
        for (const CSpace& space : LayOut(m_Image, false)) {
            for (const CPiece& piece : space.m_Pieces) {
                if (piece.m_Overlaps != nullptr && space.m_Name == m_Options.m_Space.value_or(space.m_Name)) {
                    Warn(piece.m_Section->GetName(), "overlaps " + Printable(piece.m_Overlaps->GetName()) + " from " +
                                                         Hex(piece.m_First) +
                                                         " on; the later section in the file wins");
                }
            }
        }
    }

    /// Names matter beyond a load: a simulator quotes them in messages, and a text file stores them.
    void CheckNames() {
        WarnOfTcl("", "the file's name", m_Options.m_File);
        for (int i = 0; i < m_Image.SectionsCount(); ++i) {
            const CSection& section = *m_Image.GetSection(i);
            WarnOfTcl(section.GetName(), "its name", section.GetName());
            WarnOfTcl(section.GetName(), "its address space", section.GetAddressSpaceName());
        }
        std::size_t withoutType = 0;
        for (int i = 0; i < m_Image.SymbolTablesCount(); ++i) {
            const ObjectFile::CSymbolTable& symbols = *m_Image.GetSymbolTable(i);
            for (int k = 0; k < symbols.Count(); ++k) {
                const ObjectFile::CSymbol& symbol = *symbols.GetSymbol(k);
                WarnOfTcl("", "a symbol's name", symbol.GetName());
                withoutType += symbol.GetType() == ObjectFile::CSymbol::TYPE_NONE ? 1 : 0;
            }
        }
        if (withoutType > 0) {
            Warn("", Counted(withoutType, "symbol") + " of a binding that the text format does not have: converted to "
                                                      "text, the image does not load again");
        }
    }

    /// Once for each kind of name.
    void WarnOfTcl(const std::string& section, const char* what, const std::string& name) {
        if (name.find_first_of("[]$\"\\") != std::string::npos && m_WarnedOfTcl.insert(what).second) {
            Warn(section,
                 std::string(what) + " '" + Printable(name) +
                     "' holds one of [ ] $ \" \\: where an error message quotes it, the simulator's Tcl evaluates it");
        }
    }

    const ObjectFile::CObjectFile& m_Image;
    const COptions& m_Options;
    CTable m_Table;
    std::set<std::string> m_WarnedOfTcl;
    std::map<std::string, std::uint32_t> m_Widths; // of a LAU, by address space
    std::uint64_t m_Loaded = 0;
    std::uint64_t m_Errors = 0;
    std::uint64_t m_Warnings = 0;
};

} // namespace

int RunCheck(const COptions& options) {
    std::vector<std::string> warnings;
    const auto image = LoadImage(options, [&](const std::string& text) { warnings.push_back(text); });
    CChecker checker(*image, options, warnings);
    {
        const CProgress progress("checking " + options.m_File, CProgress::READING, 0);
        checker.Run();
    }
    return checker.Report();
}

} // namespace marlune::tool
