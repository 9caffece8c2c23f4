// The editing operations of the object model against plain lists.
#include "tests/objectfile/editmodel.h"

#include <algorithm>
#include <array>
#include <set>
#include <stdexcept>
#include <utility>
#include <vector>

#include "objectfile/objectfile.h"
#include "tests/objectfile/imagecheck.h"

using namespace ObjectFile;

namespace {

constexpr std::array<const char*, 6> NAMES{"a",      ".data",       "a name of more than fifteen characters",
                                           ".stack", ".debug_info", "another name of more than fifteen"};
constexpr std::array<std::array<int, 2>, 12> SHAPES{
    // word bit-size, bytes per word
    {{32, 4}, {8, 1}, {8, 4}, {24, 3}, {64, 1}, {20, 3}, {1, 1}, {96, 2}, {150, 1}, {13, 1}, {128, 2}, {160, 4}}};

/// Section data as a plain list of texts.
struct CTextModel {
    std::size_t m_Word;
    std::size_t m_Byte;
    std::vector<std::string> m_Lines;

    bool IsOpen() const {
        return !m_Lines.empty() && m_Lines.back().size() < m_Word && m_Lines.back().size() >= m_Byte;
    }
    void Add(std::string bits) {
        if (IsOpen()) {
            const std::size_t room = m_Word - m_Lines.back().size() / m_Byte * m_Byte;
            m_Lines.back() += bits.substr(0, room);
            bits.erase(0, room);
        }
        for (; !bits.empty(); bits.erase(0, m_Word)) {
            m_Lines.push_back(bits.substr(0, m_Word));
        }
    }
    void AddZero() {
        if (IsOpen() && m_Lines.back().size() / m_Byte == m_Word / m_Byte) { // its last characters are in no byte
            m_Lines.back().resize(m_Word, '0');
        }
        if (!IsOpen()) {
            m_Lines.emplace_back();
        }
        std::string& line = m_Lines.back();
        const std::size_t bytes = line.size() / m_Byte + 1;
        line.resize(bytes == m_Word / m_Byte ? m_Word : std::max(line.size(), bytes * m_Byte), '0');
    }
    /// The line of a byte, and the byte's position in it; nothing when the line does not hold it.
    std::pair<std::string*, std::size_t> Find(int address) {
        const auto index = static_cast<std::size_t>(address) / (m_Word / m_Byte);
        const std::size_t position = static_cast<std::size_t>(address) % (m_Word / m_Byte) * m_Byte;
        return index < m_Lines.size() && position < m_Lines[index].size() ? std::pair(&m_Lines[index], position)
                                                                          : std::pair(nullptr, 0);
    }
};

struct CModelSection {
    CSection* m_Section;
    std::string m_Name;
    CTextModel m_Data;
    std::vector<const CSymbol*> m_Relocations; // the symbols of them
};

struct CModelSymbol {
    CSymbol* m_Symbol;
    std::string m_Name;
    const CSection* m_Section; // bound to it
    bool m_IsLost;             // the section was destroyed
};

void Require(bool condition, const char* what) {
    if (!condition) {
        throw std::logic_error(what);
    }
}

template <typename TError, typename TAction>
bool Throws(TAction action) {
    try {
        action();
    } catch (const TError&) {
        return true;
    }
    return false;
}

class CEdits {
    template <typename TList>
    auto& Pick(TList& list) {
        return list[Take() % list.size()];
    }

public:
    explicit CEdits(std::string_view bytes) : m_Bytes(bytes) {
        CreateSection();
        AddSymbol();
    }

    void Run() {
        constexpr std::array<void (CEdits::*)(), 15> OPERATIONS{
            &CEdits::CreateSection, &CEdits::DeleteSection, &CEdits::RenameSection, &CEdits::CopySection,
            &CEdits::AddRelocation, &CEdits::AddSymbol,     &CEdits::ChangeSymbol,  &CEdits::ChangeSymbol,
            &CEdits::BindSymbol,    &CEdits::AddData,       &CEdits::AddData,       &CEdits::ChangeByte,
            &CEdits::ChangeWord,    &CEdits::Organize,      &CEdits::AddBinary};
        while (!m_Bytes.empty()) {
            (this->*Pick(OPERATIONS))();
            if (m_Bytes.size() % 4 == 0) { // which costs more than an operation
                CompareRecords();
            }
        }
        for (CModelSection& section : m_Sections) {
            CompareData(*section.m_Section->GetSectionData(), section.m_Data);
        }
        Require(Throws<syntax_error>([&] { m_Image.CheckLinks(); }) == IsAnyLost(), "how links are refused");
    }

