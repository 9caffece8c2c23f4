#include "bridge/core/testbench.h"

#include <strings.h>

#include "bridge/core/simulation.h"
#include "src/flimemory/flimemory.h"
#include "src/flimemory/projectname.h"

namespace marlune::bridge {

namespace {

/// Makes errors name the instance of the path while it exists, and gives the name by which the memory library knows it.
class CAccess {
public:
    explicit CAccess(const std::string& path) : m_Name(NameOf(path)) {
        for (mtiRegionIdTag& region : GetSimulation().GetInstances()) {
            const std::string known = FixProjectName(region.m_Path);
            if (known == m_Name || (g_Current == nullptr && strcasecmp(known.c_str(), m_Name.c_str()) == 0)) {
                g_Current = &region;
            }
        }
        if (g_Current != nullptr) {
            m_Name = FixProjectName(g_Current->m_Path);
        }
    }
    ~CAccess() { g_Current = nullptr; }
    CAccess(const CAccess&) = delete;
    CAccess& operator=(const CAccess&) = delete;

    const std::string& GetName() const { return m_Name; }

private:
    static std::string NameOf(std::string path) {
        constexpr const char* SEPARATORS = "/:.";
        path.erase(0, path.find_first_not_of(SEPARATORS));
        path.erase(path.find_last_not_of(SEPARATORS) + 1);
        return FixProjectName(path);
    }

    std::string m_Name;
};

} // namespace

void Load(const std::string& path, const std::string& file, const std::string& addressSpace, std::uint32_t base,
          std::uint32_t bank, std::uint32_t banks) {
    constexpr std::uint32_t LAST_ADDRESS = 0xFFFFFFFF;
    const CAccess access(path);
    const std::string memory = access.GetName() + "_RAM"; // which the library cuts off
    marlune_dpi_memory_init(memory.c_str(), file.c_str(), addressSpace.c_str(), 0, base, LAST_ADDRESS, bank, banks);
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

} // namespace marlune::bridge
