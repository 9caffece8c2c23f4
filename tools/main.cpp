// marlune-image: inspects, checks, converts, dumps and draws program image files.
#include <array>
#include <iostream>
#include <limits>
#include <map>
#include <new>
#include <stdexcept>

#include <CLI/CLI.hpp>

#include "tools/cellwriter.h"
#include "tools/commands.h"
#include "tools/image.h"
#include "tools/import/format.h"
#include "tools/table.h"
#include "tools/text.h"

namespace marlune::tool {
namespace {

const CLI::Range POSITIVE(std::uint32_t{1}, std::numeric_limits<std::uint32_t>::max());

/// An option whose value is one of a few names.
template <typename TValue>
CLI::Option* AddChoice(CLI::App& app, const std::string& name, std::optional<TValue>& value, const std::string& text,
                       const std::map<std::string, TValue>& values) {
    return app
        .add_option_function<std::string>(
            name, [&value, values](const std::string& given) { value = values.at(given); }, text)
        ->check(CLI::IsMember(values));
}

std::map<std::string, eFormat> FormatsByName() {
    std::map<std::string, eFormat> formats;
    for (const CFormat& format : Formats()) {
        formats[format.m_Name] = format.m_Format;
    }
    return formats;
}

/// For the help of a build that lacks a library.
std::string FormatsLeftOut() {
    const std::string names = FormatNames(false);
    return names.empty() ? "" : "Left out of this build, which lacks the libraries for them: --from " + names;
}

/// The options for a program of another toolchain, which every command accepts.
void AddImport(CLI::App& app, COptions& options) {
    constexpr const char* GROUP = "Programs of other toolchains";
    app.add_option("--space", options.m_Space, "address space that the memory loads")->type_name("NAME");
    app.add_option("--width", options.m_Width, "bits of one LAU of the memory")
        ->type_name("BITS")
        ->check(CLI::Range(1, 1024).description(""));
    AddChoice(app, "--from", options.m_Format, "the format; recognised by content if not given", FormatsByName())
        ->group(GROUP);
    app.add_option("--base", options.m_Base, "address in the file that becomes 0")->type_name("ADDRESS")->group(GROUP);
    AddChoice(app, "--endian", options.m_Order, "in which order bytes form a LAU; the file's own, or little",
              {{"little", ObjectFile::BO_LITTLE}, {"big", ObjectFile::BO_BIG}})
        ->group(GROUP);
    app.add_option("--entry", options.m_Entry, "entry point; the file's own if not given")
        ->type_name("ADDRESS")
        ->group(GROUP);
}

void AddJson(CLI::App& app, COptions& options) {
    app.add_flag("--json", options.m_Json, "print JSON for scripts");
}

void AddConvert(CLI::App& app, COptions& options) {
    app.add_option("OUT", options.m_Output, "text object file to write")->required();
}

void AddDump(CLI::App& app, COptions& options) {
    app.get_option("--space")->required();
    app.get_option("--width")->required();
    foreign::CLoadWindow& window = options.m_Window;
    app.add_option("--size", options.m_Size, "cells of the memory")->required()->check(POSITIVE);
    app.add_option("--cell-base", window.m_CellBase, "LAU offset of the memory (0)");
    app.add_option("--low", window.m_LowAddress, "first LAU address taken (0)");
    app.add_option("--high", window.m_HighAddress, "last LAU address taken (0xffffffff)");
    app.add_option("--phase", window.m_Phase, "first LAU taken of each group (0)");
    app.add_option("--stride", window.m_Stride, "LAUs of a group, of which one is taken (1)")->check(POSITIVE);
    app.add_option("--format", options.m_CellFormat, "hex (for people), bin (bytes), readmemh, ihex or srec")
        ->check(CLI::IsMember(CellFormats()));
    app.add_flag("--all", options.m_All, "every cell of the memory, not only those loaded into");
    app.add_option("-o,--output", options.m_Output, "file to write instead of standard output");
}

void AddMap(CLI::App& app, COptions& options) {
    AddJson(app, options);
    app.add_option("--svg", options.m_Svg, "also draw it into this SVG file");
}

/// What --space and --width say.
enum eMemory {
    LOOKED_AT, // how to show a program of another toolchain
    LOADED,    // which memory loads the image, whatever its kind
    DUMPED,    // the same, and --endian says how its cells are written
    WRITTEN    // for which memory a program of another toolchain is converted: they must be given
};

struct CCommand {
    const char* m_Name;
    const char* m_Text;
    eMemory m_Memory;
    int (*m_Run)(const COptions& options);
    void (*m_AddOptions)(CLI::App& app, COptions& options);
};
constexpr std::array<CCommand, 7> COMMANDS{
    {{"info", "kind, memory organization, entry point, sections and counts", LOOKED_AT, RunInfo, AddJson},
     {"symbols", "the symbols", LOOKED_AT, RunSymbols, AddJson},
     {"lines", "the assembly line table", LOOKED_AT, RunLines, AddJson},
     {"check", "what is wrong with an image, and what a load leaves out", LOADED, RunCheck, AddJson},
     {"convert", "write an image as text object file", WRITTEN, RunConvert, AddConvert},
     {"dump", "the cells of a memory after a load of the image", DUMPED, RunDump, AddDump},
     {"map", "a picture of each address space", LOOKED_AT, RunMap, AddMap}}};

/// A script that asked for JSON also gets the reason for a failure as JSON.
int RunCommand(const CCommand& command, const COptions& options) {
    try {
        return command.m_Run(options);
    } catch (const CImageError& error) {
        if (options.m_Json) {
            const CJson line = error.m_Line ? CJson(*error.m_Line) : CJson();
            PrintJson({{"file", options.m_File}, {"error", {{"line", line}, {"text", error.m_Text}}}});
        }
        throw;
    }
}

int Run(int argc, char** argv) {
    CLI::App app("Looks into program image files of the marlune memory models.", "marlune-image");
    app.set_version_flag("--version", "marlune-image " MARLUNE_VERSION);
    app.require_subcommand(1);
    app.footer(FormatsLeftOut());
    COptions options;
    const CCommand* chosen = nullptr;
    for (const CCommand& command : COMMANDS) {
        CLI::App* sub = app.add_subcommand(command.m_Name, command.m_Text);
        sub->add_option("FILE", options.m_File, "image: text object file, ELF file, or a program in another format")
            ->required();
        AddImport(*sub, options);
        command.m_AddOptions(*sub, options);
        sub->footer(FormatsLeftOut());
        sub->callback([&] {
            chosen = &command;
            options.m_NamesMemory = command.m_Memory == LOADED || command.m_Memory == DUMPED;
            options.m_WritesBytes = command.m_Memory == DUMPED;
            options.m_RequiresMemory = command.m_Memory == WRITTEN;
        });
    }
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? STATUS_OK : STATUS_USAGE;
    }
    const int status = RunCommand(*chosen, options);
    if (!std::cout.flush()) {
        throw std::runtime_error("cannot write standard output");
    }
    return status;
}

} // namespace
} // namespace marlune::tool

int main(int argc, char** argv) {
    try {
        return marlune::tool::Run(argc, argv);
    } catch (const std::bad_alloc&) {
        std::cerr << "marlune-image: there is not enough memory\n";
    } catch (const std::exception& error) {
        std::cerr << "marlune-image: " << marlune::tool::Printable(error.what()) << '\n';
    }
    return marlune::tool::STATUS_BAD;
}
