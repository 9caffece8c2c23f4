// The library's entry points, and the registry of all that a run has.
#include "src/flimemory/flimemory.h"

#include <array>
#include <cstdint>
#include <exception>
#include <initializer_list>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <utility>

#include "general_error"
#include "objectfile/objectfile.h"
#include "src/flimemory/direct.h"
#include "src/flimemory/loadmemory.h"
#include "src/flimemory/loadreport.h"
#include "src/flimemory/logicvector.h"
#include "src/flimemory/parameters.h"
#include "src/flimemory/processinfo.h"
#include "src/flimemory/projectname.h"
#include "src/flimemory/simulatortext.h"
#include "src/flimemory/storage.h"
#include "src/flimemory/storageregistry.h"
#include "src/flimemory/vectorvalues.h"

namespace marlune::foreign::fli {

namespace {

using exceptions::CGeneralError;

CStorageRegistry g_Storages;

/// The loaded program images by file name, as passed.
std::map<std::string, std::unique_ptr<const ObjectFile::CObjectFile>> g_Executables;

/// What was wrong with the last load, if anything.
std::string g_LoadWarning;

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
    for (CReadPort& port : info.m_Ports.m_ReadPorts) {
        port.m_Driver = CreateOwnedDriver(process, port.m_Data.m_Handle);
        Sensitize(process, {port.m_Address.m_Handle});
    }
    for (const CWritePort& port : info.m_Ports.m_WritePorts) {
        Sensitize(process, {port.m_Enable.m_Handle, port.m_Address.m_Handle, port.m_Data.m_Handle});
    }
    for (CSharedPort& port : info.m_Ports.m_SharedPorts) {
        port.m_Driver = CreateOwnedDriver(process, port.m_ReadData.m_Handle);
        Sensitize(process, {port.m_WriteData.m_Handle, port.m_Address.m_Handle, port.m_WriteEnable.m_Handle,
                            port.m_ChipSelect.m_Handle});
    }
}

void Elaborate(mtiRegionIdT region, const char* parameterText, mtiInterfaceListT* ports) {
    const mtiSignalIdT clock = FindClock(ports);
    const CParameters parameters = ParseParameters(parameterText != nullptr ? parameterText : "");
    char* path = mti_GetRegionFullName(region);
    auto storage =
        std::make_unique<CStorage>(std::string(path).erase(0, 1), parameters.m_ByteBitWidth, parameters.m_SizeInBytes);
    auto process = std::make_unique<CProcessInfo>(region, std::move(storage), clock, GroupPorts(ports),
                                                  parameters.m_ReadIsSynchronous);

    // From here on the simulator holds the instance, until it hands it to CleanCallback.
    CProcessInfo* info = process.release();
    CreateProcess(*info);
    g_Storages.Set(FixProjectName(info->m_Storage->m_Name), info->m_Storage.get());
    mti_AddQuitCB(CleanCallback, info);
    mti_AddRestartCB(CleanCallback, info);
    mti_VsimFree(path); // not on an error, which ends the simulation
}

/// Removes an instance that the simulator hands back from the registry.
void Withdraw(const CProcessInfo& process) {
    g_Storages.Erase(FixProjectName(process.m_Storage->m_Name));
}

// Test bench access

CStorage* GetStorage(std::string_view key) {
    CStorage* const storage = g_Storages.Find(key);
    if (storage == nullptr) {
        throw CGeneralError("Cannot find memory object with name '" + std::string(key) + "'.");
    }
    return storage;
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
    return *GetStorage(RequireNonNull(name, "Memory name"));
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

/// The instance of a memory that is given by the name of its array: the part before the last "RAM" and the separator.
std::string InstanceOfMemory(const std::string& normalisedName) {
    const std::size_t position = normalisedName.rfind("RAM");
    // A name that begins with its only "RAM" is kept whole, by the wrap-around of its position less one.
    return position == std::string::npos ? normalisedName : normalisedName.substr(0, position - 1);
}

} // namespace

} // namespace marlune::foreign::fli

using namespace marlune::foreign::fli; // the entry points have no namespace

void marlune_fli_memory_init(mtiRegionIdT region, char* parameters, mtiInterfaceListT* /*generics*/,
                             mtiInterfaceListT* ports) {
    RunGuarded([&] { Elaborate(region, parameters, ports); });
}

