// Conversion of an ELF file, already read and checked, into the object model.
#include <algorithm>
#include <array>
#include <iterator>
#include <stdexcept>
#include <utility>

#include "elftovexon/elfcontents.h"
#include "elftovexon/elftovexon.h"
#include "general_error"

using marlune::elf::FileBytesPerLau;
using marlune::exceptions::CGeneralError;
using ObjectFile::BO_BIG;
using ObjectFile::BO_LITTLE;
using ObjectFile::CMemoryOrganization;
using ObjectFile::CRelocation;
using ObjectFile::CSection;
using ObjectFile::CSharedText;
using ObjectFile::CSymbol;

namespace {

struct CSectionRule {
    Elf64_Word m_ElfType;
    std::uint32_t m_Examined; // the flags that matter
    std::uint32_t m_Wanted;   // and what they must be
    CSection::eType m_Type;
};

constexpr std::uint32_t ALL_FLAGS = 0xFFFFFFFF;
constexpr std::uint32_t ALLOC_EXEC = SHF_ALLOC | SHF_EXECINSTR;
constexpr std::uint32_t WRITE_ALLOC = SHF_WRITE | SHF_ALLOC;

constexpr std::array<CSectionRule, 11> SECTION_RULES{{
    {SHT_PROGBITS, ALLOC_EXEC, ALLOC_EXEC, CSection::TYPE_TEXT},
    {SHT_PROGBITS, WRITE_ALLOC, WRITE_ALLOC, CSection::TYPE_DATA},
    {SHT_PROGBITS, ALL_FLAGS, 0, CSection::TYPE_DEBUG},
    {SHT_NOBITS, WRITE_ALLOC, WRITE_ALLOC, CSection::TYPE_BSS},
    {SHT_NOTE, ALL_FLAGS, 0, CSection::TYPE_INFO},
    {SHT_NOTE, ALL_FLAGS, SHF_ALLOC, CSection::TYPE_DATA},
    {SHT_LOPROC, 0, 0, CSection::TYPE_INFO}, // the address space table
    {SHT_LOPROC + 1, 0, 0, CSection::TYPE_DEBUG},
    {SHT_LOPROC + 2, 0, 0, CSection::TYPE_DEBUG},
    {SHT_LOPROC + 3, 0, 0, CSection::TYPE_DEBUG},
    {SHT_LOPROC + 9, 0, 0, CSection::TYPE_DEBUG},
}};

CSection::eType SectionType(const Elf64_Shdr& section) {
    const auto flags = static_cast<std::uint32_t>(section.sh_flags);
    const auto* const rule = std::find_if(SECTION_RULES.begin(), SECTION_RULES.end(), [&](const CSectionRule& r) {
        return r.m_ElfType == section.sh_type && (flags & r.m_Examined) == r.m_Wanted;
    });
    if (rule == SECTION_RULES.end()) {
        throw CGeneralError("Unsupported section type combination");
    }
    return rule->m_Type;
}

bool IsConverted(const std::string& name, const Elf64_Shdr& section) {
    return !name.empty() && name != ".strtab" && name != ".shstrtab" && name != ".symtab" &&
           section.sh_type != SHT_RELA;
}

/// A valid organization with the name of `named`.
CMemoryOrganization Organization(CMemoryOrganization named, int wordBitSize, int byteBitSize,
                                 ObjectFile::eByteOrder order) {
    if (byteBitSize == 0) {
        throw CGeneralError("Unsupported byte bit-size\n");
    }
    named.SetWordBitSize(wordBitSize);
    named.SetBytesPerWord(wordBitSize / byteBitSize);
    named.SetByteOrder(order);
    named.SetMemoryOrganizationIsValid(true);
    return named;
}

constexpr std::size_t LONG_NAME = 1024;

/// The bits of a LAU.
int BitsPerByte(const CMemoryOrganization& organization) {
    if (organization.GetBytesPerWord() < 1) { // words of 0 bits, which hold nothing
        throw CGeneralError("Unsupported word length\n");
    }
    return organization.GetWordBitSize() / organization.GetBytesPerWord();
}

CSymbol::eType SymbolType(const Elf64_Sym& entry) {
    switch (ELF64_ST_BIND(entry.st_info)) {
    case STB_LOCAL:
        return CSymbol::TYPE_PRIVATE;
    case STB_GLOBAL:
        return CSymbol::TYPE_PUBLIC;
    case STB_WEAK:
        return CSymbol::TYPE_WEAK;
    default:
        return CSymbol::TYPE_NONE;
    }
}

CSymbol::eUsage SymbolUsage(const Elf64_Sym& entry) {
    switch (ELF64_ST_TYPE(entry.st_info)) {
    case STT_FUNC:
        return CSymbol::USAGE_FUNCTION;
    case STT_OBJECT:
    case STT_FILE:
        return CSymbol::USAGE_OBJECT;
    default:
        return CSymbol::USAGE_UNDEFINED;
    }
}

/// A relocation entry's addend, which describes the field.
class CFieldDescription {
public:
    explicit CFieldDescription(Elf64_Sxword addend) : m_Bits(static_cast<std::uint64_t>(addend)) {}

