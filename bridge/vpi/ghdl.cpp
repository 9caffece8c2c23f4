// GHDL as a host.
#include "bridge/vpi/host.h"

#include <string_view>

namespace marlune::bridge {

namespace {

/// The text whose characters a vector holds, 8 bits each; empty when it holds none.
std::string TextOfBits(vpiHandle vector) {
    constexpr int BITS = 8;
    t_vpi_value value{vpiBinStrVal, {nullptr}};
    vpi_get_value(vector, &value);
    const std::string_view bits = value.value.str;
    std::string text;
    for (std::size_t at = 0; at + BITS <= bits.size(); at += BITS) {
        unsigned character = 0;
        for (const char bit : bits.substr(at, BITS)) {
            character = 2 * character + (bit == '1' ? 1U : 0U);
        }
        text += static_cast<char>(character);
    }
    return text;
}

/// GHDL's VPI shows no attributes, generics or constants, so the foreign text comes as the bits of a signal. It has no
/// vpiPort either, so ports are the nets that have a direction.
class CGhdl : public CVpiHost {
public:
    // A process runs in the callback of its first event in a delta: all signals have their new values by then. A delay
    // of 0 ends at the start of the next delta, ahead of its events, so that there is one run for each delta.
    CGhdl() : CVpiHost("UX01ZWLH-", '/', ERun::WHEN_MARKED, cbAfterDelay) {}

    std::vector<vpiHandle> GetScopes(vpiHandle scope) const override {
        return GetObjects(scope == nullptr ? vpiModule : vpiInternalScope, scope);
    }

    std::optional<std::string> FindForeignText(vpiHandle scope) const override {
        vpiHandle net = FindObject(vpiNet, scope, "marlune_foreign"); // all names are in lower case
        return net != nullptr ? std::optional(TextOfBits(net)) : std::nullopt;
    }

    std::vector<CVpiPort> GetPorts(vpiHandle scope) const override {
        std::vector<CVpiPort> ports;
        for (vpiHandle net : GetObjects(vpiNet, scope)) {
            const PLI_INT32 direction = vpi_get(vpiDirection, net);
            if (direction >= vpiInput && direction <= vpiInout) {
                ports.push_back({GetText(vpiName, net), net});
            }
        }
        return ports;
    }

    void MarkServed(vpiHandle scope) const override { PutOne(FindObject(vpiNet, scope, "marlune_served")); }
};

} // namespace

std::unique_ptr<CVpiHost> MakeGhdl() {
    return std::make_unique<CGhdl>();
}

} // namespace marlune::bridge
