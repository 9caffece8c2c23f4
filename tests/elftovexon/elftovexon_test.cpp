// ELF files: reading, checks and conversion.
#include "elftovexon/elftovexon.h"

#include <algorithm>
#include <functional>
#include <random>

#include "tests/elftovexon/elfbuilder.h"
#include "tests/objectfile/testfile.h"

namespace {

using namespace std::string_literals;
using ObjectFile::CObjectFile;
using ObjectFile::CSection;

/// An executable with one of everything that the importer takes.
CElfBuilder Everything() {
    return CElfBuilder::Of(TestData("elf/everything.elf"));
}

/// A saved object without the line that holds the time.
std::string WithoutTime(const std::string& text) {
    return std::string(text).erase(11, 19);
}

/// Reads and converts; returns the error's detail, empty when there is none.
std::string Convert(const std::string& bytes) {
    const CTestFile file(bytes);
    const std::string error = ErrorOf([&] { ElfToVexon(file.Path().c_str()).Convert(); });
    return error == "no error" ? "" : error.substr("General error: "s.size());
}

std::unique_ptr<CObjectFile> LoadElf(const CElfBuilder& elf) {
    auto object = std::make_unique<CObjectFile>();
    object->LoadFile(CTestFile(elf.Bytes()).Path());
    return object;
}

TEST(ElfToVexon, ConvertsOneOfEverything) {
    EXPECT_EQ(Everything().Bytes(), TestData("elf/everything.elf"));
    // The last one was built by the GNU toolchain. Its .data is stored after .text, and runs elsewhere.
    for (const std::string name : {"elf/everything", "elf/big_endian", "elf/gnu"}) {
        const CTestFile elf(TestData(name + ".elf"));
        const CTestFile text;
        ElfToVexon converter(elf.Path().c_str());
        converter.Convert();
        ASSERT_TRUE(converter.SaveToFile(text.Path().c_str()));
        EXPECT_EQ(WithoutTime(ReadFile(text.Path())), WithoutTime(TestData(name + ".obj")));
        EXPECT_TRUE(ElfToVexon::IsElfFile(elf.Path().c_str()) && !ElfToVexon::IsElfFile(text.Path().c_str()));
    }
    const std::string expected = WithoutTime(TestData("elf/everything.obj"));
    EXPECT_EQ(WithoutTime(Save(*Load(TestData("elf/everything.obj")))), expected);
    CElfBuilder relocatable = Everything(); // whose symbols keep the address space in their names
    relocatable.m_Header.e_type = ET_REL;
    EXPECT_NE(LoadElf(relocatable)->GetSymbolTable(0)->FindSymbol(".text@rom"), nullptr);
    CElfBuilder twice = Everything(); // an executable's lose only the last part
    twice.Add(".a@b@rom", SHT_NOBITS, SHF_WRITE | SHF_ALLOC);
    twice.AddSymbol("unused", STB_LOCAL, STT_SECTION, twice.Index(".a@b@rom"));
    EXPECT_NE(LoadElf(twice)->GetSymbolTable(0)->FindSymbol(".a@b"), nullptr);
}

void AddOverlaps(CElfBuilder& elf) {
    for (int i = 0; i < 99; ++i) {
        Elf64_Shdr& header = elf.Add("", SHT_PROGBITS).m_Header;
        header.sh_offset = 64;
        header.sh_size = 1000;
    }
}

TEST(ElfToVexon, RejectsWhatIsWrong) {
    using E = CElfBuilder;
    const struct {
        std::function<void(E&)> m_Change;
        std::string m_Error;
    } cases[] = {
        {[](E& e) { e.m_Header.e_ident[3] = 'G', e.m_Header.e_machine = 1; }, "Incorrect ELF magic number\n"},
        {[](E& e) { e.m_Header.e_machine = 243, e.m_Header.e_ident[4] = 1; }, "Incorrect architecture\n"},
        {[](E& e) { e.m_Header.e_ident[EI_CLASS] = ELFCLASS32; }, "Unsupported ELF class\n"},
        {[](E& e) { e.m_Header.e_ident[EI_DATA] = 3; }, "Invalid data encoding\n"},
        {[](E& e) { e[".marlune_as"].m_Header.sh_type = SHT_PROGBITS; }, "Missing address space table\n"},
        {[](E& e) { e[".marlune_as"].m_Bytes = "\0\0"s; }, "Missing address space table\n"},
        {[](E& e) { e[".marlune_as"].m_Bytes.pop_back(); }, "Unexpected end of file\n"},
        {[](E& e) { e[".data"].m_Header.sh_offset = ~0ULL - 3; }, "Unexpected end of file\n"},
        {[](E& e) { e[".symtab"].m_Header.sh_size = ~0ULL; }, "Unexpected end of file\n"},
        {[](E& e) { e[".rela.data"].m_Header.sh_entsize = 0; }, "Section entries have no size\n"},
        {[](E& e) { e[".note"].m_Header.sh_name = 0x10000; }, "Unexpected end of file\n"},
        {[](E& e) { e.m_Header.e_shstrndx = e.Index(".symtab"); }, "Could not find section with index"},
        {[](E& e) { e[".strtab"].m_Name = ".shstrtab"; }, "Could not find section with index"},
        {[](E& e) { e[".strtab"].m_Bytes.pop_back(); }, "Unexpected end of file\n"},
        {[](E& e) { e.AddSymbol("x", STB_LOCAL, STT_FUNC, 99); }, "Section index out of range\n"},
        {[](E& e) { e.AddSymbol("x", STB_LOCAL, STT_FUNC, 1); }, "Symbol 'x': missing section\n"},
        {[](E& e) { e[".rela.data"].m_Name = ".rela.nothing"; }, "Relocation: missing section\n"},
        {[](E& e) { e.AddRelocation(".rela.data", 0, 1, 0, 0); }, "Relocation: missing symbol\n"},
        {[](E& e) { e.AddRelocation(".rela.data", 1, 9, 0, 0); }, "Unsupported relocation type\n"},
        {AddOverlaps, "The headers use the file's bytes more than 8 times over\n"},
    };
    for (const auto& c : cases) {
        CElfBuilder elf = Everything();
        c.m_Change(elf);
        EXPECT_EQ(Convert(elf.Bytes()), c.m_Error) << "case " << &c - cases;
    }
    CElfBuilder elf = Everything();
    elf.Add("rela", SHT_RELA);
    EXPECT_EQ(ErrorOf([&] { LoadElf(elf); }), "basic_string::substr");

    elf.AddSymbol("start of all", STB_GLOBAL, STT_FUNC, elf.Index(".text@rom")); // the second one
    const CTestFile file(elf.Bytes());
    ElfToVexon converter(file.Path().c_str());
    for (int i = 0; i < 2; ++i) { // and once more, when the first object is gone
        EXPECT_THROW(converter.Convert(), ObjectFile::general_error);
        delete converter.ReleaseConvertedVexon();
    }
}

TEST(ElfToVexon, AcceptsWhatIsOnlyUnusual) {
    CElfBuilder elf({{std::string(100000, 'a'), 32, 8}}); // a name that all sections share
    for (const int c : {0, 2, 3, 255}) {
        elf.m_Header.e_ident[EI_CLASS] = static_cast<unsigned char>(c);
        elf.Add(".bss" + std::to_string(c), SHT_NOBITS, SHF_WRITE | SHF_ALLOC);
        EXPECT_EQ(Convert(elf.Bytes()), "");
    }
    elf.Add(std::string(5000, 'n'), SHT_NOBITS, SHF_WRITE | SHF_ALLOC);
    for (std::uint32_t i = 0; i < 1000; ++i) { // names that share their ends, together many times the file's size
        elf.Add("", SHT_NOBITS, SHF_WRITE | SHF_ALLOC).m_Header.sh_name = 60 + i;
    }
    EXPECT_EQ(Convert(elf.Bytes()), "");
}

TEST(ElfToVexon, ChecksAddressSpaces) {
    const struct {
        std::vector<CAddressSpace> m_Spaces;
        const char* m_Contents;
        const char* m_Error;
    } cases[] = {
        {{{"a", 20, 8}}, "", "Invalid bytes per word\n"},
        {{{"a", 8, 8}}, "", "Unsupported word length\n"},
        {{{"a", 8, 8}, {"b", 8, 8}}, "x", ""},
        {{{"a", 0, 8}, {"b", 8, 8}}, "", ""},
        {{{"a", 0, 8}, {"b", 8, 8}}, "x", "Unsupported word length\n"},
        {{{"a", 32, 0}}, "", "Unsupported byte bit-size\n"},
        {{{"a", 32, 0}, {"b", 8, 8}}, "", "Unsupported byte bit-size\n"},
        {{{"a", 65, 65}, {"b", 8, 8}}, "", ""},
        {{{"a", 65, 65}, {"b", 8, 8}}, "x", "Unsupported byte bit-size\n"},
        {{{"a", 32, 16}}, "abc", "Section '.text' ends within a byte\n"},
    };
    for (const auto& c : cases) {
        CElfBuilder elf(c.m_Spaces);
        elf.Add(".text", SHT_PROGBITS, SHF_ALLOC | SHF_EXECINSTR, 0, c.m_Contents);
        EXPECT_EQ(Convert(elf.Bytes()), c.m_Error) << "case " << &c - cases;
    }
}

TEST(ElfToVexon, ChoosesSectionTypes) {
    // For each type the results of the flags 0 to 7 (write 1, alloc 2, exec 4); 0 is the error.
    const std::pair<std::uint32_t, const char*> rows[] = {
        {SHT_PROGBITS, "40020011"}, {SHT_NOBITS, "00030003"}, {SHT_NOTE, "50200000"},   {0x70000000, "55555555"},
        {0x70000001, "44444444"},   {0x70000002, "44444444"}, {0x70000003, "44444444"}, {0x70000009, "44444444"},
        {0x70000004, "00000000"},   {SHT_STRTAB, "00000000"}, {SHT_NULL, "00000000"},
    };
    for (const auto& [type, results] : rows) {
        for (unsigned flags = 0; flags < 8; ++flags) {
            CElfBuilder elf({{"ram", 32, 8}});
            elf.Add(".s", type, flags, 0, "\0\0"s); // also an address space table without entries
            CObjectFile object;
            const CTestFile file(elf.Bytes());
            ElfToVexon converter(file.Path().c_str(), &object);
            const std::string error = ErrorOf([&] { converter.Convert(); });
            EXPECT_TRUE(error == "no error" || error == "General error: Unsupported section type combination");
            const CSection* section = object.FindSection(".s");
            EXPECT_EQ(section == nullptr ? 0 : section->GetType(), results[flags] - '0') << type << " " << flags;
        }
    }
}

/// The address of a section by looking at each segment in turn.
std::uint64_t LoadAddress(const Elf64_Shdr& s, const std::vector<Elf64_Phdr>& segments) {
    const bool placed = std::any_of(segments.begin(), segments.end(), [](auto& p) { return p.p_paddr != 0; });
    const auto loaded =
        std::count_if(segments.begin(), segments.end(), [](auto& p) { return p.p_type == PT_LOAD && p.p_memsz != 0; });
    if ((s.sh_flags & SHF_ALLOC) == 0 || (!placed && loaded > 1)) {
        return s.sh_addr;
    }
    std::uint64_t address = s.sh_addr;
    for (const Elf64_Phdr& p : segments) {
        const bool inFile = s.sh_type == SHT_NOBITS ||
                            (s.sh_offset >= p.p_offset && s.sh_offset + s.sh_size - p.p_offset <= p.p_filesz);
        if (p.p_type == ((s.sh_flags & SHF_TLS) != 0 ? PT_TLS : PT_LOAD) && inFile && s.sh_addr >= p.p_vaddr &&
            s.sh_addr - p.p_vaddr + s.sh_size <= p.p_memsz) {
            if (s.sh_type != SHT_NOBITS) {
                return p.p_paddr + s.sh_offset - p.p_offset;
            }
            address = p.p_paddr + s.sh_addr - p.p_vaddr;
        }
    }
    return address;
}

TEST(ElfToVexon, TakesLoadAddressesFromSegments) {
    std::mt19937 random(5);
    const auto below = [&](unsigned count) { return static_cast<unsigned>(random() % count); };
    for (int round = 0; round < 400; ++round) {
        CElfBuilder elf({{"ram", 32, 8}});
        const unsigned places = below(2) * 0x90000000U; // sometimes no segment has a physical address
        for (unsigned count = below(40); count > 0; --count) {
            const Elf64_Word type = below(6) == 0 ? PT_TLS : PT_LOAD;
            elf.m_Segments.push_back(
                {type, 0, below(50), below(50), std::uint64_t{below(3)} * places, below(90), below(90), 0});
        }
        std::vector<Elf64_Shdr> sections;
        for (int i = 0; i < 10; ++i) {
            const Elf64_Word type = below(3) == 0 ? SHT_NOBITS : SHT_PROGBITS;
            const Elf64_Xword flags = below(9) == 0 ? 0 : SHF_ALLOC | below(2) * SHF_TLS;
            sections.push_back({0, type, flags, below(90), 1 + below(90), below(20), 0, 0, 0, 0});
            elf.Add(std::to_string(i), type).m_Header = sections.back();
        }
        elf.m_Header.e_phoff = std::uint64_t{1} << 32 | sizeof(Elf64_Ehdr); // of which 32 bits count
        const CTestFile file(elf.Bytes());
        const ElfToVexon converter(file.Path().c_str());
        for (int i = 0; i < 10; ++i) {
            const auto expected = LoadAddress(sections[static_cast<std::size_t>(i)], elf.m_Segments);
            ASSERT_EQ(converter.GetLoadAddress(elf.Index(std::to_string(i))), static_cast<int>(expected)) << round;
        }
    }
}

} // namespace