    int SizeInBytes() const { return Field(0, 3) + 1; }
    int LowBitFromTop() const { return Field(6, 6); }
    int HighBitFromTop() const { return Field(12, 6); }
    int ShiftAmount() const { return Field(18, 7); }
    int MaskWidth() const { return Field(25, 7); } // 0: no mask
    int OffsetValue() const { return static_cast<int>(static_cast<std::uint32_t>(m_Bits >> 32)); }

private:
    int Field(unsigned low, unsigned width) const {
        return static_cast<int>(m_Bits >> low & ((std::uint64_t{1} << width) - 1));
    }

    std::uint64_t m_Bits;
};

} // namespace

void ElfToVexon::Convert() {
    ConvertFileHeader();
    ConvertSections();
    ConvertSymbols();
    ConvertRelocations();
    m_Target->PopulateLineInfo();
}

void ElfToVexon::ConvertFileHeader() {
    switch (m_Header.e_ident[EI_DATA]) {
    case ELFDATA2LSB:
        m_ByteOrder = BO_LITTLE;
        break;
    case ELFDATA2MSB:
        m_ByteOrder = BO_BIG;
        break;
    default:
        throw CGeneralError("Invalid data encoding\n");
    }
    if (m_Header.e_entry != 0) {
        m_Target->SetEntryPoint(m_Header.e_entry);
    }
    m_Target->SetMemoryOrganizationIsValid(false);
    if (!IsHarvard()) {
        const AddressSpace& space = m_AddressSpaces.front();
        const int wordBitSize = space.m_WordBitSize;
        if (wordBitSize != 16 && wordBitSize != 32 && wordBitSize != 64) {
            throw CGeneralError("Unsupported word length\n");
        }
        m_Target->InheritMemoryOrganizationValues(
            Organization(space.m_Named, wordBitSize, space.m_ByteBitSize, m_ByteOrder));
    }
}

void ElfToVexon::ConvertSections() {
    for (std::size_t index = 0; index < m_SectionHeaders.size(); ++index) {
        const Elf64_Shdr& header = m_SectionHeaders[index];
        const std::string& name = m_SectionNames[index];
        if (!IsConverted(name, header)) {
            continue;
        }
        const CMemoryOrganization organization = OrganizationOf(header);
        CSection& section = *m_Target->CreateSection(SectionType(header), name, organization);
        const auto elfIndex = static_cast<int>(index);
        section.SetMemoryByteAddress(static_cast<unsigned long long>(GetLoadAddress(elfIndex)));
        section.SetMemoryByteAddressIsAbsolute(IsExec());
        section.SetByteAddressAlignment(static_cast<unsigned>(header.sh_addralign));
        ConvertContents(elfIndex, section);
    }
}

/// From the address space that the upper half of the flags names; LAUs of 8 bits in words of 32 if there is none.
CMemoryOrganization ElfToVexon::OrganizationOf(const Elf64_Shdr& section) const {
    const std::uint64_t index = section.sh_flags >> 32;
    if (index >= m_AddressSpaces.size()) {
        return {32, 4, m_ByteOrder, ""};
    }
    const AddressSpace& space = m_AddressSpaces[static_cast<std::size_t>(index)];
    return Organization(space.m_Named, space.m_WordBitSize, space.m_ByteBitSize,
                        space.m_BigEndian != 0 ? BO_BIG : BO_LITTLE);
}

