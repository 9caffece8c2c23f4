// ELF files of any machine as programs.
#include <algorithm>
#include <memory>
#include <unordered_map>

#include <gelf.h>
#include <libelf.h>

#include "tools/import/readers.h"
#include "tools/text.h"

namespace marlune::tool {
namespace {

using ObjectFile::CSection;
using ObjectFile::CSymbol;

constexpr std::size_t MOST_SECTIONS = 1000000; // into which the segments of a hostile file may be divided

struct CElfCloser {
    void operator()(Elf* elf) const { elf_end(elf); }
};

/// Throws the library's error, for instance for a table that is not in the file.
[[noreturn]] void ThrowElfError() {
    const char* const text = elf_errmsg(-1);
    throw std::runtime_error(std::string("damaged ELF file: ") + (text != nullptr ? text : "unknown error"));
}

/// A name from a file in the form that the text form of an image can hold: one line.
std::string NameOf(const char* name) {
    std::string text = name != nullptr ? name : "";
    std::replace(text.begin(), text.end(), '\n', ' ');
    return text;
}

class CElfReader {
public:
    CElfReader(const std::string& path, CProgram& program, const CWarn& warn) : m_Program(program), m_Warn(warn) {
        auto source = std::make_unique<CFileSource>(path);
        m_FileSize = source->Size();
        elf_version(EV_CURRENT);
        m_Elf.reset(elf_begin(source->Handle(), ELF_C_READ, nullptr));
        m_Program.m_Source = std::move(source);
        if (m_Elf == nullptr || elf_kind(m_Elf.get()) != ELF_K_ELF) {
            throw std::runtime_error("the ELF header is damaged or cut off");
        }
        if (gelf_getehdr(m_Elf.get(), &m_Header) == nullptr) {
            ThrowElfError();
        }
    }

    void Read() {
        RequireExecutable();
        m_Program.m_Order = m_Header.e_ident[EI_DATA] == ELFDATA2MSB ? ObjectFile::BO_BIG : ObjectFile::BO_LITTLE;
        ReadSegments();
        ReadSectionHeaders();
        for (const CSegment& segment : m_Segments) {
            AddFilePart(segment);
            AddZeroPart(segment);
        }
        WarnOfSectionsNotLoaded();
        ReadSymbols();
        if (m_Header.e_entry != 0) {
            m_Program.m_Entry = PhysicalAddress(m_Header.e_entry);
        }
    }

private:
    /// A loadable segment.
    struct CSegment {
        std::size_t m_Index;
        GElf_Phdr m_Header;
        std::uint64_t m_Address; // physical
    };

    /// A section that occupies memory.
    struct CElfSection {
        std::size_t m_Index;
        std::string m_Name;
        GElf_Shdr m_Header;
        std::uint64_t m_Displacement; // of the addresses where it is loaded from its virtual ones

        bool HasContents() const { return m_Header.sh_type != SHT_NOBITS; }
    };

    void RequireExecutable() const {
        switch (m_Header.e_type) {
        case ET_EXEC:
            break;
        case ET_DYN:
            m_Warn("a position-independent program, taken at the addresses in the file; nothing relocates it");
            break;
        case ET_REL:
            throw std::runtime_error("a relocatable file: its sections have no addresses before it is linked");
        default:
            throw std::runtime_error("not an executable, but an ELF file of type " + std::to_string(m_Header.e_type));
        }
    }

    void ReadSegments() {
        std::size_t count = 0;
        if (elf_getphdrnum(m_Elf.get(), &count) != 0) {
            ThrowElfError();
        }
        bool hasPhysical = false;
        for (std::size_t i = 0; i < count; ++i) {
            CSegment segment{i, {}, 0};
            if (gelf_getphdr(m_Elf.get(), static_cast<int>(i), &segment.m_Header) == nullptr) {
                ThrowElfError();
            }
            hasPhysical = hasPhysical || segment.m_Header.p_paddr != 0;
            if (segment.m_Header.p_type == PT_LOAD && (segment.m_Header.p_filesz > 0 || segment.m_Header.p_memsz > 0)) {
                RequireInFile(segment);
                m_Segments.push_back(segment);
            }
        }
        if (count < m_Header.e_phnum) {
            throw std::runtime_error("the file ends before the program headers of the ELF file do");
        }
        if (m_Segments.empty()) {
            throw std::runtime_error("the ELF file has no loadable segment");
        }
        // Some linkers leave the physical addresses out.
        const bool isVirtual = !hasPhysical && m_Segments.size() > 1;
        for (CSegment& segment : m_Segments) {
            segment.m_Address = isVirtual ? segment.m_Header.p_vaddr : segment.m_Header.p_paddr;
        }
    }

