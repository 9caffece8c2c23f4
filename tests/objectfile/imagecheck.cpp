// Checks that any image must pass.
#include "tests/objectfile/imagecheck.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <new>
#include <sstream>
#include <stdexcept>
#include <typeinfo>

#include "elftovexon/elftovexon.h"
#include "general_error"
#include "objectfile/elfimport.h"
#include "objectfile/objectfile.h"
#include "objectfile/objectfileutils.h"
#include "tests/flimemory/loadmodel.h"

using namespace ObjectFile;

namespace {

constexpr int MAX_LAU_BITS = 1024; // of a memory
constexpr int MOST_RECORDS = 20;   // of a kind that are looked at

/// The message of the error in which the action ends, empty without one. A lack of memory is never allowed.
template <typename TAction>
std::string ErrorOf(TAction action) {
    try {
        action();
    } catch (const std::bad_alloc&) {
        throw;
    } catch (const std::exception& error) {
        return error.what();
    }
    return "";
}

/// False after a documented error; any other passes.
bool Load(CObjectFile& image, const std::string& path) {
    try {
        image.LoadFile(path);
        return true;
    } catch (const CMessageError&) {
    } catch (const marlune::exceptions::CGeneralError&) {
    } catch (const std::exception& error) { // any error in a text file; a relocation section with a short name
        if (typeid(error) != typeid(std::exception) && std::string(error.what()).find("substr") == std::string::npos) {
            throw;
        }
    }
    return false;
}

/// What the image is saved as, but for the time.
std::string Text(CObjectFile& image, const std::string& path) {
    image.SaveFile(path);
    std::ifstream file(path, std::ios::binary);
    return std::string{std::istreambuf_iterator<char>(file), {}}.erase(11, 19);
}

bool IsStorable(const CSection& section) {
    const std::string& space = section.GetAddressSpaceName();
    return !section.GetName().empty() && section.GetName().find('\n') == std::string::npos &&
           space.find_first_of(" \n") == std::string::npos && space.find("//") == std::string::npos &&
           (section.GetWordBitSize() > 0 || !section.GetMemoryOrganizationIsValid());
}

bool IsStorable(const CSymbol& symbol) {
    const CExpansionTable& expansion = symbol.GetExpansionTable();
    return !symbol.GetNameView().empty() && symbol.GetNameView().find('\n') == std::string_view::npos &&
           symbol.GetType() != CSymbol::TYPE_NONE && (expansion.Count() < 2 || !expansion.GetHeaderText().empty());
}

/// Does the text form hold all of the image?
bool IsStorable(const CObjectFile& image) {
    bool storable = true;
    for (int i = 0; i < image.SectionsCount(); ++i) {
        storable = storable && IsStorable(*image.GetSection(i));
    }
    for (int i = 0; i < image.SymbolTablesCount(); ++i) {
        const CSymbolTable& symbols = *image.GetSymbolTable(i);
        storable = storable && (symbols.Count() == 0 || image.SectionsCount() > 0); // each names the index of one
        for (int k = 0; k < symbols.Count(); ++k) {
            storable = storable && IsStorable(*symbols.GetSymbol(k));
        }
    }
    return storable;
}

/// Compares what was converted with the file, byte by byte.
std::string CheckContents(const ElfToVexon& elf, const CObjectFile& image) {
    std::string fault;
    for (int i = 0; i < std::min(image.SectionsCount(), MOST_RECORDS); ++i) {
        const CSection& section = *image.GetSection(i);
        const int index = elf.GetSectionIndexOfName(section.GetName());
        if (image.FindSection(section.GetName()) != &section ||
            !ErrorOf([&] { elf.GetIndexContentOfSection(index); }).empty()) { // relocations have names too
            continue;
        }
        const auto address = static_cast<unsigned long long>(elf.GetLoadAddress(index));
        fault += section.GetMemoryByteAddress() == address ? "" : "another address of an ELF section";
        const int bits = section.GetSectionDataByteCount() > 0 ? section.GetSectionData()->GetByteBitSize() : 0;
        const int step = bits <= 8 ? 1 : bits <= 16 ? 2 : bits <= 32 ? 4 : 8;
        for (int k = 0; k < std::min(section.GetSectionDataByteCount(), 50); ++k) {
            std::string digits(static_cast<std::size_t>(bits), '-');
            const std::string error = ErrorOf([&] { // the file may end within the last byte
                const std::string_view bytes = elf.GetVectorPieceOfSize(index, k * step, step);
                ElfToVexon::ConvertByteToVexon(reinterpret_cast<const unsigned char*>(bytes.data()), bits,
                                               section.GetByteOrder(), digits.data());
            });
            const bool same = !error.empty() || section.GetSectionData()->GetByte(k) == digits;
            fault += same ? "" : "another byte of an ELF section";
        }
    }
    return fault;
}

std::string CheckText(CObjectFile& image, const std::string& path) {
    const std::string copy = path + ".copy";
    std::string text;
    std::string error = ErrorOf([&] { text = Text(image, copy); });
    if (!error.empty()) {
        return error;
    }
    CObjectFile again;
    std::string fault;
    if (IsStorable(image)) { // but for a part of a byte at the end of an ELF file's section
        fault = Load(again, copy) && (IsElfFile(path) || Text(again, copy) == text) ? "" : "no second load";
    }
    CObjectFile used(12, 3, BO_BIG, "left"); // of which nothing may be left
    used.SetEntryPoint(1);
    used.CreateSection(CSection::TYPE_BSS, "left");
    used.CreateSymbolTable()->AddSymbol(std::make_unique<CSymbol>("left", CSymbol::TYPE_PUBLIC));
    Load(used, path);
    fault += Text(used, copy) == text ? "" : "another text after a load into a used object";
    CObjectFile direct; // past LoadFile
    if (IsElfFile(path)) {
        ElfToVexon elf(path.c_str(), &direct);
        elf.Convert();
        fault += CheckContents(elf, direct);
    } else {
        CInputStream in(path, '\n');
        direct.LoadFromStream(in);
    }
    fault +=
        Text(direct, copy) == text && IsObjectFile(path) && !IsArchive(path) ? "" : "another text without LoadFile";
    std::remove(copy.c_str());
    return fault;
}

/// The rows and names of the line table, a line for each.
std::string Lines(const CLineTable& table) {
    std::ostringstream text;
    for (const CLineInfo& row : table.GetRows()) {
        text << row.m_Address << ' ' << row.m_Line << ' ' << row.m_FileIndex << ' ' << row.m_EndOfSequence << '\n';
    }
    for (const std::string& name : table.GetFileNames()) {
        text << name << '\n';
    }
    return text.str();
}

std::string CheckLines(const CObjectFile& image) {
    CLineTable table(image);
    const bool complete = table.PopulateFromMarluneLineSection();
    const std::string lines = Lines(table);
    const CLineTable* const loaded = image.GetLineTable();
    const bool same = table.PopulateFromMarluneLineSection() == complete && Lines(table) == lines &&
                      complete == (loaded != nullptr) && (loaded == nullptr || Lines(*loaded) == lines);
    return same ? "" : "another line table the second time";
}

std::string CheckLoaded(CObjectFile& image, const std::string& path, std::mt19937& random) {
    std::string fault = CheckText(image, path);
    const std::string error = ErrorOf([&] { image.CheckLinks(); });
    fault += image.SectionsCount() == 0 || error.empty() ? "" : "the links of a loaded image: " + error;
    fault += CheckLines(image);
    for (int round = 0; image.SectionsCount() > 0 && round < 4; ++round) {
        fault += CheckLoad(image, random);
    }
    for (int i = 0; i < std::min(image.SectionsCount(), MOST_RECORDS); ++i) {
        CSection& section = *image.GetSection(i);
        fault += section.IsStack(true) && !section.IsStack(false) ? "a stack by its symbols alone" : "";
        fault += section.GetSectionData() != nullptr ? CheckBytes(*section.GetSectionData(), random) : "";
        for (int k = 0; k < std::min(section.RelocationCount(), MOST_RECORDS); ++k) {
            const long long value = static_cast<long long>(random()) * (1LL << random() % 31);
            ErrorOf([&] { section.SetRelocData(section.GetRelocation(k), k % 2 == 0 ? value : -value); });
        }
    }
    return fault;
}

} // namespace