void ElfToVexon::ConvertContents(int index, CSection& section) const {
    const std::string_view contents = m_Contents[static_cast<std::size_t>(GetIndexContentOfSection(index))].m_Bytes;
    if (contents.empty()) {
        return;
    }
    const auto fileBytes = static_cast<std::size_t>(FileBytesPerLau(BitsPerByte(section)));
    if (fileBytes == 0) {
        throw CGeneralError("Unsupported byte bit-size\n");
    }
    // The address space table itself, for one, has any size whatever the bytes of its address space.
    const bool isLoaded = section.GetType() == CSection::TYPE_TEXT || section.GetType() == CSection::TYPE_DATA;
    if (isLoaded && contents.size() % fileBytes != 0) {
        throw CGeneralError("Section '" + section.GetName() + "' ends within a byte\n");
    }
    marlune::elf::AddContents(*section.CreateSectionData(), contents, fileBytes, section.GetByteOrder());
}

char* ElfToVexon::ConvertByteToVexon(const unsigned char* data, int bits, ObjectFile::eByteOrder order, char* out) {
    const bool big = order == BO_BIG;
    const int fileBytes = FileBytesPerLau(bits);
    for (int i = 0; i < bits; ++i) { // from the least significant bit upward
        const int byte = big ? fileBytes - 1 - i / 8 : i / 8;
        const bool set = byte >= 0 && (data[byte] >> (i % 8) & 1) != 0;
        out[big ? bits - 1 - i : i] = set ? '1' : '0';
    }
    return out;
}

void ElfToVexon::ConvertSymbols() {
    m_ConvertedSections.clear(); // a conversion that failed may have left some of another object
    if (m_Symbols.size() < 2) {
        return;
    }
    ObjectFile::CSymbolTable& table = *m_Target->CreateSymbolTable();
    std::for_each(std::next(m_Symbols.begin()), m_Symbols.end(),
                  [&](const Elf64_Sym& entry) { table.AddSymbol(ConvertSymbol(entry)); });
    m_SymbolStrings.reset();
}

std::unique_ptr<CSymbol> ElfToVexon::ConvertSymbol(const Elf64_Sym& entry) {
    CSharedText name = SymbolName(entry);
    if (name.View().size() > LONG_NAME) { // the file shares the ends of names, but each is searched and hashed in full
        m_File.CountName(name.View().size());
    }
    auto symbol = std::make_unique<CSymbol>(std::move(name), SymbolType(entry));
    symbol->SetBlockSize(static_cast<int>(static_cast<std::uint32_t>(entry.st_size)));
    symbol->SetUsageType(SymbolUsage(entry));
    PlaceSymbol(entry, *symbol);
    return symbol;
}

CSharedText ElfToVexon::SymbolName(const Elf64_Sym& entry) {
    if (ELF64_ST_TYPE(entry.st_info) != STT_SECTION) {
        return SymbolString(entry.st_name);
    }
    const std::string_view name = GetSectionName(entry.st_shndx);
    // The linker keeps sections of one name in several address spaces apart by what follows the last '@'.
    return CSharedText(IsExec() && IsHarvard() ? name.substr(0, name.rfind('@')) : name);
}

/// GetSymbolName without a copy for each symbol.
CSharedText ElfToVexon::SymbolString(unsigned offset) {
    if (!m_SymbolStrings) {
        const int contents = GetIndexContentOfSection(GetSectionIndexOfName(".strtab"));
        m_SymbolStrings = std::make_shared<const std::string>(m_Contents[static_cast<std::size_t>(contents)].m_Bytes);
    }
    return {m_SymbolStrings, TerminatedPiece(*m_SymbolStrings, &offset, '\0')};
}

/// The section of the object with the name of that ELF section, or none; looked up once, because names may be long.
CSection* ElfToVexon::ConvertedSection(unsigned index) {
    const std::string& name = GetSectionName(index);
    const auto [known, isNew] = m_ConvertedSections.emplace(index, nullptr);
    if (isNew) {
        known->second = m_Target->FindSection(name);
    }
    return known->second;
}

/// The type and the value that follow from where the symbol lies.
void ElfToVexon::PlaceSymbol(const Elf64_Sym& entry, CSymbol& symbol) {
    symbol.SetMemoryAddress(entry.st_value);
    switch (entry.st_shndx) {
    case SHN_ABS:
        symbol.SetType(CSymbol::TYPE_ABSOLUTE);
        return;
    case SHN_COMMON:
        symbol.SetType(CSymbol::TYPE_COMMON);
        return;
    case SHN_UNDEF:
        symbol.SetType(CSymbol::TYPE_EXTERN);
        return;
    default:
        break;
    }
    CSection* const section = ConvertedSection(entry.st_shndx);
    if (section == nullptr && IsExec()) { // its address is needed
        throw CGeneralError("Symbol '" + symbol.GetName() + "': missing section\n");
    }
    // Both are 32-bit addresses; that of the section is held sign-extended.
    const std::uint64_t base = IsExec() ? static_cast<std::uint32_t>(section->GetMemoryByteAddress()) : 0;
    symbol.SetSection(section);
    symbol.SetMemoryAddress(static_cast<std::uint32_t>(entry.st_value) - base);
}

