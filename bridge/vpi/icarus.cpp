// Icarus Verilog as a host.
#include "bridge/core/failure.h"
#include "bridge/vpi/host.h"

namespace marlune::bridge {

namespace {

/// Processes run when the time step has settled, because a run in the event's own callback would race with the design's
/// always blocks. What they assign starts a new round of the same step.
class CIcarus : public CVpiHost {
public:
    CIcarus() : CVpiHost("xx01zx01x", '.', ERun::WHEN_RELEASED, cbReadWriteSynch) {}

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
        vpiHandle parameter = FindObject(vpiParameter, scope, "MARLUNE_FOREIGN");
        return parameter != nullptr ? std::optional(GetTextValue(parameter)) : std::nullopt;
    }

    /// A port object has no value: the net or variable of its name has it.
    std::vector<CVpiPort> GetPorts(vpiHandle scope) const override {
        std::vector<CVpiPort> ports;
        for (vpiHandle port : GetObjects(vpiPort, scope)) {
            const std::string name = GetText(vpiName, port);
            if (vpiHandle object = FindNetOrVariable(scope, name)) {
                ports.push_back({name, object});
            } else {
                PrintWarning(GetText(vpiFullName, scope),
                             "port '" + name + "' is not used: it is not a net or a variable of its own name.");
            }
        }
        return ports;
    }

    std::optional<unsigned> FindNumber(vpiHandle scope, const char* name) const override {
        vpiHandle parameter = FindObject(vpiParameter, scope, name);
        if (parameter == nullptr) {
            return std::nullopt;
        }
        t_vpi_value value{vpiIntVal, {nullptr}};
        vpi_get_value(parameter, &value);
        return static_cast<unsigned>(value.value.integer);
    }

    void MarkServed(vpiHandle scope) const override { PutOne(FindObject(vpiReg, scope, "MARLUNE_SERVED")); }

private:
    static vpiHandle FindNetOrVariable(vpiHandle scope, const std::string& name) {
        if (vpiHandle net = FindObject(vpiNet, scope, name)) {
            return net;
        }
        for (const PLI_INT32 type : VARIABLES) {
            if (vpiHandle variable = FindObject(type, scope, name)) {
                return variable;
            }
        }
        return FindObject(vpiRealVar, scope, name);
    }
};

} // namespace

std::unique_ptr<CVpiHost> MakeIcarus() {
    return std::make_unique<CIcarus>();
}

} // namespace marlune::bridge
