#include "elftovexon/elftovexon.h"

#include <cstdio>
#include <fstream>
#include <functional>
#include <iterator>
#include <random>

#include <gtest/gtest.h>
#include <unistd.h>

#include "general_error"
#include "objectfile/objectfileutils.h"
#include "src/flimemory/loadmemory.h"
#include "src/flimemory/storage.h"
#include "tests/elftovexon/elfbuilder.h"
#include "tests/simulator/simulator.h"

namespace {

using namespace std::string_literals;
using marlune::exceptions::CGeneralError;
using marlune::foreign::fli::CStorage;
using ObjectFile::CObjectFile;
using ObjectFile::CSection;

constexpr const char* SAVED = MARLUNE_TEST_DATA "/everything.obj";

/// An executable with one of everything that the importer takes.
CElfBuilder Everything() {
    const std::uint64_t ram = 0;
    const std::uint64_t rom = std::uint64_t{1} << 32;
    const std::uint64_t none = std::uint64_t{2} << 32;
    const std::string lines("000000000000033\0\0\1\0\0x.s\0\0\2" // header, start address 0x100, file names
                            "5\0\4\1"
                            "2\0\5",
                            33);
    CElfBuilder elf({{"ram", 32, 8, 1}, {"rom", 48, 24, 0}});
    elf.m_Header.e_entry = 0x101;
    elf.Add(".text@rom", SHT_PROGBITS, rom | SHF_ALLOC | SHF_EXECINSTR, 0x100, "abc.def.ghi.");
    elf.Add(".data", SHT_PROGBITS, ram | SHF_WRITE | SHF_ALLOC, 0x80000000, "\x01\x02\x80\xff\x10");
    elf.Add(".bss", SHT_NOBITS, ram | SHF_WRITE | SHF_ALLOC, 0x2000).m_Header.sh_size = 4096;
    elf.Add(".note", SHT_NOTE, none, 0, "note");
    elf.Add(".marlune_line", 0x70000001, none, 0, lines);
    elf.Add(".symtab", SHT_SYMTAB, 0, 0, std::string(24, '\0'));
    elf.AddSymbol("x.c", STB_LOCAL, STT_FILE, SHN_ABS);
    elf.AddSymbol("unused", STB_LOCAL, STT_SECTION, elf.Index(".text@rom"), 0x100);
    elf.AddSymbol("start of all", STB_GLOBAL, STT_FUNC, elf.Index(".text@rom"), 0x102, 6);
    elf.AddSymbol("table", STB_WEAK, STT_OBJECT, elf.Index(".data"), 0x80000004, 1);
    elf.AddSymbol("limit", STB_GLOBAL, STT_NOTYPE, SHN_ABS, ~std::uint64_t{0});
    elf.AddSymbol("shared", STB_GLOBAL, STT_OBJECT, SHN_COMMON, 8, 12);
    elf.AddSymbol("outside", STB_GLOBAL, STT_NOTYPE, SHN_UNDEF, 3);
    elf.Add(".rela.text@rom", SHT_RELA);
    elf.AddRelocation(".rela.text@rom", 3, 2, 1, std::uint64_t{5} << 32 | 3);
    elf.AddRelocation(".rela.text@rom", 7, 7, 0xFFFFFFFF,
                      0xFFFFFFFE00000000 | 5U << 25 | 2U << 18 | 7U << 12 | 20U << 6);
    elf.Add(".rela.data", SHT_RELA);
    const std::uint64_t maskWidths[] = {0, 1, 63, 64, 0, 1, 63, 127};
    for (unsigned type = 1; type <= 8; ++type) {
        elf.AddRelocation(".rela.data", 4, type, type, maskWidths[type - 1] << 25 | 127U << 18 | 1);
    }
    return elf;
}

std::string WriteFile(const std::string& bytes) {
    std::string path = testing::TempDir() + "elftovexon_test" + std::to_string(getpid()) + ".elf";
    std::remove(path.c_str()); // some file systems write a file out at once that is cut and filled again
    std::ofstream(path, std::ios::binary) << bytes;
    return path;
}

std::string ReadFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

/// A saved object without the line that holds the time.
std::string WithoutTime(const std::string& path) {
    return ReadFile(path).erase(11, 19);
}

CStorage Cells(const CObjectFile& object, const std::string& space, unsigned width, unsigned low, std::size_t count) {
    CStorage storage("mem", width, static_cast<unsigned>(count));
    marlune::foreign::LoadMemory(storage, object, space, 0, low, 0xFFFFFFFF, 0, 1, false);
    return storage;
}

/// Reads and converts; returns the error's detail, empty when there is none.
std::string ErrorOf(const std::string& bytes) {
    try {
        ElfToVexon(WriteFile(bytes).c_str()).Convert();
        return "";
    } catch (const CGeneralError& error) {
        return std::string(error.what()).substr("General error: "s.size());
    }
}

TEST(ElfToVexon, ConvertsOneOfEverything) {
    const std::string elf = WriteFile(Everything().Bytes());
    const std::string text = testing::TempDir() + "elftovexon_test" + std::to_string(getpid()) + ".obj";
    EXPECT_TRUE(ObjectFile::IsObjectFile(elf));
    ElfToVexon converter(elf.c_str());
    converter.Convert();
    ASSERT_TRUE(converter.SaveToFile(text.c_str()));
    EXPECT_FALSE(ElfToVexon::IsElfFile(text.c_str()));
    EXPECT_EQ(WithoutTime(text), WithoutTime(SAVED));
    const std::unique_ptr<CObjectFile> released(converter.ReleaseConvertedVexon());
    ASSERT_NE(released->GetLineTable(), nullptr);
    EXPECT_EQ(released->GetLineTable()->GetRows().size(), 2U);

    CObjectFile reloaded;
    reloaded.LoadFile(text);
    ASSERT_TRUE(reloaded.SaveFile(text));
    EXPECT_EQ(WithoutTime(text), WithoutTime(SAVED));

    CObjectFile direct;
    direct.LoadFile(elf);
    direct.LoadFile(elf); // in place of what was there
    EXPECT_EQ(direct.SectionsCount(), reloaded.SectionsCount());
    CSimulator simulator;
    for (const CObjectFile* object : {&direct, &reloaded}) {
        EXPECT_TRUE(Cells(*object, "rom", 24, 0x100, 3).Read(1) == CStorage::CWord(0x666564)); // "def."
        EXPECT_TRUE(Cells(*object, "ram", 8, 0x80000000, 5).Read(2) == CStorage::CWord(0x80));
    }
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
        EXPECT_EQ(ErrorOf(elf.Bytes()), c.m_Error) << "case " << &c - cases;
    }
    CElfBuilder elf = Everything();
    elf.Add("rela", SHT_RELA);
    EXPECT_THROW(ErrorOf(elf.Bytes()), std::out_of_range);
    CElfBuilder longName({{std::string(100000, 'a'), 32, 8}}); // all sections share it
    for (int i = 0; i < 2000; ++i) {
        longName.Add(".bss" + std::to_string(i), SHT_NOBITS, SHF_WRITE | SHF_ALLOC);
    }
    EXPECT_EQ(ErrorOf(longName.Bytes()), "");
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
        EXPECT_EQ(ErrorOf(elf.Bytes()), c.m_Error) << "case " << &c - cases;
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
            ElfToVexon converter(WriteFile(elf.Bytes()).c_str(), &object);
            try {
                converter.Convert();
            } catch (const CGeneralError& error) {
                EXPECT_STREQ(error.what(), "General error: Unsupported section type combination");
            }
            const CSection* section = object.FindSection(".s");
            EXPECT_EQ(section == nullptr ? 0 : section->GetType(), results[flags] - '0') << type << " " << flags;
        }
    }
}

