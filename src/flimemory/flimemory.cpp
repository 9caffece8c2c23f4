#include "src/flimemory/flimemory.h"

#include <algorithm>
#include <cctype>
#include <exception>
#include <initializer_list>
#include <iterator>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "general_error"
#include "number_cast"
#include "objectfile/objectfile.h"
#include "src/flimemory/loadmemory.h"
#include "src/flimemory/logicvector.h"
#include "src/flimemory/processinfo.h"
#include "src/flimemory/projectname.h"
#include "src/flimemory/simulatortext.h"
#include "src/flimemory/storage.h"

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

/// The storages by normalised instance name, borrowed from their CProcessInfo. Hashed, for a test bench looks a name up
/// at every access.
std::unordered_map<std::string, CStorage*> g_Storages;

/// The loaded program images by file name, as passed.
std::map<std::string, std::unique_ptr<const ObjectFile::CObjectFile>> g_Executables;

/// The one way in which an error leaves the library: its text goes into the simulator's Tcl variable, as it is, and the
/// simulation stops.
void HandleException(const std::string& message) {
    mti_Command(SimulatorText("global MTI_ERROR_MSG"));
    mti_Command(SimulatorText(("set MTI_ERROR_MSG \"" + message + "\"").c_str()));
    mti_FatalError();
}

/// Runs the body of an entry point so that nothing is thrown into the simulator.
template <typename TBody>
void RunGuarded(TBody&& body) {
    try {
        body();
    } catch (const std::exception& error) {
        HandleException(error.what());
    }
}

// Elaboration

struct CParameters {
    bool m_ReadIsSynchronous = false;
    unsigned m_ByteBitWidth = 0;
    unsigned m_SizeInBytes = 0;
};

/// Splits at blanks; no argument is empty.
std::vector<std::string> SplitArguments(const std::string& text) {
    std::vector<std::string> arguments;
    std::size_t begin = 0;
    while (begin < text.size()) {
        const std::size_t end = std::min(text.find(' ', begin), text.size());
        if (end > begin) {
            arguments.push_back(text.substr(begin, end - begin));
        }
        begin = end + 1;
    }
    return arguments;
}

CParameters ParseParameters(const std::string& text) {
    constexpr std::size_t ARGUMENT_COUNT = 3;
    const std::vector<std::string> arguments = SplitArguments(text);
    if (arguments.size() != ARGUMENT_COUNT) {
        throw CGeneralError("At least " + std::to_string(ARGUMENT_COUNT) +
                            " arguments are needed: <read_is_synchronous> <byte_bit_width> <size_in_bytes>");
    }
    CParameters parameters;
    int suffixBits = 0;
    parameters.m_ReadIsSynchronous = detail::number_cast<bool>::Convert(arguments[0], suffixBits);
    parameters.m_ByteBitWidth = detail::number_cast<unsigned>::Convert(arguments[1], suffixBits);
    parameters.m_SizeInBytes = detail::number_cast<unsigned>::Convert(arguments[2], suffixBits);
    if (parameters.m_ByteBitWidth == 0) {
        throw CGeneralError("Byte bit with must be greater than zero");
    }
    return parameters;
}

mtiSignalIdT FindClock(mtiInterfaceListT* ports) {
    std::string name = RTLClockName; // the simulator takes names as writable text
    const mtiSignalIdT clock = mti_FindPort(ports, name.data());
    if (clock == nullptr) {
        throw CGeneralError("Cannot find " + name + " port.");
    }
    return clock;
}

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
void DropIncomplete(std::map<std::string, TPort>& ports) {
    for (auto port = ports.begin(); port != ports.end();) {
        port = port->second.IsComplete() ? std::next(port) : ports.erase(port);
    }
}

/// Every port is tried for every role of its prefix: only the name's end is compared, so an "RA0" is an "A0" as well.
void GroupPorts(CProcessInfo& process, const mtiInterfaceListT* ports) {
    for (const mtiInterfaceListT* port = ports; port != nullptr; port = port->nxt) {
        if (port->u.port == nullptr) {
            continue;
        }
        const std::string name = port->name;
        const std::size_t separator = name.rfind('_');
        const std::string prefix = separator == std::string::npos ? "" : name.substr(0, separator);
        HandleRoles(process.m_ReadPorts, prefix, READ_ROLES, port);
        HandleRoles(process.m_WritePorts, prefix, WRITE_ROLES, port);
        HandleRoles(process.m_SharedPorts, prefix, SHARED_ROLES, port);
    }
    DropIncomplete(process.m_ReadPorts);
    DropIncomplete(process.m_WritePorts);
    DropIncomplete(process.m_SharedPorts);
}

void Sensitize(mtiProcessIdT process, std::initializer_list<mtiSignalIdT> signals) {
    for (const mtiSignalIdT signal : signals) {
        mti_Sensitize(process, signal, MTI_EVENT);
    }
}

mtiDriverIdT CreateOwnedDriver(mtiProcessIdT process, mtiSignalIdT signal) {
    const mtiDriverIdT driver = mti_CreateDriver(signal);
    mti_SetDriverOwner(driver, process);
    return driver;
}

void CreateProcess(CProcessInfo& info) {
    const mtiProcessIdT process = mti_CreateProcess(nullptr, marlune_fli_memory_process, &info);
    Sensitize(process, {info.m_Clock});
    for (auto& [prefix, port] : info.m_ReadPorts) {
        port.m_Driver = CreateOwnedDriver(process, port.m_Data);
        Sensitize(process, {port.m_Address});
    }
    for (const auto& [prefix, port] : info.m_WritePorts) {
        Sensitize(process, {port.m_Enable, port.m_Address, port.m_Data});
    }
    for (auto& [prefix, port] : info.m_SharedPorts) {
        port.m_Driver = CreateOwnedDriver(process, port.m_ReadData);
        Sensitize(process, {port.m_WriteData, port.m_Address, port.m_WriteEnable, port.m_ChipSelect});
    }
}