    /// Does a symbol lie in a section that is gone?
    bool IsAnyLost() const {
        return std::any_of(m_Symbols.begin(), m_Symbols.end(),
                           [](const CModelSymbol& symbol) { return symbol.m_IsLost && symbol.m_Symbol->HasSection(); });
    }

    /// Does the reader take each section to have as many lines as it has? It goes by the bytes, and where words are not
    /// whole bytes, pieces that were added one by one can have fewer of these than their lines hold, or more.
    bool AreLinesCounted() const {
        return std::all_of(m_Sections.begin(), m_Sections.end(), [](const CModelSection& section) {
            const CSectionData* const data = section.m_Section->GetSectionData();
            const int bytesPerWord = section.m_Section->GetBytesPerWord();
            return data == nullptr || data->Count() == (data->GetByteCount() + bytesPerWord - 1) / bytesPerWord;
        });
    }

    CObjectFile m_Image{8, 1, BO_LITTLE, "ram"};

private:
    unsigned Take() {
        const unsigned byte = m_Bytes.empty() ? 0 : static_cast<unsigned char>(m_Bytes.front());
        m_Bytes.remove_prefix(m_Bytes.empty() ? 0 : 1);
        return byte;
    }
    std::string Bits(std::size_t count) {
        std::string bits;
        while (bits.size() < count) {
            bits += ConvUnsignToBin(Take(), 8);
        }
        return bits.substr(0, count);
    }
    std::string SymbolName() { return Pick(NAMES) + std::to_string(Take() % 20); }
    CSection* AnySection() { return Take() % 4 == 0 ? nullptr : Pick(m_Sections).m_Section; }
    bool IsUsed(const std::string& name, const CSymbol* except) const {
        return std::any_of(m_Symbols.begin(), m_Symbols.end(), [&](const CModelSymbol& symbol) {
            return symbol.m_Name == name && symbol.m_Symbol != except;
        });
    }

    void CreateSection() {
        const std::string name = Pick(NAMES);
        const auto [word, perWord] = Pick(SHAPES);
        CSection* const section = m_Image.CreateSection(CSection::TYPE_DATA, name,
                                                        {word, perWord, Take() % 2 == 0 ? BO_LITTLE : BO_BIG, "ram"});
        section->SetMemoryByteAddress(Take());
        section->CreateSectionData();
        m_Deleted.erase(section);
        const auto bits = static_cast<std::size_t>(word);
        m_Sections.push_back({section, name, {bits, bits / static_cast<std::size_t>(perWord), {}}, {}});
    }

    void DeleteSection() {
        CObjectFile other;
        m_Image.DeleteSection(other.CreateSection(CSection::TYPE_DATA, "a"));
        Require(other.SectionsCount() == 1, "deleted in another file");
        if (!m_Deleted.empty()) {
            m_Image.DeleteSection(*m_Deleted.begin()); // for the second time
        }
        if (m_Sections.size() > 1) {
            const auto gone = m_Sections.begin() + static_cast<std::ptrdiff_t>(Take() % m_Sections.size());
            for (CModelSymbol& symbol : m_Symbols) {
                if (symbol.m_Section == gone->m_Section) {
                    symbol = {symbol.m_Symbol, symbol.m_Name, nullptr, true};
                }
            }
            m_Deleted.insert(gone->m_Section);
            m_Image.DeleteSection(gone->m_Section);
            m_Sections.erase(gone);
        }
    }

    void RenameSection() {
        CModelSection& section = Pick(m_Sections);
        section.m_Name = Pick(NAMES);
        section.m_Section->SetName(section.m_Name);
    }