TEST(ElfToVexon, ConvertsBytesOfEverySize) {
    std::mt19937 random(1);
    for (std::uint16_t bits = 1; bits <= 64; ++bits) {
        const std::size_t step = bits <= 8 ? 1 : bits <= 16 ? 2 : bits <= 32 ? 4 : 8;
        for (std::uint16_t big = 0; big < 2; ++big) {
            std::string contents(step * (bits % 10 == 8 ? 40000 : 37), '\0');
            std::generate(contents.begin(), contents.end(), [&] { return static_cast<char>(random()); });
            CElfBuilder elf({{"x", static_cast<std::uint16_t>(bits * 3), bits, big}, {}});
            elf.Add(".data", SHT_PROGBITS, SHF_WRITE | SHF_ALLOC, 0, contents);
            elf.Add(".debug", SHT_PROGBITS, 0, 0, "\xff"); // becomes one byte of any size
            CObjectFile object;
            object.LoadFile(WriteFile(elf.Bytes()));
            const auto check = [&](const char* section, const std::string& fileBytes) {
                const ObjectFile::CSectionData& data = *object.FindSection(section)->GetSectionData();
                ASSERT_EQ(static_cast<std::size_t>(data.GetByteCount()), fileBytes.size() / step);
                std::string digits(bits, ' ');
                const auto* bytes = reinterpret_cast<const unsigned char*>(fileBytes.data());
                for (int i = 0; i < data.GetByteCount(); ++i, bytes += step) {
                    ElfToVexon::ConvertByteToVexon(bytes, bits, big != 0 ? ObjectFile::BO_BIG : ObjectFile::BO_LITTLE,
                                                   digits.data());
                    ASSERT_EQ(data.GetByte(i), digits) << bits << " " << big << " " << i;
                }
            };
            check(".data", contents);
            check(".debug", "\xff" + std::string(step - 1, '\0'));
        }
    }
}