std::string CheckBytes(const CSectionData& data, std::mt19937& random) {
    if (data.GetByteBitSize() < 1 || data.GetByteBitSize() > MAX_LAU_BITS) {
        return "";
    }
    std::array<std::uint64_t, MAX_LAU_BITS / 64> limbs{};
    std::array<std::uint64_t, 16> cells{};
    const auto size = static_cast<std::size_t>(data.GetByteBitSize());
    const auto textOf = [&](int address) {
        std::string text;
        const std::string error = ErrorOf([&] { text = data.GetByte(address); });
        return error.empty() ? text : error;
    };
    for (int i = 0; i < std::min(data.GetByteCount(), 30); ++i) {
        const int first = static_cast<int>(random() % static_cast<unsigned>(data.GetByteCount()));
        std::string bits;
        if (data.GetByteBits(first, limbs.data())) {
            std::for_each(limbs.begin(), limbs.end(), [&](auto limb) { bits.insert(0, ConvUnsignToBin(limb, 64)); });
            bits.erase(0, bits.size() - size);
        }
        const int stride = 1 + static_cast<int>(random() % 3);
        const bool reversed = random() % 2 == 0;
        const int copied = data.CopyBytes(first, stride, cells.size(), reversed, cells.data());
        bool same = (bits.empty() || bits == textOf(first)) && (size > 64 || (copied > 0) == !bits.empty());
        for (int k = 0; k < copied; ++k) {
            const std::string text = ConvUnsignToBin(cells[static_cast<std::size_t>(k)], static_cast<int>(size));
            same = same && (reversed ? ReverseEndianess(text) : text) == textOf(first + k * stride);
        }
        const int zeros = data.IsUntouchedZero(first, stride) ? stride : 0;
        for (int k = 0; k < zeros; ++k) {
            same = same && textOf(first + k) == std::string(size, '0');
        }
        if (!same) {
            return "byte " + std::to_string(first) + " as a number";
        }
    }
    return "";
}

std::string CheckImage(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    unsigned seed = 5381; // the bytes of the file decide what is random, except for the time in a text file
    file.ignore(30);
    for (char byte = 0; file.get(byte);) {
        seed = seed * 33 + static_cast<unsigned char>(byte);
    }
    std::mt19937 random(seed);
    try {
        CObjectFile image;
        const bool loaded = Load(image, path);
        const std::string fault = loaded ? CheckLoaded(image, path, random) : "";
        return !fault.empty() ? fault : loaded ? "loaded" : "error";
    } catch (const std::exception& error) {
        return std::string("an undocumented error: ") + error.what();
    }
}
