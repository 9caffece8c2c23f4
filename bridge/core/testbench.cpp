// Finds memories by their paths, and loads, reads, writes and dumps them.
#include "bridge/core/testbench.h"

#include <cstdio>
#include <memory>

#include <dlfcn.h>
#include <strings.h>

#include "bridge/core/failure.h"
#include "bridge/core/simulation.h"
#include "src/flimemory/direct.h"
#include "src/flimemory/flimemory.h"
#include "src/flimemory/parameters.h"
#include "src/flimemory/projectname.h"

namespace marlune::bridge {

namespace {

/// The name that a path has in the memory library, if it has one.
std::string NameOf(std::string path) {
    constexpr const char* SEPARATORS = "/:.";
    path.erase(0, path.find_first_not_of(SEPARATORS));
    path.erase(path.find_last_not_of(SEPARATORS) + 1);
    return FixProjectName(path);
}

/// Makes errors name the instance of the path while it exists.
class CAccess {
public:
    explicit CAccess(const std::string& path)
        : m_Current(FindInstance(path)), m_Name(g_Current != nullptr ? g_Current->m_Name : NameOf(path)) {}

    /// By which the memory library knows the memory.
    const std::string& GetName() const { return m_Name; }

private:
    CCurrentInstance m_Current;
    std::string m_Name;
};

/// The memory library's function. A call by its name would reach the wrapper in systemverilog.cpp.
decltype(marlune_dpi_memory_init)* LibraryLoad() {
    Dl_info library{};
    void* handle = dladdr(reinterpret_cast<void*>(&marlune_fli_memory_init), &library) != 0
                       ? dlopen(library.dli_fname, RTLD_LAZY | RTLD_NOLOAD)
                       : nullptr;
    void* function = handle != nullptr ? dlsym(handle, "marlune_dpi_memory_init") : nullptr;
    if (function == nullptr) {
        Fail("", "Cannot find the memory library's functions.");
    }
    return reinterpret_cast<decltype(marlune_dpi_memory_init)*>(function);
}

/// The file of a dump. An error ends the simulation.
class CDumpFile {
public:
    CDumpFile(const std::string& name, std::uint32_t width)
        : m_Name(name), m_Width(width), m_File(std::fopen(name.c_str(), "w")) {
        if (m_File == nullptr) {
            FailToWrite();
        }
    }

    void WriteCell(std::uint32_t address, const std::uint32_t* limbs) {
        constexpr std::uint32_t LIMB_BITS = 32;
        constexpr std::uint32_t LIMBS = 32;
        constexpr std::uint32_t DIGIT_BITS = 4;
        std::uint32_t used = LIMBS; // a port may have stored more bits than a LAU has
        while (used * LIMB_BITS > m_Width && limbs[used - 1] == 0 && used > 1) {
            --used;
        }
        const std::uint32_t digits = (m_Width + DIGIT_BITS - 1) / DIGIT_BITS;
        const std::uint32_t digitsPerLimb = LIMB_BITS / DIGIT_BITS;
        const std::uint32_t leading = digits > (used - 1) * digitsPerLimb ? digits - (used - 1) * digitsPerLimb : 1;
        std::fprintf(m_File, "@%08x %0*x", address, static_cast<int>(leading), limbs[used - 1]);
        for (std::uint32_t limb = used - 1; limb > 0; --limb) {
            std::fprintf(m_File, "%08x", limbs[limb - 1]);
        }
        std::fputc('\n', m_File);
    }

    void Close() {
        const bool hasFailed = std::ferror(m_File) != 0;
        if (std::fclose(m_File) != 0 || hasFailed) {
            FailToWrite();
        }
    }

private:
    [[noreturn]] void FailToWrite() { Fail(GetCurrentPath(), "File '" + m_Name + "' could not be written."); }

    const std::string& m_Name;
    std::uint32_t m_Width; // bits of a LAU
    std::FILE* m_File;
};

} // namespace

mtiRegionIdT FindInstance(const std::string& path) {
    const std::string name = NameOf(path);
    mtiRegionIdT found = GetSimulation().GetInstance(name);
    if (found != nullptr) {
        return found;
    }
    int count = 0;
    for (mtiRegionIdTag& region : GetSimulation().GetInstances()) {
        if (strcasecmp(region.m_Name.c_str(), name.c_str()) == 0) {
            found = &region;
            ++count;
        }
    }
    return count == 1 ? found : nullptr;
}

void LoadByName(const char* name, const char* file, const char* addressSpace, std::uint32_t cellBase,
                std::uint32_t lowAddress, std::uint32_t highAddress, std::uint32_t phase, std::uint32_t stride) {
    static auto* const load = LibraryLoad();
    load(name, file, addressSpace, cellBase, lowAddress, highAddress, phase, stride);
    if (const char* warning = marlune_direct_load_warning()) {
        PrintWarning(GetCurrentPath(), warning);
    }
}

void Load(const std::string& path, const std::string& file, const std::string& addressSpace, std::uint32_t base,
          std::uint32_t bank, std::uint32_t banks) {
    constexpr std::uint32_t LAST_ADDRESS = 0xFFFFFFFF;
    const CAccess access(path);
    if (banks > 0 && bank >= banks) { // the library refuses 0 banks
        Fail(GetCurrentPath(), "There is no bank " + std::to_string(bank) + " of " + std::to_string(banks) + ".");
    }
    const std::string memory = access.GetName() + "_RAM"; // which the library cuts off
    LoadByName(memory.c_str(), file.c_str(), addressSpace.c_str(), 0, base, LAST_ADDRESS, bank, banks);
}

void Poke(const std::string& path, std::uint32_t address, const CCellValue& value) {
    const CAccess access(path);
    marlune_dpi_memory_write(access.GetName().c_str(), address, value.data());
}

CCellValue Peek(const std::string& path, std::uint32_t address) {
    const CAccess access(path);
    CCellValue value{};
    marlune_dpi_memory_read(access.GetName().c_str(), address, value.data());
    return value;
}

void Dump(const std::string& path, const std::string& file, std::uint32_t first, std::uint32_t last) {
    const CAccess access(path);
    const std::uint32_t width =
        g_Current != nullptr ? foreign::fli::ParseParameters(g_Current->m_Parameters).m_ByteBitWidth : 1;
    CDumpFile dump(file, width);
    const auto visit = [](void* context, std::uint32_t address, const std::uint32_t* limbs) {
        static_cast<CDumpFile*>(context)->WriteCell(address, limbs);
    };
    marlune_direct_visit_cells(access.GetName().c_str(), first, last, visit, &dump);
    dump.Close();
}

} // namespace marlune::bridge