void ElfToVexon::ConvertRelocations() {
    constexpr std::string_view PREFIX = ".rela";
    for (const RelocationContents& relocations : m_Relocations) {
        const std::string& name = m_SectionNames[static_cast<std::size_t>(relocations.m_Section)];
        if (name.size() < PREFIX.size()) {
            throw std::out_of_range("basic_string::substr");
        }
        CSection* const section = m_Target->FindSection(name.substr(PREFIX.size()));
        if (section == nullptr) {
            throw CGeneralError("Relocation: missing section\n");
        }
        const int bitsPerByte = BitsPerByte(*section);
        for (const Elf64_Rela& entry : relocations.m_Entries) {
            section->AddRelocation(ConvertRelocation(entry, bitsPerByte));
        }
    }
}

CRelocation ElfToVexon::ConvertRelocation(const Elf64_Rela& entry, int bitsPerByte) {
    const CFieldDescription field(entry.r_addend);
    const auto maskShift = static_cast<unsigned>(field.MaskWidth()) % 64;
    bool reversed = false;
    CRelocation relocation;
    relocation.m_Flags = ConvertRelocationType(&entry, reversed);
    relocation.m_Address =
        static_cast<unsigned long long>(static_cast<std::int32_t>(static_cast<std::uint32_t>(entry.r_offset)));
    relocation.m_SizeInBytes = field.SizeInBytes();
    const int top = bitsPerByte * field.SizeInBytes() - 1;
    relocation.m_HighBit = top - field.HighBitFromTop();
    relocation.m_LowBit = top - field.LowBitFromTop();
    relocation.m_OffsetValue = field.OffsetValue();
    relocation.m_ShiftAmount = reversed ? -field.ShiftAmount() : field.ShiftAmount();
    relocation.m_Mask = reversed ? ~0ULL << maskShift : (1ULL << maskShift) - 1;
    relocation.m_Symbol = RelocationSymbol(entry);
    return relocation;
}

ObjectFile::CSymbol* ElfToVexon::RelocationSymbol(const Elf64_Rela& entry) {
    const std::uint64_t index = ELF64_R_SYM(entry.r_info); // counts the null entry, which the table does not have
    if (m_Target->SymbolTablesCount() == 0 || index == 0 ||
        index > static_cast<std::uint64_t>(m_Target->GetSymbolTable(0)->Count())) {
        throw CGeneralError("Relocation: missing symbol\n");
    }
    return m_Target->GetSymbolTable(0)->GetSymbol(static_cast<int>(index) - 1);
}

unsigned ElfToVexon::ConvertRelocationType(const Elf64_Rela* entry, bool& reversed) {
    struct CRow {
        unsigned m_Flags;
        bool m_Reversed;
    };
    constexpr unsigned RELATIVE = CRelocation::FLAG_RELATIVE | CRelocation::FLAG_F;
    constexpr unsigned ABSOLUTE = CRelocation::FLAG_F;
    constexpr unsigned SIGNED = CRelocation::FLAG_SIGNED;
    static constexpr std::array<CRow, 8> ROWS{{{RELATIVE, false},
                                               {ABSOLUTE, false},
                                               {RELATIVE | SIGNED, false},
                                               {ABSOLUTE | SIGNED, false},
                                               {RELATIVE, true},
                                               {ABSOLUTE, true},
                                               {RELATIVE | SIGNED, true},
                                               {ABSOLUTE | SIGNED, true}}};
    const std::uint64_t type = ELF64_R_TYPE(entry->r_info); // the rows are types 1 to 8
    if (type < 1 || type > ROWS.size()) {
        throw CGeneralError("Unsupported relocation type\n");
    }
    const CRow& row = ROWS[static_cast<std::size_t>(type) - 1];
    reversed = row.m_Reversed;
    return row.m_Flags | (CFieldDescription(entry->r_addend).MaskWidth() != 0 ? CRelocation::FLAG_MASK : 0U);
}
