// Opens any program or image that the tool reads.
#include "tools/image.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <limits>
#include <new>
#include <system_error>

#include <unistd.h>

#include "tools/import/format.h"
#include "tools/import/importer.h"
#include "tools/progress.h"
#include "tools/text.h"

namespace marlune::tool {
namespace {

using ObjectFile::CSection;

constexpr unsigned OWN_MACHINE = 192; // of the toolchain's ELF files

std::string WithPlace(const std::string& path, std::optional<long> line, const std::string& text) {
    return Printable(path) + (line ? ":" + std::to_string(*line) : "") + ": " + text;
}

/// Messages of the ELF import end with a newline.
std::string WithoutLineEnd(std::string text) {
    text.erase(text.find_last_not_of('\n') + 1);
    return text;
}

/// The file is opened more than once, and opening a pipe could block forever.
void RequireReadableFile(const std::string& path) {
    std::error_code error;
    const std::filesystem::file_status status = std::filesystem::status(path, error);
    std::string reason;
    if (error) {
        reason = error.message();
    } else if (std::filesystem::is_directory(status)) {
        reason = "is a folder";
    } else if (!std::filesystem::is_regular_file(status)) {
        reason = "is not a regular file; store a pipe's contents in a file first";
    } else if (access(path.c_str(), R_OK) != 0) {
        reason = std::generic_category().message(errno);
    }
    if (!reason.empty()) {
        throw CImageError(path, std::nullopt, reason);
    }
}

/// The text of line `number` (counted from 1), for a message; nothing after the end of the file.
std::string Quoted(const std::string& path, long number) {
    constexpr std::size_t MOST = 60;
    std::ifstream file(path);
    for (long line = 1; line < number && file; ++line) {
        file.ignore(std::numeric_limits<std::streamsize>::max(), '\n');
    }
    std::array<char, MOST + 1> text{};
    file.getline(text.data(), text.size());
    return file.eof() && text[0] == '\0' ? "" : ", it reads: " + Printable(text.data());
}

void LoadText(const std::string& path, ObjectFile::CObjectFile& image) {
    ObjectFile::CInputStream in(path, '\n');
    const auto failure = image.ReadFromStream(in);
    if (failure && failure->m_Line) {
        const long line = *failure->m_Line + 1L;
        throw CImageError(path, line, failure->m_Reason + Quoted(path, line));
    }
    if (failure) {
        throw CImageError(path, std::nullopt, failure->m_Reason + " (no line can be named)");
    }
}

eFormat FormatOf(const COptions& options) {
    return options.m_Format ? *options.m_Format : RecogniseFormat(options.m_File);
}

/// Is it a file that a simulator loads as it is? An ELF file of the toolchain's machine is imported if the user asks
/// for that, or gives the address space for it.
bool IsOwn(const COptions& options, eFormat format) {
    const bool namesSpace = options.m_Space && !options.m_NamesMemory;
    return format == eFormat::OBJECT ||
           (format == eFormat::ELF && !options.m_Format && !namesSpace && ElfMachine(options.m_File) == OWN_MACHINE);
}

void RequireNoImportOptions(const COptions& options) {
    const std::array<std::pair<bool, const char*>, 5> given{{{options.m_Space && !options.m_NamesMemory, "--space"},
                                                             {options.m_Width && !options.m_NamesMemory, "--width"},
                                                             {options.m_Base.has_value(), "--base"},
                                                             {options.m_Entry.has_value(), "--entry"},
                                                             {options.m_Order && !options.m_WritesBytes, "--endian"}}};
    for (const auto& [isGiven, name] : given) {
        if (isGiven) {
            throw std::runtime_error(std::string(name) +
                                     " is for programs of other toolchains; this is a file of the " +
                                     "library's own, which says it itself");
        }
    }
}

/// A conversion must say which memory it is for; to look at a file, bytes will do.
void RequireMemory(const COptions& options, eFormat format) {
    if (options.m_RequiresMemory && !(options.m_Space && options.m_Width)) {
        throw std::runtime_error("the file (" + std::string(FormatRow(format).m_Title) +
                                 ") does not say which memory it is for: give --space NAME and --width BITS");
    }
}

} // namespace

CImageError::CImageError(const std::string& path, std::optional<long> line, const std::string& text)
    : std::runtime_error(WithPlace(path, line, text)), m_Line(line), m_Text(text) {}

void Warn(const std::string& path, const std::string& text) {
    std::cerr << "marlune-image: warning: " << Printable(path) << ": " << text << '\n';
}

std::unique_ptr<ObjectFile::CObjectFile> LoadImage(const COptions& options, const CWarn& warn) {
    const std::string& path = options.m_File;
    RequireReadableFile(path);
    const CProgress progress("reading " + path, CProgress::READING, FileSize(path));
    try {
        const eFormat format = FormatOf(options);
        if (!IsOwn(options, format)) {
            RequireMemory(options, format);
            return ImportProgram(
                path, format, options, warn ? warn : [&](const std::string& text) { Warn(path, text); });
        }
        RequireNoImportOptions(options);
        auto image = std::make_unique<ObjectFile::CObjectFile>();
        if (format == eFormat::ELF) {
            image->LoadFile(path);
        } else {
            image->SetFileName(path);
            LoadText(path, *image);
        }
        return image;
    } catch (const CImageError&) {
        throw;
    } catch (const CReadError& error) {
        throw CImageError(path, error.m_Line > 0 ? std::optional<long>(error.m_Line) : std::nullopt, error.what());
    } catch (const std::bad_alloc&) {
        throw CImageError(path, std::nullopt, "there is not enough memory for it");
    } catch (const std::exception& error) {
        throw CImageError(path, std::nullopt, WithoutLineEnd(error.what()));
    }
}

bool IsImported(const COptions& options) {
    return !IsOwn(options, FormatOf(options));
}

std::string KindOfImage(const COptions& options) {
    try {
        const eFormat format = FormatOf(options);
        if (format == eFormat::OBJECT) {
            return "text object file";
        }
        const bool isForeignElf = format == eFormat::ELF && !IsOwn(options, format);
        return FormatRow(format).m_Title +
               (isForeignElf ? " of machine " + std::to_string(ElfMachine(options.m_File)) : std::string());
    } catch (const std::exception& error) {
        throw CImageError(options.m_File, std::nullopt, error.what());
    }
}

std::uint64_t FileSize(const std::string& path) {
    std::error_code error;
    const std::uintmax_t size = std::filesystem::file_size(path, error);
    return error ? 0 : size;
}

std::string TypeName(CSection::eType type) {
    static const std::array<const char*, 6> NAMES{"none", "text", "data", "bss", "debug", "info"};
    return NAMES.at(static_cast<std::size_t>(type));
}

std::uint64_t LauBits(const CSection& section) {
    const int bytes = section.GetBytesPerWord();
    return bytes > 0 && section.GetWordBitSize() > 0 ? static_cast<std::uint64_t>(section.GetWordBitSize() / bytes) : 0;
}

std::uint64_t LauCount(const CSection& section) {
    return static_cast<std::uint64_t>(std::max(section.GetSectionDataByteCount(), 0));
}

std::string ReasonLeftOut(const CSection& section) {
    if (section.GetType() == CSection::TYPE_DEBUG || section.GetType() == CSection::TYPE_INFO) {
        return TypeName(section.GetType()) + " section";
    }
    if (section.IsStack(false)) {
        return "stack section";
    }
    return section.IsHeap(false) ? "heap section" : "";
}

} // namespace marlune::tool