    /// Into another object file, with its symbols or with this one's.
    void CopySection() {
        const CModelSection& source = Pick(m_Sections);
        CObjectFile other;
        CSymbolTable& symbols = *other.CreateSymbolTable();
        const unsigned way = Take() % 3;
        for (std::size_t i = 0; way == 0 && i < source.m_Relocations.size(); ++i) {
            symbols.AddSymbol(std::make_unique<CSymbol>(source.m_Relocations[i]->GetName(), CSymbol::TYPE_PRIVATE));
        }
        const bool refused =
            Throws<general_error>([&] { source.m_Section->Copy(other, way == 2 ? nullptr : &symbols); });
        Require(refused == (way == 1 && !source.m_Relocations.empty()), "how a copy is refused");
        Require(other.SectionsCount() == (refused ? 0 : 1), "what a copy leaves");
        for (std::size_t i = 0; !refused && i < source.m_Relocations.size(); ++i) {
            const CSymbol* const symbol = other.GetSection(0)->GetRelocation(static_cast<int>(i))->m_Symbol;
            Require(symbol ==
                        (way == 2 ? source.m_Relocations[i] : symbols.FindSymbol(source.m_Relocations[i]->GetName())),
                    "a copied relocation's symbol");
        }
        if (!refused) {
            CTextModel model = source.m_Data;
            CompareData(*other.GetSection(0)->GetSectionData(), model);
        }
    }

    void AddRelocation() {
        CModelSection& section = Pick(m_Sections);
        CRelocation relocation;
        relocation.m_SizeInBytes = 1;
        relocation.m_Symbol = Pick(m_Symbols).m_Symbol;
        const CRelocation* const added = section.m_Section->AddRelocation(relocation);
        section.m_Relocations.push_back(added->m_Symbol);
        const CRelocationTable& table = *section.m_Section->GetRelocationTable();
        Require(table.Count() == static_cast<int>(section.m_Relocations.size()) &&
                    table.Find(added) == table.Count() - 1 && table.Find(&relocation) == -1 &&
                    table.Get(table.Count()) == nullptr,
                "where a relocation is");
    }

    /// The memory organization of the file and what it says of the data.
    void Organize() {
        m_Image.SetMemoryOrganizationIsValid(Take() % 2 == 0);
        const auto findType = [&](CSection::eType type, const char* name) {
            const auto found = std::find_if(m_Sections.begin(), m_Sections.end(), [&](const CModelSection& s) {
                return s.m_Section->GetType() == type && (name == nullptr || m_Image.FindSection(name) == s.m_Section);
            });
            return found == m_Sections.end() ? nullptr : found->m_Section;
        };
        Pick(m_Sections).m_Section->SetType(Take() % 2 == 0 ? CSection::TYPE_DATA : CSection::TYPE_DEBUG);
        const CMemoryOrganization* data = findType(CSection::TYPE_DATA, ".data");
        data = m_Image.GetMemoryOrganizationIsValid() ? &m_Image
               : data != nullptr                      ? data
                                                      : findType(CSection::TYPE_DATA, nullptr);
        const CMemoryOrganization* debug = findType(CSection::TYPE_DEBUG, ".debug_info");
        debug = m_Image.GetMemoryOrganizationIsValid() || debug == nullptr ? data : debug;
        const CMemoryOrganization* found = nullptr;
        Throws<general_error>([&] { found = &m_Image.GetStackMemoryOrganization(); });
        Require(found == data, "the organization of the stack");
        found = nullptr;
        Throws<general_error>([&] { found = &m_Image.GetDataAndDebugMemoryOrganization(); });
        Require(found == debug, "the organization of the data");
        const CMemoryOrganization first = static_cast<const CMemoryOrganization&>(*m_Sections.front().m_Section);
        const bool uniform = std::all_of(m_Sections.begin(), m_Sections.end(), [&](const CModelSection& s) {
            return s.m_Section->HasTheSameMemoryOrganization(first);
        });
        const bool was = m_Image.GetMemoryOrganizationIsValid();
        Require(m_Image.TryToSetUniformMemoryOrganization() == (was || uniform), "a uniform organization");
        Require(was || !uniform || m_Image.HasTheSameMemoryOrganization(first), "an organization taken over");
    }

    void AddSymbol() {
        const std::string name = SymbolName();
        const auto type = static_cast<CSymbol::eType>(1 + Take() % 6);
        CSection* const section = AnySection();
        auto* symbol = new CSymbol(name, type, section, Take()); // owned by the table
        bool added = false;
        const bool refused = Throws<general_error>([&] { added = m_Table.AddSymbol(symbol); });
        Require(added != IsUsed(name, nullptr), "the second symbol of a name");
        Require(refused == (!added && type != CSymbol::TYPE_PRIVATE), "how a symbol is refused");
        if (added) {
            m_Refused.erase(symbol);
            m_Symbols.push_back({symbol, name, section, false});
        } else {
            m_Refused.insert(symbol);
        }
    }

