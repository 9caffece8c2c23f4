#include "bridge/vpi/simulator.h"

#include <algorithm>
#include <cctype>
#include <string_view>

namespace {

bool EqualIgnoringCase(std::string_view a, std::string_view b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](unsigned char x, unsigned char y) { return std::tolower(x) == std::tolower(y); });
}

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

/// VPI shows no attribute, generic or constant here, so that the foreign text comes as the bits of a signal, and no
/// vpiPort, so that ports are the nets that have a direction.
class CGhdl : public CSimulator {
public:
    // A process runs in the callback of its first event in a delta: all signals have their new values by then. A delay
    // of 0 ends at the start of the next delta, ahead of its events, so that there is one run for each delta.
    CGhdl() : CSimulator("UX01ZWLH-", ERun::WHEN_MARKED, cbAfterDelay) {}

    std::vector<vpiHandle> GetScopes(vpiHandle scope) const override {
        return GetObjects(scope == nullptr ? vpiModule : vpiInternalScope, scope);
    }

    std::optional<std::string> FindForeignText(vpiHandle scope) const override {
        for (vpiHandle net : GetObjects(vpiNet, scope)) {
            if (EqualIgnoringCase(GetText(vpiName, net), FOREIGN_OBJECT)) {
                return TextOfBits(net);
            }
        }
        return std::nullopt;
    }

    std::vector<SPort> GetPorts(vpiHandle scope) const override {
        std::vector<SPort> ports;
        for (vpiHandle net : GetObjects(vpiNet, scope)) {
            const PLI_INT32 direction = vpi_get(vpiDirection, net);
            if (direction >= vpiInput && direction <= vpiInout) {
                ports.push_back({GetText(vpiName, net), net, static_cast<mtiDirectionT>(direction)});
            }
        }
        return ports;
    }
};

} // namespace

std::unique_ptr<CSimulator> MakeGhdl() {
    return std::make_unique<CGhdl>();
}
