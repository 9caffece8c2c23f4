// The ports of a memory instance, as the names of the entity's ports define them.
#ifndef MARLUNE_FLIMEMORY_PORTS_H
#define MARLUNE_FLIMEMORY_PORTS_H

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "mti.h"
#include "src/flimemory/direct.h"

namespace marlune::foreign::fli {

/// A signal of a port.
struct CPortSignal {
    mtiSignalIdTag* m_Handle = nullptr; // the simulator's
    marlune_direct_signal m_Place{};    // of the signal's value, if direct calls serve the instance; see BindPorts
};

// In the records below the handles of signals and drivers are the simulator's, null until found or created.

struct CReadPort {
    CPortSignal m_Data;                 // "Q0"
    mtiDriverIdTag* m_Driver = nullptr; // of m_Data
    CPortSignal m_Address;              // "RA0"
    CPortSignal m_Enable;               // "RE0"
    std::size_t m_ReadPrefix = 0;       // see CPorts
};

struct CWritePort {
    CPortSignal m_Data;            // "D0"
    CPortSignal m_Address;         // "WA0"
    CPortSignal m_Enable;          // "WE0"
    std::size_t m_WritePrefix = 0; // see CPorts
};

/// A port that reads and writes at one address.
struct CSharedPort {
    CPortSignal m_Address;              // "A0"
    CPortSignal m_ChipSelect;           // "CS0"
    CPortSignal m_WriteEnable;          // "WE0"
    CPortSignal m_WriteData;            // "D0"
    CPortSignal m_ReadData;             // "Q0"
    mtiDriverIdTag* m_Driver = nullptr; // of m_ReadData
    std::size_t m_ReadPrefix = 0;       // see CPorts
    std::size_t m_WritePrefix = 0;

    /// Whether the chip is selected; the write enable does not matter.
    template <typename TValues>
    bool IsReadEnabled(TValues& values) const {
        return values.IsActive(m_ChipSelect);
    }
};

/// All complete ports of an instance. Each kind is ordered by the ports' prefixes: the text before the last "_" of
/// their names.
struct CPorts {
    std::vector<CReadPort> m_ReadPorts;
    std::vector<CWritePort> m_WritePorts;
    std::vector<CSharedPort> m_SharedPorts;
    // The numbers of different prefixes of ports that read and of ports that write. The m_ReadPrefix or m_WritePrefix
    // of a record is its prefix's index among them, in sorted order.
    std::size_t m_ReadPrefixes = 0;
    std::size_t m_WritePrefixes = 0;
};

/// Whether a port of that name has the role, in upper or lower case: only the name's end is compared.
bool HasRole(std::string_view name, std::string_view role);

/// Finds the port "CLK". Throws CGeneralError if there is none.
mtiSignalIdT FindClock(mtiInterfaceListT* ports);

/// Groups the ports in the list by the prefixes and the roles of their names. The case of a role does not matter.
/// Groups that lack a port are left out. Throws std::out_of_range for a name that is shorter than a role.
CPorts GroupPorts(const mtiInterfaceListT* ports);

/// A group of ports of one prefix and kind, complete or not.
struct CPortGroup {
    std::string m_Kind; // "read", "write" or "shared"
    std::string m_Prefix;
    std::vector<std::string> m_Missing; // the roles that no port has
};

/// The prefix of a port's name.
std::string PrefixOf(const std::string& name);

/// All groups that have at least one port, ordered by prefix.
std::vector<CPortGroup> DescribeGroups(const mtiInterfaceListT* ports);

/// Copies the places to which the handles of the signals point, so that a pass over the ports finds them at once.
void BindPorts(CPorts& ports);

} // namespace marlune::foreign::fli

#endif