    /// Renames a symbol, or assigns another one's copy to it, which is in no table.
    void ChangeSymbol() {
        const CModelSymbol source = Pick(m_Symbols);
        CModelSymbol& target = Pick(m_Symbols);
        const std::string name = SymbolName();
        CSymbol copy(*source.m_Symbol);
        Require(copy.ID() == -1 && copy.GetOwner() == nullptr && m_Table.FindSymbol(&copy) == -1, "a copy in a table");
        copy.UpdateName(name);
        const unsigned way = Take() % 3;
        const bool refused = Throws<general_error>([&] {
            if (way == 0) {
                *target.m_Symbol = copy;
            } else {
                way == 1 ? target.m_Symbol->UpdateName(name) : m_Table.UpdateSymbolName(target.m_Name, name);
            }
        });
        Require(refused == IsUsed(name, target.m_Symbol), "how a new name is refused");
        Require(Throws<general_error>([&] { m_Table.UpdateSymbolName("nobody", name); }), "nobody renamed");
        if (!refused) {
            const CModelSymbol& bound = way == 0 ? source : target;
            target = {target.m_Symbol, name, bound.m_Section, bound.m_IsLost};
            Require(way != 0 || target.m_Symbol->IsSameSymbolAs(&copy, true), "another symbol than was assigned");
        }
    }

    void BindSymbol() {
        CModelSymbol& symbol = Pick(m_Symbols);
        CSection stranger(&m_Image);
        stranger.SetName(symbol.m_Name);
        Require(Throws<std::out_of_range>([&] { symbol.m_Symbol->SetSection(&stranger); }), "bound to a stranger");
        if (Take() % 2 == 0) {
            CSection* const section = AnySection();
            symbol.m_Symbol->SetSection(section);
            symbol = {symbol.m_Symbol, symbol.m_Name, section, false};
        }
    }

    void AddData() {
        CModelSection& section = Pick(m_Sections);
        CSectionData& data = *section.m_Section->GetSectionData();
        CTextModel& model = section.m_Data;
        const std::string bits = Bits(Take() % 9 * model.m_Byte + (Take() % 20 == 0 ? 1 : 0));
        const unsigned way = Take() % 3;
        if (way == 0) {
            data.FillZero(static_cast<int>(bits.size() % 7));
            for (std::size_t i = bits.size() % 7; i > 0; --i) {
                model.AddZero();
            }
            return;
        }
        if (way == 1) {
            data.Add(bits.c_str());
        } else {
            std::vector<std::uint64_t> limbs(bits.size() / 64 + 1);
            for (std::size_t i = 0; i < bits.size(); ++i) {
                limbs[i / 64] |= static_cast<std::uint64_t>(bits[i] - '0') << (63 - i % 64);
            }
            data.AddPacked(limbs.data(), static_cast<std::int64_t>(bits.size()));
        }
        model.Add(bits);
    }

    /// Bytes of eight bits in place of all that there was.
    void AddBinary() {
        CModelSection& section = Pick(m_Sections);
        if (Take() % 2 == 0) {
            section.m_Section->ClearAll();
        } else {
            section.m_Section->Free();
            section.m_Section->CreateSectionData();
        }
        section.m_Relocations.clear();
        section.m_Data.m_Lines.clear();
        std::vector<char> bytes(Take() % 9);
        std::string digits;
        for (char& byte : bytes) {
            byte = static_cast<char>(Take());
            const std::string eight = ConvUnsignToBin(static_cast<unsigned char>(byte), 8);
            digits += section.m_Section->GetByteOrder() == BO_LITTLE ? ReverseEndianess(eight) : eight;
        }
        section.m_Section->AddBinaryData(bytes);
        section.m_Data.Add(digits);
        Require(section.m_Section->GetBinaryData() == bytes, "other bytes than were added");
    }

    void ChangeByte() {
        CModelSection& section = Pick(m_Sections);
        CSectionData& data = *section.m_Section->GetSectionData();
        const std::string text = Take() % 20 == 0 ? "2" : Bits(section.m_Data.m_Byte);
        const int address = static_cast<int>(Take()) % (data.GetByteCount() + 1);
        const auto [line, position] = section.m_Data.Find(address);
        const bool outside = Throws<std::out_of_range>([&] { data.SetByte(address, text); });
        Require(outside == (address == data.GetByteCount() || line == nullptr), "a byte outside");
        if (!outside) {
            line->replace(position, section.m_Data.m_Byte, text);
        }
    }

