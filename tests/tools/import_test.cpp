// Programs of other toolchains as images: which numbers the cells get, what is refused, what damage does.
#include "tools/import/importer.h"

#include <filesystem>
#include <iomanip>
#include <new>
#include <optional>
#include <sstream>

#include "tests/objectfile/testfile.h"
#include "tools/cells.h"
#include "tools/import/format.h"
#include "tools/import/readers.h"

namespace {

using namespace marlune::tool;
using ObjectFile::BO_BIG;
using ObjectFile::BO_LITTLE;
using ObjectFile::CObjectFile;

const std::string DATA = std::string(MARLUNE_TEST_DATA) + "/import/";

struct COutcome {
    std::unique_ptr<CObjectFile> m_Image;
    std::string m_Text; // the error, or the warnings, a line each
};

/// Imports as the tool does. Errors of any other kind than those of an import pass.
COutcome Import(const std::string& contents, const CImportOptions& options = {}) {
    const CTestFile file(contents);
    COutcome outcome;
    try {
        const eFormat format = options.m_Format ? *options.m_Format : RecogniseFormat(file.Path());
        outcome.m_Image = ImportProgram(file.Path(), format, options,
                                        [&](const std::string& text) { outcome.m_Text += text + "\n"; });
    } catch (const CReadError& error) {
        outcome.m_Text = "line " + std::to_string(error.m_Line) + ": " + error.what();
    } catch (const std::runtime_error& error) {
        outcome.m_Text = error.what();
    }
    return outcome;
}

CImportOptions Memory(unsigned width, std::optional<ObjectFile::eByteOrder> order = std::nullopt,
                      std::optional<eFormat> format = std::nullopt) {
    CImportOptions options;
    options.m_Space = "ram";
    options.m_Width = width;
    options.m_Order = order;
    options.m_Format = format;
    return options;
}

/// `count` cells from `first` on after a load, in hexadecimal.
std::string Cells(const CObjectFile& image, unsigned width, unsigned first, unsigned count) {
    const CLoadedCells cells(image, "ram", width, first + count, {0, 0, 0xFFFFFFFF, 0, 1});
    std::vector<std::uint64_t> limbs(std::size_t{count} * cells.LimbsPerCell());
    cells.Read(first, count, limbs.data());
    std::ostringstream text;
    for (std::size_t i = 0; i < count; ++i) {
        text << (i == 0 ? "" : " ");
        for (std::size_t limb = cells.LimbsPerCell(); limb-- > 0;) {
            text << std::hex << std::setfill('0') << std::setw(static_cast<int>(std::min(width, 64U) + 3) / 4)
                 << limbs[i * cells.LimbsPerCell() + limb];
        }
    }
    return text.str();
}

/// "name type address+LAUs", of each section.
std::string Sections(const CObjectFile& image) {
    std::ostringstream text;
    for (int i = 0; i < image.SectionsCount(); ++i) {
        const ObjectFile::CSection& section = *image.GetSection(i);
        text << (i == 0 ? "" : ", ") << section.GetName() << ' ' << " TDB"[section.GetType()] << ' ' << std::hex
             << section.GetMemoryByteAddress() << '+' << section.GetSectionDataByteCount();
    }
    return text.str();
}

TEST(Import, CellsHoldTheNumbersThatAProcessorReads) {
    const std::string bytes = "\x81\x02\x03\x04\x05\x06\x07\x08";
    const std::vector<std::tuple<unsigned, ObjectFile::eByteOrder, const char*>> cases = {
        {8, BO_LITTLE, "81 02 03 04 05 06 07 08"}, {8, BO_BIG, "81 02 03 04 05 06 07 08"},
        {16, BO_LITTLE, "0281 0403 0605 0807"},    {16, BO_BIG, "8102 0304 0506 0708"},
        {24, BO_LITTLE, "030281 060504 000807"},   {24, BO_BIG, "810203 040506 070800"},
        {32, BO_LITTLE, "04030281 08070605"},      {32, BO_BIG, "81020304 05060708"},
        {64, BO_LITTLE, "0807060504030281"},       {64, BO_BIG, "8102030405060708"}};
    for (const auto& [width, order, cells] : cases) {
        const COutcome outcome = Import(bytes, Memory(width, order, eFormat::BINARY));
        ASSERT_NE(outcome.m_Image, nullptr) << outcome.m_Text;
        const auto count = static_cast<unsigned>(std::string(cells).size() + 1) / (width / 4 + 1);
        EXPECT_EQ(Cells(*outcome.m_Image, width, 0, count), cells) << width;
        EXPECT_EQ(Cells(*Load(Save(*outcome.m_Image)), width, 0, count), cells) << "read back, " << width;
        EXPECT_EQ(outcome.m_Text.empty(), width != 24) << outcome.m_Text;
    }
    // Wider than the program: the rest of the LAU is zeros.
    EXPECT_EQ(Cells(*Import(bytes, Memory(128, BO_BIG, eFormat::BINARY)).m_Image, 128, 0, 1),
              "81020304050607080000000000000000");
}

TEST(Import, OneImageFromEveryFormat) {
    const std::vector<std::pair<unsigned, std::string>> words = {
        {8, "@104 11 22 33 44 55 66 77 00 61 62 63 64 65 @120 aa bb cc"},
        {32, "@41 44332211 // first\n00776655 6463_6261 /* padded */ 00000065 @48 00ccbbaa"}};
    for (const auto& [width, text] : words) {
        CImportOptions options = Memory(width);
        options.m_Entry = 0x104;
        const std::string hex = Save(*Import(ReadFile(DATA + "program.hex"), options).m_Image);
        EXPECT_EQ(Save(*Import(ReadFile(DATA + "program.srec"), options).m_Image), hex);
        options.m_Entry = 0x104 / (width / 8);
        EXPECT_EQ(Save(*Import(text, options).m_Image), hex);
    }
    // Words of any width, of which each is the number that is written.
    for (const auto order : {BO_LITTLE, BO_BIG}) {
        const COutcome odd = Import("@3 1ff 0_0x // c\n/* x\n y */ 1Xz", Memory(9, order));
        EXPECT_EQ(Cells(*odd.m_Image, 9, 3, 3), "1ff 000 100");
        EXPECT_EQ(odd.m_Text, "line 1: 3 digits x or z from here on, taken as 0\n");
    }
}

TEST(Import, ElfSectionsInLausOfEachWidth) {
    const std::string elf = ReadFile(DATA + "little64.elf");
    EXPECT_EQ(Sections(*Import(elf).m_Image),
              ".text T 104+7, .rodata D 10b+5, segment0+0xc T 110+10, .data D 120+3, .bss B 123+9");
    const COutcome words = Import(elf, Memory(32)); // .text and .rodata meet in a LAU, .data and .bss too
    EXPECT_EQ(Sections(*words.m_Image), ".text T 41+2, .rodata D 43+1, segment0+0xc T 44+4, .data D 48+1, .bss B 49+2");
    EXPECT_EQ(Cells(*words.m_Image, 32, 0x40, 4), "00000000 44332211 61776655 65646362");
    EXPECT_EQ(Cells(*words.m_Image, 32, 0x48, 2), "00ccbbaa 00000000");
    EXPECT_EQ(words.m_Text, "");
    EXPECT_EQ(words.m_Image->GetEntryPoint(), 0x41U);
    const ObjectFile::CSymbolTable& symbols = *words.m_Image->GetSymbolTable(0);
    const auto place = [&](const char* name) {
        const ObjectFile::CSymbol* symbol = symbols.FindSymbol(name);
        return symbol->GetSection()->GetName() + "+" + std::to_string(symbol->GetMemoryAddress());
    };
    EXPECT_EQ(place("start"), ".text+0");
    EXPECT_EQ(place("twice"), ".text+1");
    EXPECT_EQ(place("table"), ".text+1"); // it begins in the LAU that .text has
    EXPECT_EQ(place("value"), ".data+0");
    EXPECT_EQ(symbols.FindSymbol("limit")->GetMemoryAddress(), 0x40U);

    CImportOptions based = Memory(64);
    based.m_Base = 0x104;
    const COutcome doubles = Import(elf, based);
    EXPECT_EQ(Cells(*doubles.m_Image, 64, 0, 2), "6177665544332211 0000000065646362");
    EXPECT_EQ(Cells(*Import(ReadFile(DATA + "big32.elf"), based).m_Image, 64, 0, 1), "1122334455667700");
}

TEST(Import, ZerosGiveWayToContents) {
    constexpr auto BSS = ObjectFile::CSection::TYPE_BSS;
    CProgram program;
    auto pool = std::make_unique<CBytePool>();
    program.Add(*pool, 0x10, "abcd");
    program.Add(*pool, 0x20, "efgh");
    program.m_Source = std::move(pool);
    program.m_Extents.push_back({0x12, 0, 8}); // a segment of zeros alone
    program.m_Sections = {{".bss", BSS, 0x12, 40, 0},
                          {".text", ObjectFile::CSection::TYPE_TEXT, 0x10, 4, 1},
                          {".data", ObjectFile::CSection::TYPE_DATA, 0x20, 4, 2},
                          {".zeros", BSS, 0x1c, 8, 3}};
    std::string warnings;
    program.Arrange([&](const std::string& text) { warnings += text + "\n"; });
    EXPECT_EQ(
        warnings,
        "the zeros of section '.bss' (bytes 0x12 to 0x39) overlap section '.text' (bytes 0x10 to 0x13) and are left "
        "out\nthe zeros of section '.zeros' (bytes 0x1c to 0x23) overlap section '.data' (bytes 0x20 to 0x23) and "
        "are left out\n");
    ASSERT_EQ(program.m_Sections.size(), 2U);
    std::string bytes(19, '?');
    program.Read(0x12, bytes.data(), bytes.size());
    EXPECT_EQ(bytes, std::string("cd") + std::string(12, '\0') + "efgh" + '\0');
}

/// The little-endian file of 64 bits with a number in place of that at the offset.
std::string Patched(std::size_t offset, std::uint64_t value, std::size_t bytes = 8) {
    std::string elf = ReadFile(DATA + "little64.elf");
    for (std::size_t i = 0; i < bytes; ++i) {
        elf.at(offset + i) = static_cast<char>(static_cast<unsigned char>(value >> (8 * i)));
    }
    return elf;
}

TEST(Import, ErrorsNameWhatIsWrong) {
    const CImportOptions none;
    CImportOptions based = Memory(32);
    based.m_Base = 0x108;
    const CImportOptions words = Memory(32);
    constexpr std::size_t TYPE = 16, P_PADDR = 64 + 24, P_FILESZ = 64 + 32, P_MEMSZ = 64 + 40;
    const std::vector<std::tuple<std::string, CImportOptions, std::string>> cases = {
        {"", none, "the file is empty"},
        {" \n", none, "there is nothing to load in it"},
        {"\x7f"
         "ELF",
         none, "the ELF header is damaged or cut off"},
        {Patched(TYPE, 1, 2), none, "a relocatable file: its sections have no addresses before it is linked"},
        {Patched(TYPE, 4, 2), none, "not an executable, but an ELF file of type 4"},
        {Patched(TYPE, 3, 2), none,
         "a position-independent program, taken at the addresses in the file; nothing relocates it\n"},
        {Patched(P_FILESZ, 0x4000000000), none,
         "segment 0 claims 0x4000000000 bytes from offset 0x78 on, but the file has 0x3b8"},
        {Patched(P_MEMSZ, 0x1000000000), none,
         "section 'segment0+0x28' (bytes 0x12c to 0x1000000103) reaches LAU 0x1000000103, but the addresses of a "
         "memory "
         "end at 0xffffffff (--base is subtracted from the program's)"},
        {Patched(P_MEMSZ, 0x90000000), none,
         "section 'segment0+0x28' (bytes 0x12c to 0x90000103) has 2415919064 LAUs, but a section of an image has at "
         "most 2147483647"},
        {Patched(P_MEMSZ, 3), none,
         "segment 0 has 0x1f bytes in the file, but 0x3 in memory; all of those in the file are taken\n"
         "the section '.bss' is in no loadable segment and is left out\n"},
        {Patched(P_PADDR, ~std::uint64_t{0} - 8), none,
         "the section '.text' at 0xfffffffffffffff7 has 0x7 bytes, which is beyond all addresses"},
        {ReadFile(DATA + "little64.elf"), based, "section '.text' (bytes 0x104 to 0x10a) begins below the base, 0x108"},
        {"12", Memory(12, BO_BIG, eFormat::BINARY), "bytes form LAUs of a multiple of 8 bits, not of 12 bits"},
        {"@4 1 2 @5 3", words, "words 0x4 to 0x5 and words 0x5 to 0x5 overlap"},
        {"@100000000 1", words,
         "words 0x100000000 to 0x100000000 reaches LAU 0x100000000, but the addresses of a memory end at 0xffffffff "
         "(--base is subtracted from the program's)"},
        {"1\n123456789", words, "line 2: a word of more than the 8 digits of a LAU of 32 bits"},
        {"1\n\n3ff", Memory(9), "line 3: a word of more than 9 bits"},
        {"@1x 0", words, "line 1: @ must be followed by an address of 1 to 12 hexadecimal digits"},
        {"@ 1", words, "line 1: @ must be followed by an address, without a blank"},
        {"1 \n/* 2", words, "line 2: a comment without end"},
        {"1g", Memory(8, BO_BIG, eFormat::READMEMH), "line 1: 'g' is no hexadecimal digit"},
        {":0100000001FE\n:0100000002FE\n", none, "line 2: checksum mismatch (01 != 00)"},
        {":0100000001FE\n", none, "line 2: no end-of-file record\n"},
        {":0100000001FE\n:00000001FF\n:0100010001FD\n", none,
         "line 3: a record after the end record; join such files with a tool that knows the format"},
        {"S1040000AA52\n", none, "line 1: checksum mismatch (00 != FF)"},
        {"S1040000AA51\nX1040001AA50\n", none, "line 2: this line is no record"},
    };
    for (const auto& [contents, options, expected] : cases) {
        EXPECT_EQ(Import(contents, options).m_Text, expected) << contents.substr(0, 20);
    }
    // A byte at either end of the addresses costs what two bytes cost.
    const COutcome far = Import(":0100000001FE\n:02000004FFFFFC\n:01FFFF0002FF\n:00000001FF\n", words);
    EXPECT_EQ(Sections(*far.m_Image), "block0 D 0+1, block1 D 3fffffff+1");
}

TEST(Import, FormatsAreRecognisedByContent) {
    const auto recognise = [](const std::string& contents) -> std::string {
        const CTestFile file(contents);
        try {
            const eFormat format = RecogniseFormat(file.Path());
            return format == eFormat::OBJECT ? "object" : FormatRow(format).m_Name;
        } catch (const std::runtime_error& error) {
            return std::string(error.what()).substr(0, 40);
        }
    };
    EXPECT_EQ(recognise("\x7f"
                        "ELF..."),
              "elf");
    EXPECT_EQ(recognise("AgT62kG9y7\n"), "object");
    EXPECT_EQ(recognise("; by hand\r\n:0100000001FE\r\n"), "ihex");
    EXPECT_EQ(recognise("S1040000AA51"), "srec");
    EXPECT_EQ(recognise("// :0100000001FE\n@0 /* S1040000AA51 */ de_ad xZ?"), "readmemh");
    EXPECT_EQ(recognise(":0100000001FE\nS1040000AA51\n"), "the file has lines of both Intel HEX and");
    EXPECT_EQ(recognise("Some text"), "the file's contents show no known format");
    EXPECT_EQ(recognise(std::string("12\0", 3)), "the file's contents show no known format");
}

TEST(Import, EveryCutAndEveryFlippedByte) {
    const long before = PeakMemory();
    int imported = 0;
    int refused = 0;
    const auto attempt = [&](const std::string& contents, const CImportOptions& options) {
        const COutcome outcome = Import(contents, options); // any other kind of error ends the test
        ASSERT_TRUE(outcome.m_Image != nullptr || !outcome.m_Text.empty());
        ++(outcome.m_Image != nullptr ? imported : refused);
    };
    for (const auto& entry : std::filesystem::directory_iterator(DATA)) {
        SCOPED_TRACE(entry.path().string());
        const std::string good = ReadFile(entry.path().string());
        CImportOptions options = Memory(32);
        { // damage at the beginning must not turn it into another format
            const CTestFile file(good);
            options.m_Format = RecogniseFormat(file.Path());
        }
        options.m_Width = options.m_Format == eFormat::READMEMH ? 8 : 32;
        for (std::size_t i = 0; i < good.size(); ++i) {
            attempt(good.substr(0, i), options);
            for (const char flip : {'\x01', '\x10', '\x7F', '\x80'}) {
                std::string bad = good;
                bad[i] = static_cast<char>(bad[i] ^ flip);
                attempt(bad, options);
            }
        }
    }
    EXPECT_GT(imported, 1000);
    EXPECT_GT(refused, 1000);
    EXPECT_LT(PeakMemory() - before, CLAIM_LIMIT);
}

} // namespace
