// Finds an instance's ports and sorts them into groups.
#include "src/flimemory/ports.h"

#include <algorithm>
#include <cctype>
#include <iterator>
#include <map>
#include <set>
#include <stdexcept>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>

#include "general_error"

namespace marlune::foreign::fli {

namespace {

using exceptions::CGeneralError;

const std::string RTLClockName = "CLK";
const std::string RTLWriteDataName = "D0";
const std::string RTLReadDataName = "Q0";
const std::string RTLReadEnableName = "RE0";
const std::string RTLWriteEnableName = "WE0";
const std::string RTLAddressName = "A0";
const std::string RTLReadAddressName = "R" + RTLAddressName;
const std::string RTLWriteAddressName = "W" + RTLAddressName;
const std::string RTLChipSelectName = "CS0";

/// Stores the port's signal in `target` if the port has the role.
void HandlePort(mtiSignalIdTag** target, const std::string& role, const mtiInterfaceListStruct_* port) {
    if (target == nullptr || port == nullptr) {
        throw CGeneralError("Ports are not set.");
    }
    const std::string_view name = port->name;
    if (name.size() < role.size()) {
        throw std::out_of_range("basic_string::substr"); // the text that users know, whatever the standard library's is
    }
    if (HasRole(name, role)) {
        *target = port->u.port;
    }
}

/// Where the signal of a role goes in the record of a kind of port.
template <typename TPort>
struct CRole {
    CPortSignal TPort::*m_Field;
    const std::string& m_Name;
};

const CRole<CReadPort> READ_ROLES[] = {
    {&CReadPort::m_Data, RTLReadDataName},
    {&CReadPort::m_Address, RTLReadAddressName},
    {&CReadPort::m_Enable, RTLReadEnableName},
};
const CRole<CWritePort> WRITE_ROLES[] = {
    {&CWritePort::m_Data, RTLWriteDataName},
    {&CWritePort::m_Address, RTLWriteAddressName},
    {&CWritePort::m_Enable, RTLWriteEnableName},
};
const CRole<CSharedPort> SHARED_ROLES[] = {
    {&CSharedPort::m_ReadData, RTLReadDataName},     {&CSharedPort::m_WriteData, RTLWriteDataName},
    {&CSharedPort::m_Address, RTLAddressName},       {&CSharedPort::m_WriteEnable, RTLWriteEnableName},
    {&CSharedPort::m_ChipSelect, RTLChipSelectName},
};

/// The ports of one kind by their prefixes, complete or not.
template <typename TPort>
using CPortGroups = std::map<std::string, TPort>;

template <typename TPort, std::size_t COUNT>
void HandleRoles(CPortGroups<TPort>& ports, const std::string& prefix, const CRole<TPort> (&roles)[COUNT],
                 const mtiInterfaceListT* port) {
    TPort& record = ports[prefix];
    for (const CRole<TPort>& role : roles) {
        HandlePort(&(record.*role.m_Field).m_Handle, role.m_Name, port);
    }
}

/// Every port is tried for every role of its prefix: only the name's end is compared, so an "RA0" is an "A0" as well.
std::tuple<CPortGroups<CReadPort>, CPortGroups<CWritePort>, CPortGroups<CSharedPort>>
FindGroups(const mtiInterfaceListT* ports) {
    std::tuple<CPortGroups<CReadPort>, CPortGroups<CWritePort>, CPortGroups<CSharedPort>> groups;
    for (const mtiInterfaceListT* port = ports; port != nullptr; port = port->nxt) {
        if (port->u.port == nullptr) {
            continue;
        }
        const std::string prefix = PrefixOf(port->name);
        HandleRoles(std::get<0>(groups), prefix, READ_ROLES, port);
        HandleRoles(std::get<1>(groups), prefix, WRITE_ROLES, port);
        HandleRoles(std::get<2>(groups), prefix, SHARED_ROLES, port);
    }
    return groups;
}

/// Adds the groups that have at least one port.
template <typename TPort, std::size_t COUNT>
void Describe(const char* kind, const CPortGroups<TPort>& ports, const CRole<TPort> (&roles)[COUNT],
              std::vector<CPortGroup>& groups) {
    for (const auto& [prefix, port] : ports) {
        CPortGroup group{kind, prefix, {}};
        for (const CRole<TPort>& role : roles) {
            if ((port.*role.m_Field).m_Handle == nullptr) {
                group.m_Missing.push_back(role.m_Name);
            }
        }
        if (group.m_Missing.size() < COUNT) {
            groups.push_back(std::move(group));
        }
    }
}

using CPrefixes = std::set<std::string>;

/// Drops incomplete groups, and adds the prefixes of the others to `prefixes`.
template <typename TPort, std::size_t COUNT>
void DropIncomplete(CPortGroups<TPort>& ports, const CRole<TPort> (&roles)[COUNT], CPrefixes& prefixes) {
    for (auto port = ports.begin(); port != ports.end();) {
        const auto isFound = [&](const CRole<TPort>& role) { return (port->second.*role.m_Field).m_Handle != nullptr; };
        if (std::all_of(std::begin(roles), std::end(roles), isFound)) {
            prefixes.insert(port->first);
            ++port;
        } else {
            port = ports.erase(port);
        }
    }
}

/// Numbers the ports' prefixes by their places in the set.
template <typename TPort>
void NumberPrefixes(CPortGroups<TPort>& ports, std::size_t TPort::*number, const CPrefixes& prefixes) {
    for (auto& [prefix, port] : ports) {
        port.*number = static_cast<std::size_t>(std::distance(prefixes.begin(), prefixes.find(prefix)));
    }
}

template <typename TPort>
std::vector<TPort> PortsOf(const CPortGroups<TPort>& groups) {
    std::vector<TPort> ports;
    for (const auto& [prefix, port] : groups) {
        ports.push_back(port);
    }
    return ports;
}

template <typename TPort, std::size_t COUNT>
void BindSignals(std::vector<TPort>& ports, const CRole<TPort> (&roles)[COUNT]) {
    for (TPort& port : ports) {
        for (const CRole<TPort>& role : roles) {
            CPortSignal& signal = port.*role.m_Field;
            signal.m_Place = *reinterpret_cast<const marlune_direct_signal*>(signal.m_Handle);
        }
    }
}

} // namespace

bool HasRole(std::string_view name, std::string_view role) {
    const auto sameLetter = [](char a, char b) {
        return std::tolower(static_cast<unsigned char>(a)) == std::tolower(static_cast<unsigned char>(b));
    };
    return name.size() >= role.size() && std::equal(role.rbegin(), role.rend(), name.rbegin(), sameLetter);
}

mtiSignalIdT FindClock(mtiInterfaceListT* ports) {
    std::string name = RTLClockName; // the simulator takes names as writable text
    const mtiSignalIdT clock = mti_FindPort(ports, name.data());
    if (clock == nullptr) {
        throw CGeneralError("Cannot find " + name + " port.");
    }
    return clock;
}

std::string PrefixOf(const std::string& name) {
    const std::size_t separator = name.rfind('_');
    return separator == std::string::npos ? "" : name.substr(0, separator);
}

CPorts GroupPorts(const mtiInterfaceListT* ports) {
    auto [readPorts, writePorts, sharedPorts] = FindGroups(ports);
    CPrefixes readPrefixes;
    CPrefixes writePrefixes;
    DropIncomplete(readPorts, READ_ROLES, readPrefixes);
    DropIncomplete(writePorts, WRITE_ROLES, writePrefixes);
    DropIncomplete(sharedPorts, SHARED_ROLES, readPrefixes);
    DropIncomplete(sharedPorts, SHARED_ROLES, writePrefixes);
    NumberPrefixes(readPorts, &CReadPort::m_ReadPrefix, readPrefixes);
    NumberPrefixes(writePorts, &CWritePort::m_WritePrefix, writePrefixes);
    NumberPrefixes(sharedPorts, &CSharedPort::m_ReadPrefix, readPrefixes);
    NumberPrefixes(sharedPorts, &CSharedPort::m_WritePrefix, writePrefixes);
    return {PortsOf(readPorts), PortsOf(writePorts), PortsOf(sharedPorts), readPrefixes.size(), writePrefixes.size()};
}

std::vector<CPortGroup> DescribeGroups(const mtiInterfaceListT* ports) {
    const auto [readPorts, writePorts, sharedPorts] = FindGroups(ports);
    std::vector<CPortGroup> groups;
    Describe("read", readPorts, READ_ROLES, groups);
    Describe("write", writePorts, WRITE_ROLES, groups);
    Describe("shared", sharedPorts, SHARED_ROLES, groups);
    const auto isBefore = [](const CPortGroup& a, const CPortGroup& b) { return a.m_Prefix < b.m_Prefix; };
    std::stable_sort(groups.begin(), groups.end(), isBefore);
    return groups;
}

void BindPorts(CPorts& ports) {
    BindSignals(ports.m_ReadPorts, READ_ROLES);
    BindSignals(ports.m_WritePorts, WRITE_ROLES);
    BindSignals(ports.m_SharedPorts, SHARED_ROLES);
}

} // namespace marlune::foreign::fli