    void ChangeWord() {
        CModelSection& section = Pick(m_Sections);
        if (!section.m_Data.m_Lines.empty()) {
            const std::size_t line = Take() % section.m_Data.m_Lines.size();
            const std::string text = Take() % 10 == 0 ? "x" : Bits(Take() % 10 == 0 ? 3 : section.m_Data.m_Word);
            section.m_Section->GetSectionData()->SetWord(static_cast<int>(line), text);
            section.m_Data.m_Lines[line] = text;
        }
    }

    void CompareRecords() const {
        for (const char* const name : NAMES) {
            const auto first = std::find_if(m_Sections.begin(), m_Sections.end(),
                                            [&](const CModelSection& s) { return s.m_Name == name; });
            Require(m_Image.FindSection(name) == (first == m_Sections.end() ? nullptr : first->m_Section),
                    "the first section of a name");
        }
        for (int i = 0; i < static_cast<int>(m_Sections.size()); ++i) {
            Require(m_Image.FindSection(m_Sections[static_cast<std::size_t>(i)].m_Section) == i, "a section's index");
        }
        for (int i = 0; i < static_cast<int>(m_Symbols.size()); ++i) {
            const auto& [symbol, name, section, isLost] = m_Symbols[static_cast<std::size_t>(i)];
            Require(symbol->GetName() == name && m_Table.LookUpSymbol(name.c_str()) == symbol &&
                        std::as_const(m_Table).FindSymbol(name) == symbol,
                    "the symbol of a name");
            Require(symbol->ID() == i && m_Table.FindSymbol(symbol) == i, "a symbol's index");
            const int none = isLost && symbol->HasSection() ? -1 : 0;
            Require(symbol->GetSection() == section &&
                        symbol->GetSectionID() == (section != nullptr ? m_Image.FindSection(section) : none),
                    "a symbol's section");
        }
        for (const CSection* const section : m_Deleted) {
            Require(Throws<std::out_of_range>([&] { m_Image.FindSection(section); }), "a deleted section");
        }
        const auto externs = std::count_if(m_Symbols.begin(), m_Symbols.end(), [](const CModelSymbol& symbol) {
            return symbol.m_Symbol->GetType() == CSymbol::TYPE_EXTERN;
        });
        Require(m_Table.ExternSymbolCount() == externs, "the number of extern symbols");
        for (const CSymbol* const symbol : m_Refused) {
            Require(m_Table.FindSymbol(symbol) == -1, "a refused symbol");
        }
    }

    static void CompareData(const CSectionData& data, CTextModel& model) {
        Require(data.Count() == static_cast<int>(model.m_Lines.size()), "the number of lines");
        for (int line = 0; line < data.Count(); ++line) {
            Require(data.GetWord(line) == model.m_Lines[static_cast<std::size_t>(line)], "a line");
        }
        for (int address = 0; address < data.GetByteCount(); ++address) {
            const auto [line, position] = model.Find(address);
            std::string byte;
            const bool outside = Throws<std::out_of_range>([&] { byte = data.GetByte(address); });
            Require(line == nullptr ? outside : byte == line->substr(position, model.m_Byte), "a byte");
        }
        std::mt19937 random(1);
        Require(CheckBytes(data, random).empty(), "a byte as a number");
    }

    std::string_view m_Bytes;
    CSymbolTable& m_Table = *m_Image.CreateSymbolTable();
    std::vector<CModelSection> m_Sections;
    std::vector<CModelSymbol> m_Symbols;
    std::set<CSection*> m_Deleted;
    std::set<const CSymbol*> m_Refused;
};

} // namespace

std::string RunEdits(std::string_view bytes, const std::string& path) {
    CEdits edits(bytes);
    try {
        edits.Run();
        edits.m_Image.SetSectionsAreAllocated();
        edits.m_Image.SaveFile(path);
    } catch (const std::logic_error& fault) {
        return fault.what();
    }
    const std::string outcome = CheckImage(path);
    if (!edits.AreLinesCounted()) {
        return outcome == "error" || outcome == "loaded" ? "" : outcome;
    }
    return outcome == (edits.IsAnyLost() ? "error" : "loaded") ? "" : outcome;
}
