// The formats by their names and contents.
#include "tools/import/format.h"

#include <algorithm>
#include <stdexcept>

#include "objectfile/objectfile.h"
#include "tools/import/bytesource.h"

namespace marlune::tool {
namespace {

constexpr std::size_t MOST_LOOKED_AT = std::size_t{1} << 16; // bytes
constexpr std::string_view ELF_MAGIC = "\177ELF";
constexpr std::string_view HEX_DIGITS = "0123456789abcdefABCDEF";
constexpr std::string_view READMEMH_CHARACTERS = "0123456789abcdefABCDEFxXzZ?_@ \t\r\n\v\f";

#ifdef MARLUNE_WITH_LIBELF
constexpr CReader* READ_ELF = ReadElf;
#else
constexpr CReader* READ_ELF = nullptr;
#endif
#ifdef MARLUNE_WITH_LIBSRECORD
constexpr CReader* READ_INTEL_HEX = ReadIntelHex;
constexpr CReader* READ_S_RECORDS = ReadSRecords;
#else
constexpr CReader* READ_INTEL_HEX = nullptr;
constexpr CReader* READ_S_RECORDS = nullptr;
#endif

std::string Beginning(const std::string& path) {
    const CFileSource file(path);
    std::string bytes(static_cast<std::size_t>(std::min<std::uint64_t>(file.Size(), MOST_LOOKED_AT)), '\0');
    file.Read(0, bytes.data(), bytes.size());
    return bytes;
}

bool BeginsWith(std::string_view text, std::string_view beginning) {
    return text.substr(0, beginning.size()) == beginning;
}

/// Does a line of the text begin with the character and then at least `digits` hexadecimal digits?
bool HasRecord(std::string_view text, char begin, std::size_t digits) {
    for (std::size_t line = 0; line < text.size(); line = std::min(text.find('\n', line), text.size() - 1) + 1) {
        const std::size_t end = std::min(text.find_first_not_of(HEX_DIGITS, line + 1), text.size());
        if (text[line] == begin && end >= line + 1 + digits) {
            return true;
        }
    }
    return false;
}

std::string WithoutComments(std::string_view text) {
    std::string rest;
    while (!text.empty()) {
        const std::size_t comment = std::min(text.find('/'), text.size());
        rest += text.substr(0, comment);
        text.remove_prefix(comment);
        if (BeginsWith(text, "//")) {
            text.remove_prefix(std::min(text.find('\n'), text.size()));
        } else if (BeginsWith(text, "/*")) {
            text.remove_prefix(std::min(text.find("*/", 2), text.size() - 2) + 2);
        } else if (!text.empty()) {
            return "/";
        }
    }
    return rest;
}

[[noreturn]] void ThrowNotRecognised(const std::string& what) {
    std::string formats;
    for (const CFormat& format : Formats()) {
        formats += std::string(formats.empty() ? "" : ", ") + "--from " + format.m_Name + " (" + format.m_Title + ")";
    }
    throw std::runtime_error(what + "; a text object file begins with " + ObjectFile::VEXON_OBJECT_MAGIC +
                             ", for others give the format: " + formats);
}

} // namespace

const std::vector<CFormat>& Formats() {
    static const std::vector<CFormat> FORMATS{
        {eFormat::ELF, "elf", "ELF file", READ_ELF, "libelf"},
        {eFormat::IHEX, "ihex", "Intel HEX file", READ_INTEL_HEX, "libsrecord"},
        {eFormat::SREC, "srec", "Motorola S-record file", READ_S_RECORDS, "libsrecord"},
        {eFormat::READMEMH, "readmemh", "$readmemh text", ReadReadMemH, ""},
        {eFormat::BINARY, "binary", "raw bytes", ReadBinary, ""}};
    return FORMATS;
}

const CFormat& FormatRow(eFormat format) {
    return *std::find_if(Formats().begin(), Formats().end(),
                         [format](const CFormat& row) { return row.m_Format == format; });
}

std::string FormatNames(bool available) {
    std::string names;
    for (const CFormat& format : Formats()) {
        if ((format.m_Read != nullptr) == available) {
            names += (names.empty() ? "" : ", ") + std::string(format.m_Name);
        }
    }
    return names;
}

eFormat RecogniseFormat(const std::string& path) {
    const std::string text = Beginning(path);
    if (text.empty()) {
        throw std::runtime_error("the file is empty");
    }
    if (BeginsWith(text, ELF_MAGIC)) {
        return eFormat::ELF;
    }
    if (BeginsWith(text, ObjectFile::VEXON_OBJECT_MAGIC)) {
        return eFormat::OBJECT;
    }
    const bool isIntel = HasRecord(text, ':', 8);
    const bool isMotorola = HasRecord(text, 'S', 5);
    if (isIntel && isMotorola) {
        ThrowNotRecognised("the file has lines of both Intel HEX and S-records");
    }
    if (isIntel || isMotorola) {
        return isIntel ? eFormat::IHEX : eFormat::SREC;
    }
    if (WithoutComments(text).find_first_not_of(READMEMH_CHARACTERS) == std::string::npos) {
        return eFormat::READMEMH;
    }
    ThrowNotRecognised("the file's contents show no known format");
}

unsigned ElfMachine(const std::string& path) {
    constexpr std::size_t DATA_ENCODING = 5;
    constexpr std::size_t MACHINE = 18;
    constexpr char BIG = 2;
    const std::string bytes = Beginning(path);
    if (!BeginsWith(bytes, ELF_MAGIC) || bytes.size() < MACHINE + 2) {
        return 0;
    }
    const auto first = static_cast<unsigned char>(bytes[MACHINE]);
    const auto second = static_cast<unsigned char>(bytes[MACHINE + 1]);
    return bytes[DATA_ENCODING] == BIG ? first * 256U + second : second * 256U + first;
}

} // namespace marlune::tool
