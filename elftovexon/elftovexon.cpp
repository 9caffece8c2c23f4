// Reading and checking of ELF files.
#include "elftovexon/elftovexon.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <iterator>
#include <utility>

#include <unistd.h>

#include "general_error"

using marlune::elf::CElfFile;
using marlune::exceptions::CGeneralError;
using ObjectFile::CFileHandle;
using ObjectFile::CObjectFile;

namespace {

constexpr Elf64_Half MACHINE = 192;
constexpr Elf64_Word SHT_ADDRESS_SPACES = SHT_LOPROC;
constexpr std::string_view MAGIC(ELFMAG, SELFMAG);

std::unique_ptr<CObjectFile> MakeEmptyObject() {
    return std::make_unique<CObjectFile>(0, 0, ObjectFile::BO_LITTLE, "");
}

CFileHandle Open(const std::string& path) {
    CFileHandle file = ObjectFile::OpenRegularFile(path);
    if (!file) {
        throw CGeneralError("File '" + path + "' could not be opened.\n");
    }
    return file;
}

std::uint64_t EntryCount(const Elf64_Shdr& section) {
    if (section.sh_entsize == 0) {
        throw CGeneralError("Section entries have no size\n");
    }
    return section.sh_size / section.sh_entsize;
}

template <typename T>
void Append(std::vector<T>& list, const std::vector<T>& more) {
    list.insert(list.end(), more.begin(), more.end());
}

/// The low 32 bits, which the caller sign-extends.
int Address32(std::uint64_t address) {
    return static_cast<int>(static_cast<std::uint32_t>(address));
}

} // namespace

ElfToVexon::ElfToVexon(const char* fileName)
    : m_FileName(fileName), m_File(Open(m_FileName)), m_Owned(MakeEmptyObject()), m_Target(m_Owned.get()) {
    LoadFile();
}

ElfToVexon::ElfToVexon(const char* fileName, CObjectFile* target) : ElfToVexon(Open(fileName), fileName, target) {}

ElfToVexon::ElfToVexon(CFileHandle file, std::string fileName, CObjectFile* target)
    : m_FileName(std::move(fileName)), m_File(std::move(file)), m_Target(target) {
    LoadFile();
}

bool ElfToVexon::IsElfFile(const char* path) {
    const CFileHandle file = ObjectFile::OpenRegularFile(path);
    return file && IsElfFile(*file);
}

bool ElfToVexon::IsElfFile(std::FILE& file) {
    std::array<char, SELFMAG> start{};
    const ssize_t count = pread(fileno(&file), start.data(), start.size(), 0);
    return count == SELFMAG && std::string_view(start.data(), start.size()) == MAGIC;
}

bool ElfToVexon::SaveToFile(const char* name) {
    return m_Target->SaveFile(name);
}

CObjectFile* ElfToVexon::ReleaseConvertedVexon() {
    CObjectFile* const converted = m_Target;
    m_Owned.release(); // NOLINT(bugprone-unused-return-value): the same object, if it is owned at all
    m_Owned = MakeEmptyObject();
    m_Target = m_Owned.get();
    return converted;
}

void ElfToVexon::LoadFile() {
    ReadHeader();
    m_File.ReadAll();
    ReadTables();
    for (std::size_t index = 0; index < m_SectionHeaders.size(); ++index) {
        ReadSection(static_cast<int>(index));
    }
    if (m_AddressSpaces.empty()) {
        throw CGeneralError("Missing address space table\n");
    }
    ReadSectionNames();
}

void ElfToVexon::ReadHeader() {
    if (m_File.All().substr(0, MAGIC.size()) != MAGIC) {
        throw CGeneralError("Incorrect ELF magic number\n");
    }
    m_Header = m_File.TakeRecord<Elf64_Ehdr>(0);
    for (Elf64_Half* const field :
         {&m_Header.e_type, &m_Header.e_machine, &m_Header.e_ehsize, &m_Header.e_phentsize, &m_Header.e_phnum,
          &m_Header.e_shentsize, &m_Header.e_shnum, &m_Header.e_shstrndx}) {
        *field = FileOrder(*field);
    }
    if (m_Header.e_machine != MACHINE) {
        throw CGeneralError("Incorrect architecture\n");
    }
    if (m_Header.e_ident[EI_CLASS] == ELFCLASS32) { // all other values are read with the 64-bit layouts
        throw CGeneralError("Unsupported ELF class\n");
    }
}

