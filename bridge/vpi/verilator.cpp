#include "bridge/vpi/simulator.h"

#include <string_view>

namespace {

/// How the model spells characters that its own language does not allow in a name.
struct SSpelling {
    std::string_view m_Spelled;
    char m_Character;
};

constexpr SSpelling SPELLINGS[] = {{"__BRA__", '['}, {"__KET__", ']'}};

/// The model shows what the control file makes public: parameters as variables too, ports not apart from them.
class CVerilator : public CVerilogSimulator {
public:
    std::vector<vpiHandle> GetScopes(vpiHandle scope) const override { return GetObjects(vpiModule, scope); }

    std::optional<std::string> FindForeignText(vpiHandle scope) const override {
        for (vpiHandle variable : GetObjects(vpiReg, scope)) {
            if (GetText(vpiName, variable) == FOREIGN_OBJECT) {
                return ReadText(variable);
            }
        }
        return std::nullopt;
    }

    std::vector<SPort> GetPorts(vpiHandle scope) const override {
        std::vector<SPort> ports;
        for (vpiHandle variable : GetObjects(vpiReg, scope)) {
            const std::string name = GetText(vpiName, variable);
            if (name != FOREIGN_OBJECT) {
                ports.push_back({name, variable, MTI_INTERNAL}); // the model forgets directions
            }
        }
        return ports;
    }

    std::string GetPath(vpiHandle scope) const override {
        std::string path = CVerilogSimulator::GetPath(scope);
        for (const auto& [spelled, character] : SPELLINGS) {
            for (std::size_t at = 0; (at = path.find(spelled, at)) != std::string::npos; ++at) {
                path.replace(at, spelled.size(), 1, character);
            }
        }
        return path;
    }
};

} // namespace

std::unique_ptr<CSimulator> MakeVerilator() {
    return std::make_unique<CVerilator>();
}
