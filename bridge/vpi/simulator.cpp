#include "bridge/vpi/simulator.h"

#include <string_view>

namespace {

struct SProduct {
    std::string_view m_Name; // the product name begins with it
    std::unique_ptr<CSimulator> (*m_Make)();
};

constexpr SProduct PRODUCTS[] = {
    {"GHDL", MakeGhdl},
    {"Icarus Verilog", MakeIcarus},
    {"Verilator", MakeVerilator},
};

} // namespace

std::unique_ptr<CSimulator> MakeSimulator(const std::string& product) {
    for (const SProduct& known : PRODUCTS) {
        if (product.compare(0, known.m_Name.size(), known.m_Name) == 0) {
            return known.m_Make();
        }
    }
    return nullptr;
}

std::string GetText(PLI_INT32 property, vpiHandle object) {
    const char* text = vpi_get_str(property, object);
    return text != nullptr ? text : "";
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

std::string CSimulator::GetPath(vpiHandle scope) const {
    return GetText(vpiFullName, scope);
}

void CSimulator::Wake(mtiProcessIdTag& process) {
    if (process.m_IsMarked) {
        return;
    }
    process.m_IsMarked = true;
    m_Marked.push_back(&process);
    if (m_Marked.size() == 1) {
        t_cb_data data{m_ReleaseReason, ReleaseMarked, nullptr, &m_Now, nullptr, 0, reinterpret_cast<char*>(this)};
        vpi_free_object(vpi_register_cb(&data)); // the handle only: the callback comes
    }
    if (m_Run == ERun::WHEN_MARKED) {
        process.Run();
    }
}

PLI_INT32 CSimulator::ReleaseMarked(t_cb_data* data) {
    reinterpret_cast<CSimulator*>(data->user_data)->Release();
    return 0;
}

void CSimulator::Release() {
    m_Released.swap(m_Marked); // what runs below may mark processes for the next callback
    for (mtiProcessIdTag* process : m_Released) {
        process->m_IsMarked = false;
        if (m_Run == ERun::WHEN_RELEASED) {
            process->Run();
        }
    }
    m_Released.clear();
}

std::string CVerilogSimulator::ReadText(vpiHandle parameter) {
    t_vpi_value value{vpiStringVal, {nullptr}};
    vpi_get_value(parameter, &value);
    return value.value.str != nullptr ? value.value.str : "";
}