void marlune_fli_memory_process(void* param) {
    RunGuarded([&] {
        CProcessInfo& process = *static_cast<CProcessInfo*>(param);
        if (process.IsRisingEdgeCLK()) {
            process.ServePorts();
        }
    });
}

void marlune_direct_bind(void* process) {
    BindPorts(static_cast<CProcessInfo*>(process)->m_Ports);
}

int marlune_direct_wake(void* process, uint32_t now, int clock, const uint64_t* inputs, uint64_t* outputs) {
    int result = MARLUNE_DIRECT_NO_EDGE;
    RunGuarded([&] {
        CProcessInfo& info = *static_cast<CProcessInfo*>(process);
        if (clock == MARLUNE_DIRECT_ROSE) {
            info.m_LastEdge = false; // as an evaluation at that time would have found
        }
        if (info.EvaluateEdge(now, clock != MARLUNE_DIRECT_LOW)) {
            CVectorValues values(inputs, outputs);
            info.ServePorts(values, clock == MARLUNE_DIRECT_ROSE);
            result = values.HasChanged() ? MARLUNE_DIRECT_CHANGED : MARLUNE_DIRECT_SERVED;
        }
    });
    return result;
}

void marlune_direct_commit(void* process) {
    RunGuarded([&] { static_cast<CProcessInfo*>(process)->CommitWrites(); });
}

const char* marlune_direct_load_warning() {
    return g_LoadWarning.empty() ? nullptr : g_LoadWarning.c_str();
}

const char* marlune_direct_only_space(const char* file) {
    static std::string name;
    bool isOnly = false;
    RunGuarded([&] {
        const std::set<std::string> spaces =
            marlune::foreign::LoadableSpaces(Executable(RequireNonNull(file, "File name")));
        isOnly = spaces.size() == 1;
        name = isOnly ? *spaces.begin() : "";
    });
    return isOnly ? name.c_str() : nullptr;
}

void marlune_direct_visit_cells(const char* name, uint32_t first, uint32_t last,
                                void (*visit)(void* context, uint32_t address, const uint32_t* limbs), void* context) {
    RunGuarded([&] {
        StorageNamed(name).VisitCells(first, last, [&](std::uint32_t address, const CStorage::CWord& word) {
            std::array<std::uint32_t, CStorage::CWord::LIMB_COUNT> limbs{};
            for (unsigned i = 0; i < limbs.size(); ++i) {
                limbs[i] = word.Limb(i);
            }
            visit(context, address, limbs.data());
        });
    });
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
    g_LoadWarning.clear();
    RunGuarded([&] {
        const std::string memory = marlune::FixProjectName(RequireNonNull(name, "Memory name"));
        const std::string space = addressSpace != nullptr ? addressSpace : "";
        const ObjectFile::CObjectFile& image = Executable(RequireNonNull(fileName, "File name"));
        CStorage& storage = *GetStorage(InstanceOfMemory(memory));
        const auto result = marlune::foreign::LoadMemory(storage, image, space, cellBase, lowAddress, highAddress,
                                                         phase, stride, false);
        g_LoadWarning = marlune::foreign::DescribeLoad(image, space, result);
    });
}

void marlune_dpi_memory_write(char const* name, unsigned int address, t_vpi_vecval const* data) {
    RunGuarded([&] {
        CStorage& storage = StorageNamed(name);
        RequireNonNull(data, "Data vector");
        const auto width = static_cast<int>(storage.m_ByteBitWidth);
        if (storage.HoldsNumbers()) {
            storage.Write(address, marlune::dpi::GetBits(data, 0, width));
        } else {
            CStorage::CWord value;
            marlune::dpi::SVLV2CI(value, data, width);
            storage.Write(address, value);
        }
    });
}

void marlune_dpi_memory_read(char const* name, unsigned int address, t_vpi_vecval* data) {
    RunGuarded([&] {
        CStorage& storage = StorageNamed(name);
        RequireNonNull(data, "Data vector");
        const auto width = static_cast<int>(storage.m_ByteBitWidth);
        if (storage.HoldsNumbers()) {
            std::uint64_t value = 0;
            storage.Read(address, value);
            marlune::dpi::PutBits(data, 0, width, value);
        } else {
            marlune::dpi::CI2SVLV(data, storage.Read(address), width);
        }
    });
}
