#include "bridge/vpi/simulator.h"

namespace {

vpiHandle FindIn(const std::string& path, const std::string& name) {
    std::string full = path + "." + name;
    return vpi_handle_by_name(full.data(), nullptr);
}

class CIcarus : public CVerilogSimulator {
public:
    /// Modules and generate scopes: no other kind of scope holds instances.
    std::vector<vpiHandle> GetScopes(vpiHandle scope) const override {
        if (scope == nullptr) {
            return GetObjects(vpiModule, nullptr);
        }
        std::vector<vpiHandle> scopes;
        for (vpiHandle inner : GetObjects(vpiInternalScope, scope)) {
            const PLI_INT32 type = vpi_get(vpiType, inner);
            if (type == vpiModule || type == vpiGenScope) {
                scopes.push_back(inner);
            }
        }
        return scopes;
    }

    std::optional<std::string> FindForeignText(vpiHandle scope) const override {
        vpiHandle parameter = FindIn(GetPath(scope), FOREIGN_OBJECT);
        return parameter != nullptr ? std::optional(ReadText(parameter)) : std::nullopt;
    }

    /// A port object has no value: the net or variable of its name has it.
    std::vector<SPort> GetPorts(vpiHandle scope) const override {
        std::vector<SPort> ports;
        const std::string path = GetPath(scope);
        for (vpiHandle port : GetObjects(vpiPort, scope)) {
            const std::string name = GetText(vpiName, port);
            const auto direction = static_cast<mtiDirectionT>(vpi_get(vpiDirection, port));
            if (vpiHandle object = FindIn(path, name)) {
                ports.push_back({name, object, direction});
            }
        }
        return ports;
    }
};

} // namespace

std::unique_ptr<CSimulator> MakeIcarus() {
    return std::make_unique<CIcarus>();
}
