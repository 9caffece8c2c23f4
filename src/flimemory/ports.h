// The ports of a memory instance, and how they are told from the names of the entity's ports.
#ifndef MARLUNE_FLIMEMORY_PORTS_H
#define MARLUNE_FLIMEMORY_PORTS_H

#include <cstddef>
#include <map>
#include <string>

#include "mti.h"

namespace marlune::foreign::fli {

// In the records below all handles are the simulator's, null until found or created.

struct CReadPort {
    mtiSignalIdTag* m_Data = nullptr;    // "Q0"
    mtiDriverIdTag* m_Driver = nullptr;  // of m_Data
    mtiSignalIdTag* m_Address = nullptr; // "RA0"
    mtiSignalIdTag* m_Enable = nullptr;  // "RE0"
    std::size_t m_Prefix = 0;            // see CPorts

    bool IsComplete() const { return m_Data != nullptr && m_Address != nullptr && m_Enable != nullptr; }
};

struct CWritePort {
    mtiSignalIdTag* m_Data = nullptr;    // "D0"
    mtiSignalIdTag* m_Address = nullptr; // "WA0"
    mtiSignalIdTag* m_Enable = nullptr;  // "WE0"
    std::size_t m_Prefix = 0;            // see CPorts

    bool IsComplete() const { return m_Data != nullptr && m_Address != nullptr && m_Enable != nullptr; }
};

/// A port that reads and writes at one address.
struct CSharedPort {
    mtiSignalIdTag* m_Address = nullptr;     // "A0"
    mtiSignalIdTag* m_ChipSelect = nullptr;  // "CS0"
    mtiSignalIdTag* m_WriteEnable = nullptr; // "WE0"
    mtiSignalIdTag* m_WriteData = nullptr;   // "D0"
    mtiSignalIdTag* m_ReadData = nullptr;    // "Q0"
    mtiDriverIdTag* m_Driver = nullptr;      // of m_ReadData
    std::size_t m_Prefix = 0;                // see CPorts

    bool IsComplete() const {
        return m_Address != nullptr && m_ChipSelect != nullptr && m_WriteEnable != nullptr && m_WriteData != nullptr &&
               m_ReadData != nullptr;
    }

    /// Whether the chip is selected; the write enable does not matter.
    template <typename TValues>
    bool IsReadEnabled(TValues& values) const {
        return values.IsActive(m_ChipSelect);
    }
};

/// All ports of an instance, by prefix: the text before the last "_" of their names.
struct CPorts {
    std::map<std::string, CReadPort> m_ReadPorts;
    std::map<std::string, CWritePort> m_WritePorts;
    std::map<std::string, CSharedPort> m_SharedPorts;
    // The number of different prefixes. The m_Prefix of a record is its prefix's index among them, in sorted order.
    std::size_t m_PrefixCount = 0;
};

/// Finds the port "CLK". Throws CGeneralError if there is none.
mtiSignalIdT FindClock(mtiInterfaceListT* ports);

/// Groups the ports in the list by the prefixes and the roles of their names, upper and lower case alike. Groups that
/// lack a port are left out. Throws std::out_of_range for a name that is shorter than a role.
CPorts GroupPorts(const mtiInterfaceListT* ports);

} // namespace marlune::foreign::fli

#endif