    void RequireInFile(CSegment& segment) const {
        GElf_Phdr& header = segment.m_Header;
        if (header.p_offset > m_FileSize || header.p_filesz > m_FileSize - header.p_offset) {
            throw std::runtime_error(Describe(segment) + " claims " + Hex(header.p_filesz) + " bytes from offset " +
                                     Hex(header.p_offset) + " on, but the file has " + Hex(m_FileSize));
        }
        if (header.p_memsz < header.p_filesz) {
            m_Warn(Describe(segment) + " has " + Hex(header.p_filesz) + " bytes in the file, but " +
                   Hex(header.p_memsz) + " in memory; all of those in the file are taken");
            header.p_memsz = header.p_filesz;
        }
    }

    static std::string Describe(const CSegment& segment) { return "segment " + std::to_string(segment.m_Index); }

    void ReadSectionHeaders() {
        std::size_t names = 0;
        const bool hasNames = elf_getshdrstrndx(m_Elf.get(), &names) == 0;
        for (Elf_Scn* scn = elf_nextscn(m_Elf.get(), nullptr); scn != nullptr; scn = elf_nextscn(m_Elf.get(), scn)) {
            GElf_Shdr header;
            if (gelf_getshdr(scn, &header) == nullptr) {
                ThrowElfError();
            }
            const bool isThreadZeros = header.sh_type == SHT_NOBITS && (header.sh_flags & SHF_TLS) != 0;
            if ((header.sh_flags & SHF_ALLOC) == 0 || header.sh_size == 0 || isThreadZeros) {
                continue;
            }
            const std::size_t index = elf_ndxscn(scn);
            std::string name = NameOf(hasNames ? elf_strptr(m_Elf.get(), names, header.sh_name) : nullptr);
            m_Sections.push_back({index, name.empty() ? "section" + std::to_string(index) : name, header, 0});
            m_NextKey = index + 1;
        }
        std::stable_sort(m_Sections.begin(), m_Sections.end(), [](const CElfSection& a, const CElfSection& b) {
            return a.m_Header.sh_addr < b.m_Header.sh_addr;
        });
    }

    /// Adds the bytes of the segment that are in the file, divided into the sections in them.
    void AddFilePart(const CSegment& segment) {
        const GElf_Phdr& header = segment.m_Header;
        m_Program.m_Extents.push_back({segment.m_Address, header.p_filesz, header.p_offset});
        std::uint64_t known = 0; // offset in the segment
        for (CElfSection* const section : SectionsByOffset(header)) {
            const std::uint64_t offset = section->m_Header.sh_offset - header.p_offset;
            AddNameless(segment, known, offset, false);
            Add(section->m_Name, TypeFor(section->m_Header.sh_flags & SHF_EXECINSTR), segment.m_Address + offset,
                section->m_Header.sh_size, section->m_Index);
            NoteLoaded(*section, segment.m_Address + offset);
            known = std::max(known, offset + section->m_Header.sh_size);
        }
        AddNameless(segment, known, header.p_filesz, false);
    }

    /// The sections whose contents are among the segment's.
    std::vector<CElfSection*> SectionsByOffset(const GElf_Phdr& header) {
        std::vector<CElfSection*> sections;
        for (CElfSection& section : m_Sections) {
            const std::uint64_t offset = section.m_Header.sh_offset;
            if (section.HasContents() && offset >= header.p_offset && offset - header.p_offset < header.p_filesz &&
                section.m_Header.sh_size <= header.p_filesz - (offset - header.p_offset)) {
                sections.push_back(&section);
            }
        }
        std::stable_sort(sections.begin(), sections.end(), [](const CElfSection* a, const CElfSection* b) {
            return a->m_Header.sh_offset < b->m_Header.sh_offset;
        });
        return sections;
    }

    /// Adds the zeros after the bytes in the file.
    void AddZeroPart(const CSegment& segment) {
        const GElf_Phdr& header = segment.m_Header;
        std::uint64_t known = header.p_filesz; // offset in the segment
        for (CElfSection& section : m_Sections) {
            const std::uint64_t offset = section.m_Header.sh_addr - header.p_vaddr;
            if (section.HasContents() || section.m_Header.sh_addr < header.p_vaddr || offset >= header.p_memsz ||
                section.m_Header.sh_size > header.p_memsz - offset) {
                continue;
            }
            NoteLoaded(section, segment.m_Address + offset);
            const std::uint64_t end = offset + section.m_Header.sh_size;
            if (end > known) {
                AddNameless(segment, known, offset, true);
                const std::uint64_t first = std::max(offset, header.p_filesz);
                Add(section.m_Name, CSection::TYPE_BSS, segment.m_Address + first, end - first, section.m_Index);
                known = end;
            }
        }
        AddNameless(segment, known, header.p_memsz, true);
    }

    void NoteLoaded(CElfSection& section, std::uint64_t address) {
        section.m_Displacement = address - section.m_Header.sh_addr;
        m_LoadedSections[section.m_Index] = &section;
    }

    /// Adds a range of offsets in the segment that no section covers.
    void AddNameless(const CSegment& segment, std::uint64_t begin, std::uint64_t end, bool isZero) {
        if (begin >= end) {
            return;
        }
        const std::string name = "segment" + std::to_string(segment.m_Index) + (begin == 0 ? "" : "+" + Hex(begin));
        const auto type = isZero ? CSection::TYPE_BSS : TypeFor(segment.m_Header.p_flags & PF_X);
        Add(name, type, segment.m_Address + begin, end - begin, m_NextKey++);
    }

