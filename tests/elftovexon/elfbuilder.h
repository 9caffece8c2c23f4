// ELF files for the tests.
#ifndef MARLUNE_TESTS_ELFBUILDER_H
#define MARLUNE_TESTS_ELFBUILDER_H

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <deque>
#include <string>
#include <vector>

#include <elf.h>

struct CAddressSpace {
    std::string m_Name;
    std::uint16_t m_WordBitSize = 0;
    std::uint16_t m_ByteBitSize = 0;
    std::uint16_t m_BigEndian = 0;
};

template <typename T>
std::string BytesOf(const T& record) {
    return {reinterpret_cast<const char*>(&record), sizeof record};
}

/// Puts an ELF file together. A test may set any field; offsets, sizes, names and counts left at 0 are filled in.
class CElfBuilder {
public:
    struct CSection {
        std::string m_Name;
        std::string m_Bytes;
        Elf64_Shdr m_Header{};
    };

    /// An executable with the null section, the address space table, .shstrtab and .strtab.
    explicit CElfBuilder(const std::vector<CAddressSpace>& spaces) {
        std::copy_n(ELFMAG, SELFMAG, m_Header.e_ident);
        m_Header.e_ident[EI_CLASS] = ELFCLASS64;
        m_Header.e_ident[EI_DATA] = ELFDATA2LSB;
        m_Header.e_type = ET_EXEC;
        m_Header.e_machine = 192;
        m_Header.e_phentsize = sizeof(Elf64_Phdr);
        m_Header.e_shentsize = sizeof(Elf64_Shdr);
        std::string table = BytesOf(static_cast<std::uint16_t>(spaces.size()));
        for (const CAddressSpace& space : spaces) {
            table += space.m_Name + '\0' + BytesOf(std::uint16_t{7}) + BytesOf(space.m_WordBitSize) +
                     BytesOf(space.m_ByteBitSize) + BytesOf(space.m_BigEndian);
        }
        Add("", SHT_NULL);
        Add(".shstrtab", SHT_STRTAB);
        Add(".strtab", SHT_STRTAB, 0, 0, std::string(1, '\0'));
        Add(".marlune_as", 0x70000000, std::uint64_t{99} << 32, 0, table);
    }

    /// The builder of such a file.
    static CElfBuilder Of(const std::string& file) {
        const auto at = [&](std::uint64_t offset) { return &file[static_cast<std::size_t>(offset)]; };
        CElfBuilder elf;
        std::memcpy(&elf.m_Header, file.data(), sizeof elf.m_Header);
        std::vector<Elf64_Shdr> headers(elf.m_Header.e_shnum);
        std::memcpy(headers.data(), at(elf.m_Header.e_shoff), headers.size() * sizeof(Elf64_Shdr));
        const Elf64_Shdr& names = headers.at(elf.m_Header.e_shstrndx);
        for (const Elf64_Shdr& header : headers) {
            const bool hasBytes = header.sh_type != SHT_NOBITS && &header != &names;
            CSection& section = elf.Add(at(names.sh_offset + header.sh_name), header.sh_type);
            if (hasBytes) {
                section.m_Bytes.assign(at(header.sh_offset), static_cast<std::size_t>(header.sh_size));
            }
            section.m_Header = header;
            section.m_Header.sh_name = 0;
            section.m_Header.sh_offset = 0;
            section.m_Header.sh_size = header.sh_type == SHT_NOBITS ? header.sh_size : 0;
        }
        return elf;
    }

    CSection& Add(const std::string& name, std::uint32_t type, std::uint64_t flags = 0, std::uint64_t address = 0,
                  const std::string& bytes = "") {
        m_Sections.push_back({name, bytes, {0, type, flags, address, 0, 0, 0, 0, 4, 24}});
        return m_Sections.back();
    }

    std::uint16_t Index(const std::string& name) const {
        const auto found = std::find_if(m_Sections.begin(), m_Sections.end(),
                                        [&](const CSection& section) { return section.m_Name == name; });
        return static_cast<std::uint16_t>(found - m_Sections.begin());
    }
    CSection& operator[](const std::string& name) { return m_Sections.at(Index(name)); }

    void AddSymbol(const std::string& name, unsigned bind, unsigned type, unsigned section, std::uint64_t value = 0,
                   std::uint64_t size = 0) {
        const auto nameOffset = static_cast<std::uint32_t>((*this)[".strtab"].m_Bytes.size());
        (*this)[".strtab"].m_Bytes += name + '\0';
        (*this)[".symtab"].m_Bytes +=
            BytesOf(Elf64_Sym{nameOffset, static_cast<unsigned char>(ELF64_ST_INFO(bind, type)), 0,
                              static_cast<std::uint16_t>(section), value, size});
    }
    void AddRelocation(const std::string& table, unsigned symbol, unsigned type, std::uint64_t offset,
                       std::uint64_t addend) {
        (*this)[table].m_Bytes +=
            BytesOf(Elf64_Rela{offset, std::uint64_t{symbol} << 32 | type, static_cast<Elf64_Sxword>(addend)});
    }

    /// The file: header, program headers, contents, section headers.
    std::string Bytes() const {
        Elf64_Ehdr header = m_Header;
        std::string contents;
        std::string headers;
        std::string names;
        for (const Elf64_Phdr& segment : m_Segments) {
            contents += BytesOf(segment);
        }
        for (const CSection& section : m_Sections) {
            Elf64_Shdr record = section.m_Header;
            record.sh_name += record.sh_name == 0 ? static_cast<std::uint32_t>(names.size()) : 0;
            names += section.m_Name + '\0';
            record.sh_offset += record.sh_offset == 0 ? sizeof header + contents.size() : 0;
            record.sh_size += record.sh_size == 0 ? section.m_Bytes.size() : 0;
            contents += section.m_Bytes;
            headers += BytesOf(record);
        }
        Elf64_Shdr& namesRecord = reinterpret_cast<Elf64_Shdr*>(headers.data())[1];
        namesRecord.sh_offset = sizeof header + contents.size();
        namesRecord.sh_size = names.size();
        header.e_phoff += header.e_phoff == 0 ? sizeof header : 0;
        header.e_shoff = sizeof header + contents.size() + names.size();
        header.e_phnum = static_cast<std::uint16_t>(m_Segments.size());
        header.e_shnum = static_cast<std::uint16_t>(m_Sections.size());
        header.e_shstrndx = static_cast<std::uint16_t>(header.e_shstrndx == 0 ? 1 : header.e_shstrndx);
        return BytesOf(header) + contents + names + headers;
    }

    Elf64_Ehdr m_Header{};
    std::vector<Elf64_Phdr> m_Segments;

private:
    CElfBuilder() = default;

    std::deque<CSection> m_Sections;
};

#endif
