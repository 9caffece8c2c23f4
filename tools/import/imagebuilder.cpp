// Makes sections of LAUs from the bytes of a program.
#include "tools/import/imagebuilder.h"

#include <algorithm>
#include <array>
#include <limits>
#include <map>
#include <stdexcept>
#include <unordered_set>

#include "byte_group"
#include "objectfile/bitdigits.h"
#include "tools/text.h"

namespace marlune::tool {
namespace {

using ObjectFile::CObjectFile;
using ObjectFile::CSection;
using ObjectFile::CSymbol;

constexpr int USUAL_WORD = 32; // bits of a line of the text form, where LAUs fit into it
constexpr std::uint64_t LAU_ADDRESSES = std::uint64_t{1} << 32;
constexpr std::uint64_t MOST_LAUS = std::numeric_limits<int>::max(); // of a section
constexpr std::size_t CHUNK_BYTES = std::size_t{1} << 18;            // converted at a time

/// The LAUs of a section of the image.
struct CRange {
    const CProgramSection* m_Section;
    std::uint64_t m_First;
    std::uint64_t m_End;

    bool IsZero() const { return m_Section->IsZero(); }
};

class CImageBuilder {
public:
    CImageBuilder(const CProgram& program, const CImportOptions& options, const CWarn& warn)
        : m_Program(program), m_Options(options), m_Warn(warn), m_FileBase(options.m_Base.value_or(0)),
          m_Width(LauBits(options)), m_Bytes((m_Width + 7) / 8), m_Order(options.m_Order.value_or(program.m_Order)) {
        const auto width = static_cast<int>(m_Width);
        const int perWord = USUAL_WORD % width == 0 ? USUAL_WORD / width : 1;
        m_Image = std::make_unique<CObjectFile>(width * perWord, perWord, m_Order, options.m_Space.value_or(""));
    }

    std::unique_ptr<CObjectFile> Build() {
        for (const CProgramSection& section : m_Program.m_Sections) {
            AddRange(section);
        }
        WarnOfFilledBytes();
        for (const CRange& range : m_Ranges) {
            AddSection(range);
        }
        AddSymbols();
        SetEntryPoint();
        return std::move(m_Image);
    }

private:
    std::uint64_t Base() const { return m_FileBase * m_Program.m_WordBytes; }
    /// Sections without names are runs of LAUs, not the runs of bytes that form them.
    bool HasNames() const { return !m_Program.m_Sections.front().m_Name.empty(); }

    void RequireAddresses(const CProgramSection& section) const {
        if (section.m_Address / m_Program.m_WordBytes < m_FileBase) {
            throw std::runtime_error(m_Program.Describe(section) + " begins below the base, " + Hex(m_FileBase));
        }
        const std::uint64_t last = (section.End() - 1 - Base()) / m_Bytes;
        if (last >= LAU_ADDRESSES) {
            throw std::runtime_error(m_Program.Describe(section) + " reaches LAU " + Hex(last) +
                                     ", but the addresses of a memory end at " + Hex(LAU_ADDRESSES - 1) +
                                     " (--base is subtracted from the program's)");
        }
    }

    void AddRange(const CProgramSection& section) {
        RequireAddresses(section);
        m_Sections[section.m_Key] = nullptr;
        CRange range{&section, (section.m_Address - Base()) / m_Bytes,
                     (section.End() - Base() + m_Bytes - 1) / m_Bytes};
        if (!m_Ranges.empty() && range.m_First < m_Ranges.back().m_End) { // they meet in one LAU
            if (m_Ranges.back().IsZero() && !range.IsZero()) {
                --m_Ranges.back().m_End;
                if (m_Ranges.back().m_First == m_Ranges.back().m_End) {
                    m_Ranges.pop_back();
                }
            } else {
                ++range.m_First;
            }
        }
        if (!HasNames() && !m_Ranges.empty() && range.m_First == m_Ranges.back().m_End) {
            m_Ranges.back().m_End = range.m_End;
        } else if (range.m_First < range.m_End) {
            m_Ranges.push_back(range);
        }
    }