    void Add(const std::string& name, CSection::eType type, std::uint64_t address, std::uint64_t size,
             std::size_t key) {
        if (m_Program.m_Sections.size() == MOST_SECTIONS) {
            throw std::runtime_error("the segments have more than " + std::to_string(MOST_SECTIONS) + " sections");
        }
        m_Program.m_Sections.push_back({name, type, address, size, key});
    }

    static CSection::eType TypeFor(std::uint64_t codeFlag) {
        return codeFlag != 0 ? CSection::TYPE_TEXT : CSection::TYPE_DATA;
    }

    void WarnOfSectionsNotLoaded() const {
        for (const CElfSection& section : m_Sections) {
            if (m_LoadedSections.count(section.m_Index) == 0) {
                m_Warn("the section '" + Printable(section.m_Name) + "' is in no loadable segment and is left out");
            }
        }
    }

    /// Where the byte at a virtual address is loaded.
    std::uint64_t PhysicalAddress(std::uint64_t address) const {
        for (const CSegment& segment : m_Segments) {
            if (address >= segment.m_Header.p_vaddr && address - segment.m_Header.p_vaddr < segment.m_Header.p_memsz) {
                return segment.m_Address + (address - segment.m_Header.p_vaddr);
            }
        }
        return address;
    }

    void ReadSymbols() {
        for (Elf_Scn* scn = elf_nextscn(m_Elf.get(), nullptr); scn != nullptr; scn = elf_nextscn(m_Elf.get(), scn)) {
            GElf_Shdr header;
            if (gelf_getshdr(scn, &header) == nullptr || header.sh_type != SHT_SYMTAB) {
                continue;
            }
            Elf_Data* const data = elf_getdata(scn, nullptr);
            if (data == nullptr) {
                ThrowElfError();
            }
            GElf_Sym symbol;
            for (int i = 1; gelf_getsym(data, i, &symbol) != nullptr; ++i) {
                AddSymbol(symbol, header.sh_link);
            }
        }
    }

    void AddSymbol(const GElf_Sym& symbol, std::size_t names) {
        const unsigned char type = GELF_ST_TYPE(symbol.st_info);
        const bool isAbsolute = symbol.st_shndx == SHN_ABS;
        const auto section = m_LoadedSections.find(symbol.st_shndx);
        if (type == STT_FILE || type == STT_TLS || (section == m_LoadedSections.end() && !isAbsolute)) {
            return;
        }
        std::string name = type == STT_SECTION && !isAbsolute ? section->second->m_Name
                                                              : NameOf(elf_strptr(m_Elf.get(), names, symbol.st_name));
        const CSymbol::eType scope = isAbsolute ? CSymbol::TYPE_ABSOLUTE : ScopeOf(GELF_ST_BIND(symbol.st_info));
        const bool isLabel = scope == CSymbol::TYPE_PRIVATE && type == STT_NOTYPE;
        if (!name.empty() && !(isLabel && IsMark(name))) {
            const std::uint64_t address = symbol.st_value + (isAbsolute ? 0 : section->second->m_Displacement);
            m_Program.m_Symbols.push_back(
                {std::move(name), scope, UsageOf(type), address, symbol.st_size, symbol.st_shndx});
        }
    }

    /// Symbols that compilers make for tools: changes between code and data, and unnamed jump targets.
    static bool IsMark(const std::string& name) { return name.front() == '$' || name.compare(0, 2, ".L") == 0; }

    static CSymbol::eType ScopeOf(unsigned char binding) {
        switch (binding) {
        case STB_LOCAL:
            return CSymbol::TYPE_PRIVATE;
        case STB_WEAK:
            return CSymbol::TYPE_WEAK;
        default:
            return CSymbol::TYPE_PUBLIC;
        }
    }

    static CSymbol::eUsage UsageOf(unsigned char type) {
        switch (type) {
        case STT_FUNC:
        case STT_GNU_IFUNC:
            return CSymbol::USAGE_FUNCTION;
        case STT_OBJECT:
            return CSymbol::USAGE_OBJECT;
        default:
            return CSymbol::USAGE_UNDEFINED;
        }
    }

    CProgram& m_Program;
    const CWarn& m_Warn;
    std::unique_ptr<Elf, CElfCloser> m_Elf;
    GElf_Ehdr m_Header{};
    std::uint64_t m_FileSize = 0;
    std::vector<CSegment> m_Segments;
    std::vector<CElfSection> m_Sections;                            // by virtual address
    std::unordered_map<std::size_t, CElfSection*> m_LoadedSections; // by index
    std::size_t m_NextKey = 0;                                      // for parts that are no section
};

} // namespace

void ReadElf(const std::string& path, const CImportOptions& /*options*/, CProgram& program, const CWarn& warn) {
    CElfReader(path, program, warn).Read();
}

} // namespace marlune::tool