void Elaborate(mtiRegionIdT region, const char* parameterText, mtiInterfaceListT* ports) {
    const mtiSignalIdT clock = FindClock(ports);
    const CParameters parameters = ParseParameters(parameterText != nullptr ? parameterText : "");
    char* path = mti_GetRegionFullName(region);
    auto storage =
        std::make_unique<CStorage>(std::string(path).erase(0, 1), parameters.m_ByteBitWidth, parameters.m_SizeInBytes);
    auto process = std::make_unique<CProcessInfo>(region, std::move(storage), clock, parameters.m_ReadIsSynchronous);
    GroupPorts(*process, ports);

    // From here on the simulator holds the instance, until it hands it to CleanCallback.
    CProcessInfo* info = process.release();
    CreateProcess(*info);
    g_Storages[FixProjectName(info->m_Storage->m_Name)] = info->m_Storage.get();
    mti_AddQuitCB(CleanCallback, info);
    mti_AddRestartCB(CleanCallback, info);
    mti_VsimFree(path); // not on an error, which ends the simulation
}

/// Takes the instance that the simulator hands back out of the registry.
void Withdraw(const CProcessInfo& process) {
    g_Storages.erase(FixProjectName(process.m_Storage->m_Name));
}

// Test bench access

CStorage* GetStorage(const std::string& key) {
    const auto found = g_Storages.find(key);
    if (found == g_Storages.end() || found->second == nullptr) {
        throw CGeneralError("Cannot find memory object with name '" + key + "'.");
    }
    return found->second;
}

template <typename T>
T* RequireNonNull(T* argument, const char* what) {
    if (argument == nullptr) {
        throw CGeneralError(std::string(what) + " is a null pointer.");
    }
    return argument;
}

/// The storage of exactly this name.
CStorage& StorageNamed(const char* name) {
    static std::string key; // keeps its capacity: an access allocates nothing
    key = RequireNonNull(name, "Memory name");
    return *GetStorage(key);
}

/// The program image in the file, read on first use. One that cannot be read is not remembered.
const ObjectFile::CObjectFile& Executable(const std::string& fileName) {
    const auto found = g_Executables.find(fileName);
    if (found != g_Executables.end()) {
        return *found->second;
    }
    auto image = std::make_unique<ObjectFile::CObjectFile>();
    image->LoadFile(fileName);
    return *(g_Executables[fileName] = std::move(image));
}

/// The instance whose memory goes by the name of its array: the part before the last "RAM" and the separator.
std::string InstanceOfMemory(const std::string& normalisedName) {
    const std::size_t position = normalisedName.rfind("RAM");
    // A name that begins with its only "RAM" is kept whole, by the wrap-around of its position less one.
    return position == std::string::npos ? normalisedName : normalisedName.substr(0, position - 1);
}

} // namespace

} // namespace marlune::foreign::fli

using namespace marlune::foreign::fli; // NOLINT(google-build-using-namespace): the entry points have no namespace

void marlune_fli_memory_init(mtiRegionIdT region, char* parameters, mtiInterfaceListT* /*generics*/,
                             mtiInterfaceListT* ports) {
    RunGuarded([&] { Elaborate(region, parameters, ports); });
}

void marlune_fli_memory_process(void* param) {
    CProcessInfo& process = *static_cast<CProcessInfo*>(param);
    if (process.IsRisingEdgeCLK()) {
        process.ServePorts();
    }
}

void CleanCallback(void* param) {
    std::unique_ptr<CProcessInfo> process(static_cast<CProcessInfo*>(param));
    RunGuarded([&] {
        g_Executables.clear();
        const std::unique_ptr<CProcessInfo> released = std::move(process); // gone before an error is reported
        if (released != nullptr) {
            Withdraw(*released);
        }
    });
}

void marlune_dpi_memory_init(char const* name, char const* fileName, char const* addressSpace, unsigned int cellBase,
                             unsigned int lowAddress, unsigned int highAddress, unsigned int phase,
                             unsigned int stride) {
    RunGuarded([&] {
        const std::string memory = marlune::FixProjectName(RequireNonNull(name, "Memory name"));
        const std::string space = addressSpace != nullptr ? addressSpace : "";
        const ObjectFile::CObjectFile& image = Executable(RequireNonNull(fileName, "File name"));
        CStorage& storage = *GetStorage(InstanceOfMemory(memory));
        marlune::foreign::LoadMemory(storage, image, space, cellBase, lowAddress, highAddress, phase, stride, false);
    });
}

void marlune_dpi_memory_write(char const* name, unsigned int address, t_vpi_vecval const* data) {
    RunGuarded([&] {
        CStorage& storage = StorageNamed(name);
        CStorage::CWord value;
        marlune::dpi::SVLV2CI(value, RequireNonNull(data, "Data vector"), static_cast<int>(storage.m_ByteBitWidth));
        storage.Write(address, value);
    });
}

void marlune_dpi_memory_read(char const* name, unsigned int address, t_vpi_vecval* data) {
    RunGuarded([&] {
        CStorage& storage = StorageNamed(name);
        RequireNonNull(data, "Data vector");
        marlune::dpi::CI2SVLV(data, storage.Read(address), static_cast<int>(storage.m_ByteBitWidth));
    });
}