    /// Warns of LAUs of which the program gives some bytes, but not all.
    void WarnOfFilledBytes() const {
        std::uint64_t filled = 0;
        std::uint64_t first = 0;
        const auto note = [&](std::uint64_t begin, std::uint64_t end) {
            first = filled == 0 ? begin : first;
            filled += end > begin ? end - begin : 0;
        };
        const auto lauStart = [this](std::uint64_t address) { return address - (address - Base()) % m_Bytes; };
        std::uint64_t known = Base(); // up to here: given, or noted
        for (const CProgramSection& section : m_Program.m_Sections) {
            const std::uint64_t tailEnd = std::min(lauStart(known + m_Bytes - 1), section.m_Address);
            note(known, tailEnd);
            note(section.IsZero() ? section.m_Address : std::max({known, tailEnd, lauStart(section.m_Address)}),
                 section.m_Address);
            known = section.IsZero() ? lauStart(section.End() + m_Bytes - 1) : section.End();
        }
        note(known, lauStart(known + m_Bytes - 1));
        if (filled > 0) {
            m_Warn("LAUs that the program gives only in part are filled with zeros: " + Counted(filled, "byte") +
                   ", the first is " + m_Program.DescribeAddress(first));
        }
    }

    void AddSection(const CRange& range) {
        const std::uint64_t count = range.m_End - range.m_First;
        if (count > MOST_LAUS) {
            throw std::runtime_error(m_Program.Describe(*range.m_Section) + " has " + std::to_string(count) +
                                     " LAUs, but a section of an image has at most " + std::to_string(MOST_LAUS));
        }
        const std::string name =
            HasNames() ? range.m_Section->m_Name : "block" + std::to_string(m_Image->SectionsCount());
        CSection& section = *m_Image->CreateSection(range.m_Section->m_Type, name);
        section.SetMemoryByteAddress(range.m_First);
        section.SetMemoryByteAddressIsAbsolute(true);
        section.SetByteAddressAlignment(1);
        if (range.IsZero()) {
            section.CreateSectionData()->FillZero(static_cast<int>(count));
        } else {
            AddContents(*section.CreateSectionData(), range);
        }
        m_Sections[range.m_Section->m_Key] = &section;
        if (section.IsStack(false) || section.IsHeap(false)) {
            m_Warn("a load leaves out the section '" + Printable(name) + "', as all of that name");
        }
    }

    void AddContents(ObjectFile::CSectionData& data, const CRange& range) const {
        const std::size_t most = CHUNK_BYTES / m_Bytes / 64 * 64; // LAUs, so many that they fill limbs of 64 bits
        std::vector<char> bytes(most * m_Bytes);
        for (std::uint64_t lau = range.m_First; lau < range.m_End; lau += most) {
            const auto count = static_cast<std::size_t>(std::min<std::uint64_t>(most, range.m_End - lau));
            m_Program.Read(Base() + lau * m_Bytes, bytes.data(), count * m_Bytes);
            if (m_Width % 8 == 0) {
                AddBytes(data, bytes.data(), count * m_Bytes);
            } else {
                AddOddLaus(data, bytes.data(), count);
            }
        }
    }

    /// Appends bytes as digits: bit 7 of each first in a big-endian section, bit 0 first in a little-endian one.
    void AddBytes(ObjectFile::CSectionData& data, const char* bytes, std::size_t count) const {
        std::vector<std::uint64_t> limbs((count + 7) / 8);
        for (std::size_t i = 0; i < limbs.size(); ++i) {
            std::array<char, 8> eight{};
            std::copy_n(bytes + i * 8, std::min<std::size_t>(8, count - i * 8), eight.data());
            const std::uint64_t limb = LoadGroup(eight.data());
            limbs[i] = m_Order == ObjectFile::BO_BIG ? __builtin_bswap64(limb) : ObjectFile::ReverseBits(limb);
        }
        data.AddPacked(limbs.data(), static_cast<std::int64_t>(count) * 8);
    }

    /// Appends numbers of m_Width bits, each in m_Bytes bytes whose highest bits are not used.
    void AddOddLaus(ObjectFile::CSectionData& data, const char* bytes, std::size_t count) const {
        const bool big = m_Order == ObjectFile::BO_BIG;
        std::string digits;
        for (std::size_t lau = 0; lau < count; ++lau, bytes += m_Bytes) {
            for (unsigned i = 0; i < m_Width; ++i) {
                const unsigned bit = big ? m_Width - 1 - i : i;
                const unsigned byte = big ? m_Bytes - 1 - bit / 8 : bit / 8;
                digits += (static_cast<unsigned char>(bytes[byte]) >> (bit % 8) & 1U) != 0 ? '1' : '0';
            }
        }
        data.Add(digits);
    }