TEST(ElfToVexon, TakesLoadAddressesFromSegments) {
    using S = Elf64_Phdr; // type, flags, offset, vaddr, paddr, filesz, memsz, align
    const S load{PT_LOAD, 0, 0, 0x100, 0x5000, 0x1000, 0x1000, 0};
    const S high{PT_LOAD, 0, 0x100, 0x200, 0x90000000, 0x10, 0x10, 0}; // holds just the section
    const S tls{PT_TLS, 0, 0x100, 0x200, 0x7000, 0x10, 0x10, 0};
    const S unplaced{PT_LOAD, 0, 0, 0x100, 0, 0x1000, 0x1000, 0};
    const S empty{PT_LOAD, 0, 0, 0x200, 0, 0, 0, 0};
    const struct {
        std::vector<S> m_Segments;
        std::uint64_t m_Flags;
        std::uint32_t m_Type;
        std::uint32_t m_Expected;
    } cases[] = {
        {{}, SHF_ALLOC, SHT_PROGBITS, 0x200},
        {{load}, 0, SHT_PROGBITS, 0x200},
        {{load, high}, SHF_ALLOC, SHT_PROGBITS, 0x5100}, // the first that holds it
        {{load, high}, SHF_ALLOC, SHT_NOBITS, 0x90000000},
        {{high, load}, SHF_ALLOC, SHT_NOBITS, 0x5100}, // the last one
        {{tls, load}, SHF_ALLOC, SHT_PROGBITS, 0x5100},
        {{load, tls}, SHF_ALLOC | SHF_TLS, SHT_PROGBITS, 0x7000},
        {{unplaced, empty}, SHF_ALLOC, SHT_PROGBITS, 0x100},
        {{unplaced, unplaced}, SHF_ALLOC, SHT_PROGBITS, 0x200},
        {{unplaced, unplaced, high}, SHF_ALLOC, SHT_NOBITS, 0x90000000},
    };
    for (const auto& c : cases) {
        CElfBuilder elf({{"ram", 32, 8}});
        elf.m_Segments = c.m_Segments;
        Elf64_Shdr& section = elf.Add(".s", c.m_Type, c.m_Flags, 0x200).m_Header;
        section.sh_offset = 0x100;
        section.sh_size = 0x10;
        elf.Add(".fill", SHT_NOTE, 0, 0, std::string(0x200, 'f'));
        const ElfToVexon converter(WriteFile(elf.Bytes()).c_str());
        EXPECT_EQ(static_cast<std::uint32_t>(converter.GetLoadAddress(elf.Index(".s"))), c.m_Expected) << &c - cases;
    }
}

