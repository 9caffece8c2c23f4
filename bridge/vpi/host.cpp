// What all simulators with VPI have in common: the walk through the design, and waking processes.
#include "bridge/vpi/host.h"

#include <algorithm>
#include <string_view>

#include "bridge/core/failure.h"
#include "bridge/core/foreignlibrary.h"
#include "bridge/core/foreigntext.h"
#include "bridge/core/text.h"
#include "bridge/vpi/signal.h"

namespace marlune::bridge {

namespace {

struct CProduct {
    std::string_view m_Name; // the product name begins with it
    std::unique_ptr<CVpiHost> (*m_Make)();
};

constexpr CProduct PRODUCTS[] = {
    {"GHDL", MakeGhdl},
    {"Icarus Verilog", MakeIcarus},
};

// GHDL keeps the addresses of what a callback is registered with.
t_vpi_time g_NoTime{vpiSuppressTime, 0, 0, 0};
t_vpi_value g_NoValue{vpiSuppressVal, {nullptr}};

} // namespace

std::unique_ptr<CVpiHost> MakeVpiHost(const std::string& product) {
    for (const CProduct& known : PRODUCTS) {
        if (BeginsWith(product, known.m_Name)) {
            return known.m_Make();
        }
    }
    return nullptr;
}

std::string GetText(PLI_INT32 property, vpiHandle object) {
    const char* text = vpi_get_str(property, object);
    return text != nullptr ? text : "";
}

std::string GetTextValue(vpiHandle object) {
    t_vpi_value value{vpiStringVal, {nullptr}};
    vpi_get_value(object, &value);
    return value.value.str != nullptr ? value.value.str : "";
}

std::vector<vpiHandle> GetObjects(PLI_INT32 type, vpiHandle scope) {
    std::vector<vpiHandle> objects;
    vpiHandle iterator = vpi_iterate(type, scope);
    if (iterator != nullptr) {
        while (vpiHandle object = vpi_scan(iterator)) { // the end of the scan frees the iterator
            objects.push_back(object);
        }
    }
    return objects;
}

vpiHandle FindObject(PLI_INT32 type, vpiHandle scope, const std::string& name) {
    for (vpiHandle object : GetObjects(type, scope)) {
        if (GetText(vpiName, object) == name) {
            return object;
        }
    }
    return nullptr;
}

void PutOne(vpiHandle object) {
    if (object != nullptr) {
        char one[] = "1";
        t_vpi_value value{vpiBinStrVal, {one}};
        vpi_put_value(object, &value, nullptr, vpiNoDelay);
    }
}

mtiInt32T CVpiHost::Now() const {
    t_vpi_time now{vpiSimTime, 0, 0, 0};
    vpi_get_time(nullptr, &now);
    return static_cast<mtiInt32T>(now.low);
}

void CVpiHost::Print(const char* text) const {
    char plain[] = "%s";
    vpi_printf(plain, text);
}

void CVpiHost::ElaborateScope(vpiHandle scope) {
    for (vpiHandle inner : GetScopes(scope)) {
        if (const auto foreignText = FindForeignText(inner)) {
            ElaborateInstance(inner, *foreignText);
        }
        ElaborateScope(inner);
    }
}

void CVpiHost::ElaborateInstance(vpiHandle scope, const std::string& foreignText) {
    std::string path = GetText(vpiFullName, scope);
    std::replace(path.begin(), path.end(), '.', m_Separator);
    auto foreign = ParseForeignText(foreignText);
    if (!foreign) {
        Fail(path,
             "The foreign attribute '" + foreignText + "' is not of the form 'init_function library; parameters'.");
    }
    if (foreign->m_Parameters.empty()) {
        const auto mode = FindNumber(scope, "MODE");
        const auto dataBits = FindNumber(scope, "DATA_BITS");
        const auto addressBits = FindNumber(scope, "ADDRESS_BITS");
        if (mode && dataBits && addressBits) {
            foreign->m_Parameters = DefaultParameters(*mode, *dataBits, *addressBits);
        }
    }
    mtiRegionIdTag& region = GetSimulation().AddInstance(path);
    ListPorts(scope, region);
    const CInitFunction init = FindInitFunction(foreign->m_Library, foreign->m_Function, path);
    GetSimulation().Elaborate(region, init, foreign->m_Parameters);
    MarkServed(scope);
}

std::optional<unsigned> CVpiHost::FindNumber(vpiHandle /*scope*/, const char* /*name*/) const {
    return std::nullopt;
}

void CVpiHost::ListPorts(vpiHandle scope, mtiRegionIdTag& region) {
    for (const CVpiPort& port : GetPorts(scope)) {
        const int width = WidthOf(port.m_Object);
        if (width == 0) {
            Fail(region.m_Path, "Port '" + port.m_Name + "' is neither a std_logic nor a vector of it.");
        }
        mtiSignalIdTag& signal = vpi_get(vpiVector, port.m_Object) != 0
                                     ? region.m_Signals.emplace_back(port.m_Name, width)
                                     : region.m_Signals.emplace_back(port.m_Name);
        signal.m_Value = &m_Signals.emplace_back(port.m_Object, width, m_Literals);
    }
}

void CVpiHost::Sensitize(mtiProcessIdT process, mtiSignalIdT signal) {
    if (m_Processes.empty() || m_Processes.back().m_Process != process) {
        m_Processes.push_back({this, process, {}}); // a library finishes one process before the next
    }
    CVpiProcess& sensitive = m_Processes.back();
    if (std::find(sensitive.m_Signals.begin(), sensitive.m_Signals.end(), signal) != sensitive.m_Signals.end()) {
        return;
    }
    sensitive.m_Signals.push_back(signal);
    vpiHandle object = static_cast<CVpiSignal&>(*signal->m_Value).GetObject();
    t_cb_data data{cbValueChange, WakeProcess, object, &g_NoTime, &g_NoValue, 0, reinterpret_cast<char*>(&sensitive)};
    vpi_register_cb(&data);
}

PLI_INT32 CVpiHost::WakeProcess(t_cb_data* data) {
    CVpiProcess& process = *reinterpret_cast<CVpiProcess*>(data->user_data);
    process.m_Host->Wake(process);
    return 0;
}

void CVpiHost::Wake(CVpiProcess& process) {
    if (process.m_IsMarked) {
        return;
    }
    process.m_IsMarked = true;
    m_Marked.push_back(&process);
    if (m_Marked.size() == 1) {
        t_cb_data data{m_ReleaseReason, ReleaseMarked, nullptr, &m_Now, nullptr, 0, reinterpret_cast<char*>(this)};
        vpi_free_object(vpi_register_cb(&data)); // frees only the handle: the callback will come
    }
    if (m_Run == ERun::WHEN_MARKED) {
        GetSimulation().Run(*process.m_Process);
    }
}

PLI_INT32 CVpiHost::ReleaseMarked(t_cb_data* data) {
    reinterpret_cast<CVpiHost*>(data->user_data)->Release();
    return 0;
}

void CVpiHost::Release() {
    m_Released.swap(m_Marked); // what runs below may mark processes for the next callback
    for (CVpiProcess* process : m_Released) {
        process->m_IsMarked = false;
        if (m_Run == ERun::WHEN_RELEASED) {
            GetSimulation().Run(*process->m_Process);
        }
    }
    m_Released.clear();
}

} // namespace marlune::bridge