    void AddSymbols() {
        std::unordered_set<std::string> publicNames;
        for (const CProgramSymbol& symbol : m_Program.m_Symbols) {
            if (symbol.m_Type != CSymbol::TYPE_PRIVATE) {
                publicNames.insert(symbol.m_Name);
            }
        }
        std::uint64_t ambiguous = 0;
        for (const CProgramSymbol& symbol : m_Program.m_Symbols) {
            if (symbol.m_Type == CSymbol::TYPE_PRIVATE && publicNames.count(symbol.m_Name) > 0) {
                ++ambiguous;
            } else {
                ambiguous += AddSymbol(symbol) ? 0 : 1;
            }
        }
        if (ambiguous > 0) {
            m_Warn(Counted(ambiguous, "symbol") + " with the name of another one left out");
        }
    }

    /// False if there is one of that name already.
    bool AddSymbol(const CProgramSymbol& source) {
        ObjectFile::CSymbolTable& table =
            m_Image->SymbolTablesCount() > 0 ? *m_Image->GetSymbolTable(0) : *m_Image->CreateSymbolTable();
        if (table.FindSymbol(source.m_Name) != nullptr) {
            return false;
        }
        auto symbol = std::make_unique<CSymbol>(source.m_Name, source.m_Type);
        symbol->SetUsageType(source.m_Usage);
        const std::uint64_t size = source.m_Size / m_Bytes + (source.m_Size % m_Bytes != 0 ? 1 : 0);
        symbol->SetBlockSize(static_cast<int>(std::min(size, MOST_LAUS)));
        symbol->SetMemoryAddress(source.m_Address);
        if (source.m_Type != CSymbol::TYPE_ABSOLUTE) {
            const std::uint64_t lau = (source.m_Address - Base()) / m_Bytes;
            CSection* const section = source.m_Address < Base() ? nullptr : SectionOf(source.m_Key, lau);
            if (section == nullptr) {
                return true; // it lies in nothing that is loaded
            }
            symbol->SetSection(section);
            symbol->SetMemoryAddress(lau - section->GetMemoryByteAddress());
        }
        table.AddSymbol(std::move(symbol));
        return true;
    }

    /// The section of the key, or another with the LAU in which the two meet; null if the key is of none.
    CSection* SectionOf(std::size_t key, std::uint64_t lau) const {
        const auto found = m_Sections.find(key);
        if (found == m_Sections.end()) {
            return nullptr;
        }
        if (found->second != nullptr && found->second->GetMemoryByteAddress() <= lau) {
            return found->second;
        }
        const auto after = std::upper_bound(m_Ranges.begin(), m_Ranges.end(), lau,
                                            [](std::uint64_t u, const CRange& range) { return u < range.m_First; });
        const bool inRange = after != m_Ranges.begin() && lau < std::prev(after)->m_End;
        return inRange ? m_Sections.at(std::prev(after)->m_Section->m_Key) : nullptr;
    }

    void SetEntryPoint() {
        const bool isGiven = m_Options.m_Entry.has_value();
        const auto address = isGiven ? *m_Options.m_Entry * m_Program.m_WordBytes : m_Program.m_Entry.value_or(Base());
        if (address < Base()) {
            const std::string text = "the entry point, " + m_Program.DescribeAddress(address) + ", is below the base";
            if (isGiven) {
                throw std::runtime_error(text);
            }
            m_Warn(text + " and is left out");
        } else if (isGiven || m_Program.m_Entry) {
            m_Image->SetEntryPoint((address - Base()) / m_Bytes);
        }
    }

    const CProgram& m_Program;
    const CImportOptions& m_Options;
    const CWarn& m_Warn;
    const std::uint64_t m_FileBase; // in the unit of the file's addresses
    const std::uint32_t m_Width;    // bits of a LAU
    const unsigned m_Bytes;         // of a LAU
    const ObjectFile::eByteOrder m_Order;
    std::unique_ptr<CObjectFile> m_Image;
    std::vector<CRange> m_Ranges;                // by address
    std::map<std::size_t, CSection*> m_Sections; // by key; null if others have all its LAUs
};

} // namespace

std::unique_ptr<CObjectFile> BuildImage(CProgram& program, const CImportOptions& options, const CWarn& warn) {
    program.Arrange(warn);
    return CImageBuilder(program, options, warn).Build();
}

} // namespace marlune::tool