void ElfToVexon::ReadTables() {
    for (std::uint32_t i = 0; i < m_Header.e_phnum; ++i) {
        // The toolchain computes this offset in 32 bits.
        const std::uint32_t offset = static_cast<std::uint32_t>(m_Header.e_phoff) + i * m_Header.e_phentsize;
        m_ProgramHeaders.push_back(m_File.TakeRecord<Elf64_Phdr>(offset));
    }
    for (std::uint64_t i = 0; i < m_Header.e_shnum; ++i) {
        const std::uint64_t offset = m_Header.e_shoff + i * m_Header.e_shentsize;
        m_SectionHeaders.push_back(m_File.TakeRecord<Elf64_Shdr>(offset));
    }
    if (HasPhysicalAddresses()) {
        m_LoadSegments.emplace(m_ProgramHeaders, PT_LOAD);
        m_TlsSegments.emplace(m_ProgramHeaders, PT_TLS);
    }
}

void ElfToVexon::ReadSection(int index) {
    const Elf64_Shdr& section = m_SectionHeaders[static_cast<std::size_t>(index)];
    switch (section.sh_type) {
    case SHT_SYMTAB:
        ReadSymbols(section);
        break;
    case SHT_RELA:
        m_Relocations.push_back({index, m_File.TakeRecords<Elf64_Rela>(section.sh_offset, EntryCount(section))});
        break;
    case SHT_NOBITS:
        m_Contents.push_back({{}, index});
        break;
    default:
        m_Contents.push_back({m_File.Take(section.sh_offset, section.sh_size), index});
        if (section.sh_type == SHT_ADDRESS_SPACES) {
            ReadAddressSpaces(index);
        }
    }
}

void ElfToVexon::ReadSymbols(const Elf64_Shdr& section) {
    std::vector<Elf64_Sym> symbols = m_File.TakeRecords<Elf64_Sym>(section.sh_offset, EntryCount(section));
    for (Elf64_Sym& symbol : symbols) {
        symbol.st_shndx = FileOrder(symbol.st_shndx);
    }
    Append(m_Symbols, symbols);
}

/// A count, then as many entries: a zero-terminated name and four values, packed.
void ElfToVexon::ReadAddressSpaces(int section) {
    unsigned offset = 0;
    const auto readHalf = [&] {
        Elf64_Half value = 0;
        const std::string_view bytes = GetVectorPieceOfSize(section, static_cast<int>(offset), sizeof value);
        std::memcpy(&value, bytes.data(), sizeof value);
        offset += sizeof value;
        return FileOrder(value);
    };
    for (unsigned left = readHalf(); left > 0; --left) {
        AddressSpace space;
        space.m_Named.SetAddressSpaceName(std::string(GetVectorPieceTerminatedBy(section, &offset, '\0')));
        space.m_First = readHalf();
        space.m_WordBitSize = readHalf();
        space.m_ByteBitSize = readHalf();
        space.m_BigEndian = readHalf();
        if (space.m_ByteBitSize != 0 && space.m_WordBitSize % space.m_ByteBitSize != 0) {
            throw CGeneralError("Invalid bytes per word\n");
        }
        m_AddressSpaces.push_back(std::move(space));
    }
}

void ElfToVexon::ReadSectionNames() {
    for (const Elf64_Shdr& section : m_SectionHeaders) {
        unsigned offset = section.sh_name;
        const std::string_view name = GetVectorPieceTerminatedBy(m_Header.e_shstrndx, &offset, '\0');
        m_File.CountName(name.size());
        m_SectionNames.emplace_back(name);
    }
    for (std::size_t i = 0; i < m_SectionNames.size(); ++i) {
        m_SectionIndices.emplace(m_SectionNames[i], static_cast<int>(i));
    }
}

