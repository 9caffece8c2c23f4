// The options of the simulator's command line that begin with "+marlune_".
#ifndef MARLUNE_BRIDGE_CORE_COMMANDLINE_H
#define MARLUNE_BRIDGE_CORE_COMMANDLINE_H

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace marlune::bridge {

/// +marlune_load=PATH,FILE[,SPACE[,BASE[,BANK/BANKS]]]
struct CLoadOption {
    std::string m_Path;
    std::string m_File;
    std::optional<std::string> m_AddressSpace; // that of the file if it has just one
    std::uint32_t m_Base = 0;                  // addresses count LAUs
    std::uint32_t m_Bank = 0;
    std::uint32_t m_Banks = 1;
    bool m_IsDone = false;
};

/// +marlune_dump=PATH,FILE[,FIRST,LAST]
struct CDumpOption {
    std::string m_Path;
    std::string m_File;
    std::uint32_t m_First = 0;
    std::uint32_t m_Last = 0xFFFFFFFF;
};

struct COptions {
    std::vector<CLoadOption> m_Loads;
    std::vector<CDumpOption> m_Dumps;
    bool m_IsListWanted = false; // +marlune_list
};

/// Reads the options from the arguments of this process. One that is malformed or unknown ends the simulation.
COptions ReadCommandLine();

} // namespace marlune::bridge

#endif