TEST(ElfToVexon, SwapsWhatABigEndianFileHasSwapped) {
    CElfBuilder elf({{"ram", 32, 16}}, true);
    elf.m_Header.e_type = ET_REL;
    elf.m_Header.e_entry = 0x1234;
    elf.Add(".text@x", SHT_PROGBITS, SHF_ALLOC | SHF_EXECINSTR, 0x40, "ab");
    elf.Add(".symtab", SHT_SYMTAB, 0, 0, std::string(24, '\0'));
    elf.AddSymbol("", STB_LOCAL, STT_SECTION, elf.Index(".text@x"), 0x180000044);
    elf.AddSymbol("odd", 13, STT_NOTYPE, elf.Index(".text@x"));
    CObjectFile object;
    object.LoadFile(WriteFile(elf.Bytes()));
    EXPECT_EQ(object.GetByteOrder(), ObjectFile::BO_BIG);
    EXPECT_EQ(object.GetBytesPerWord(), 2);
    EXPECT_EQ(object.GetEntryPoint(), 0x1234U);
    EXPECT_EQ(object.FindSection(".text@x")->GetByteOrder(), ObjectFile::BO_LITTLE);
    EXPECT_FALSE(object.FindSection(".text@x")->GetMemoryByteAddressIsAbsolute());
    const ObjectFile::CSymbol& symbol = *object.GetSymbolTable(0)->FindSymbol(".text@x");
    EXPECT_EQ(symbol.GetMemoryAddress(), 0x80000044U);
    EXPECT_EQ(object.GetSymbolTable(0)->GetSymbol(1)->GetType(), ObjectFile::CSymbol::TYPE_NONE);
}

TEST(ElfToVexon, SurvivesCutsAndFlips) {
    const std::string whole = Everything().Bytes();
    testing::internal::CaptureStderr(); // warnings about line tables and symbols
    testing::internal::CaptureStdout();
    for (std::size_t i = 0; i < whole.size(); ++i) {
        EXPECT_NE(ErrorOf(whole.substr(0, i)), "") << i;
        for (const int mask : {0x01, 0x80, 0xFF}) {
            std::string flipped = whole;
            flipped[i] = static_cast<char>(flipped[i] ^ mask);
            try {
                ErrorOf(flipped);
            } catch (const ObjectFile::general_error&) { // two symbols of one name
            } catch (const std::out_of_range& error) {   // a relocation section with a short name
                EXPECT_NE(std::string(error.what()).find("substr"), std::string::npos);
            }
        }
    }
    testing::internal::GetCapturedStdout();
    testing::internal::GetCapturedStderr();
}

TEST(ElfToVexon, LoadsWhatTheGnuToolchainBuilds) {
    const std::string binary = ReadFile(MARLUNE_TEST_PROGRAM ".bin"); // from the lowest load address, 0x1000, on
    std::string elf = ReadFile(MARLUNE_TEST_PROGRAM ".elf");
    if (elf.empty()) {
        GTEST_SKIP() << "no GNU assembler and linker";
    }
    ASSERT_EQ(binary.size(), 0x800 + 23U);
    elf.replace(offsetof(Elf64_Ehdr, e_machine), 2, "\xC0\0"s);
    CObjectFile object;
    object.LoadFile(WriteFile(elf));
    CSimulator simulator;
    CStorage cells = Cells(object, "ram", 8, 0x1000, binary.size());
    for (std::uint32_t i = 0; i < binary.size(); ++i) {
        ASSERT_TRUE(cells.Read(i) == CStorage::CWord(static_cast<unsigned char>(binary[i]))) << i;
    }
}

} // namespace
