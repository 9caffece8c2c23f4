#include "src/flimemory/ports.h"

#include <algorithm>
#include <cctype>
#include <iterator>
#include <set>
#include <stdexcept>
#include <string_view>

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

/// Stores the port's signal into the target if the port's name ends in the role, upper or lower case.
void HandlePort(mtiSignalIdTag** target, const std::string& role, const mtiInterfaceListStruct_* port) {
    if (target == nullptr || port == nullptr) {
        throw CGeneralError("Ports are not set.");
    }
    const std::string_view name = port->name;
    if (name.size() < role.size()) {
        throw std::out_of_range("basic_string::substr"); // the text that users know, whatever the library's own is
    }
    const auto sameLetter = [](char a, char b) {
        return std::tolower(static_cast<unsigned char>(a)) == std::tolower(static_cast<unsigned char>(b));
    };
    if (std::equal(role.begin(), role.end(), name.end() - static_cast<std::ptrdiff_t>(role.size()), sameLetter)) {
        *target = port->u.port;
    }
}

/// Where the signal of a role goes in the record of a kind of port.
template <typename TPort>
struct CRole {
    mtiSignalIdTag* TPort::*m_Field;
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

template <typename TPort, std::size_t COUNT>
void HandleRoles(std::map<std::string, TPort>& ports, const std::string& prefix, const CRole<TPort> (&roles)[COUNT],
                 const mtiInterfaceListT* port) {
    TPort& record = ports[prefix];
    for (const CRole<TPort>& role : roles) {
        HandlePort(&(record.*role.m_Field), role.m_Name, port);
    }
}

template <typename TPort>
void DropIncomplete(std::map<std::string, TPort>& ports, std::set<std::string>& prefixes) {
    for (auto port = ports.begin(); port != ports.end();) {
        if (port->second.IsComplete()) {
            prefixes.insert(port->first);
            ++port;
        } else {
            port = ports.erase(port);
        }
    }
}

template <typename TPort>
void NumberPrefixes(std::map<std::string, TPort>& ports, const std::set<std::string>& prefixes) {
    for (auto& [prefix, port] : ports) {
        port.m_Prefix = static_cast<std::size_t>(std::distance(prefixes.begin(), prefixes.find(prefix)));
    }
}

} // namespace

mtiSignalIdT FindClock(mtiInterfaceListT* ports) {
    std::string name = RTLClockName; // the simulator takes names as writable text
    const mtiSignalIdT clock = mti_FindPort(ports, name.data());
    if (clock == nullptr) {
        throw CGeneralError("Cannot find " + name + " port.");
    }
    return clock;
}

/// Every port is tried for every role of its prefix: only the name's end is compared, so an "RA0" is an "A0" as well.
CPorts GroupPorts(const mtiInterfaceListT* ports) {
    CPorts groups;
    for (const mtiInterfaceListT* port = ports; port != nullptr; port = port->nxt) {
        if (port->u.port == nullptr) {
            continue;
        }
        const std::string name = port->name;
        const std::size_t separator = name.rfind('_');
        const std::string prefix = separator == std::string::npos ? "" : name.substr(0, separator);
        HandleRoles(groups.m_ReadPorts, prefix, READ_ROLES, port);
        HandleRoles(groups.m_WritePorts, prefix, WRITE_ROLES, port);
        HandleRoles(groups.m_SharedPorts, prefix, SHARED_ROLES, port);
    }
    std::set<std::string> prefixes;
    DropIncomplete(groups.m_ReadPorts, prefixes);
    DropIncomplete(groups.m_WritePorts, prefixes);
    DropIncomplete(groups.m_SharedPorts, prefixes);
    NumberPrefixes(groups.m_ReadPorts, prefixes);
    NumberPrefixes(groups.m_WritePorts, prefixes);
    NumberPrefixes(groups.m_SharedPorts, prefixes);
    groups.m_PrefixCount = prefixes.size();
    return groups;
}

} // namespace marlune::foreign::fli