/// Swaps the bytes of a 16-bit value of a big-endian file, in either direction.
std::uint16_t ElfToVexon::FileOrder(std::uint16_t value) const {
    return IsBigEndian() ? static_cast<std::uint16_t>(value << 8 | value >> 8) : value;
}

const std::string& ElfToVexon::GetSectionName(unsigned index) const {
    if (index >= m_SectionNames.size()) {
        throw CGeneralError("Section index out of range\n");
    }
    return m_SectionNames[index];
}

int ElfToVexon::GetSectionIndexOfName(const std::string& name) const {
    const auto found = m_SectionIndices.find(name);
    if (found == m_SectionIndices.end()) {
        std::printf("Could not find section with name %s\n", name.c_str());
        return -1;
    }
    return found->second;
}

int ElfToVexon::GetIndexContentOfSection(int index) const {
    const auto found =
        std::lower_bound(m_Contents.begin(), m_Contents.end(), index,
                         [](const CSectionContents& contents, int wanted) { return contents.m_Section < wanted; });
    if (found == m_Contents.end() || found->m_Section != index) {
        throw CGeneralError("Could not find section with index");
    }
    return static_cast<int>(std::distance(m_Contents.begin(), found));
}

std::string_view ElfToVexon::GetVectorPieceOfSize(int section, int offset, int size) const {
    if (size < 1) {
        return {};
    }
    const std::string_view bytes = m_Contents[static_cast<std::size_t>(GetIndexContentOfSection(section))].m_Bytes;
    if (offset < 0 || static_cast<std::size_t>(offset) > bytes.size() ||
        static_cast<std::size_t>(size) > bytes.size() - static_cast<std::size_t>(offset)) {
        CElfFile::ThrowUnexpectedEnd();
    }
    return bytes.substr(static_cast<std::size_t>(offset), static_cast<std::size_t>(size));
}

std::string_view ElfToVexon::GetVectorPieceTerminatedBy(int section, unsigned* offset, char terminator) const {
    return TerminatedPiece(m_Contents[static_cast<std::size_t>(GetIndexContentOfSection(section))].m_Bytes, offset,
                           terminator);
}

std::string_view ElfToVexon::TerminatedPiece(std::string_view bytes, unsigned* offset, char terminator) {
    const std::size_t start = *offset;
    const std::size_t end = bytes.find(terminator, start);
    if (end == std::string_view::npos || end >= UINT32_MAX) {
        CElfFile::ThrowUnexpectedEnd();
    }
    *offset = static_cast<unsigned>(end + 1);
    return bytes.substr(start, end - start);
}

std::string ElfToVexon::GetSymbolName(unsigned offset) const {
    return std::string(GetVectorPieceTerminatedBy(GetSectionIndexOfName(".strtab"), &offset, '\0'));
}

/// False if several segments with contents are all at physical address 0: then the linker has given none.
bool ElfToVexon::HasPhysicalAddresses() const {
    int loaded = 0;
    for (const Elf64_Phdr& segment : m_ProgramHeaders) {
        if (segment.p_paddr != 0) {
            return true;
        }
        loaded += segment.p_type == PT_LOAD && segment.p_memsz != 0 ? 1 : 0;
    }
    return loaded <= 1;
}

int ElfToVexon::GetLoadAddress(int sectionIndex) const {
    if (sectionIndex < 0 || static_cast<std::size_t>(sectionIndex) >= m_SectionHeaders.size()) {
        throw CGeneralError("Section index out of range\n");
    }
    const Elf64_Shdr& section = m_SectionHeaders[static_cast<std::size_t>(sectionIndex)];
    const auto& segments = (section.sh_flags & SHF_TLS) != 0 ? m_TlsSegments : m_LoadSegments;
    const Elf64_Phdr* const segment =
        (section.sh_flags & SHF_ALLOC) != 0 && segments ? segments->Find(section) : nullptr;
    if (segment == nullptr) {
        return Address32(section.sh_addr);
    }
    return Address32(section.sh_type == SHT_NOBITS ? segment->p_paddr + section.sh_addr - segment->p_vaddr
                                                   : segment->p_paddr + section.sh_offset - segment->p_offset);
}
