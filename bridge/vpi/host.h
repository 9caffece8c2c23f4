// Simulators with VPI as hosts of foreign instances.
#ifndef MARLUNE_BRIDGE_VPI_HOST_H
#define MARLUNE_BRIDGE_VPI_HOST_H

#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "bridge/core/simulation.h"
#include "bridge/vpi/signal.h"
#include "bridge/vpi/vpi.h"

namespace marlune::bridge {

/// The kinds of variables that hold bits.
constexpr PLI_INT32 VARIABLES[] = {vpiReg,    vpiBitVar,     vpiByteVar,   vpiShortIntVar,
                                   vpiIntVar, vpiLongIntVar, vpiIntegerVar};

/// A port of an instance: the net or variable inside of it.
struct CVpiPort {
    std::string m_Name;
    vpiHandle m_Object;
};

/// What differs between simulators: how instances and their ports are found, and when a process runs. Each simulator
/// has a derived class.
class CVpiHost : public CHost {
public:
    mtiInt32T Now() const override;
    void Sensitize(mtiProcessIdT process, mtiSignalIdT signal) override;
    void Print(const char* text) const override;

    /// Elaborates all instances of the design.
    void Elaborate() { ElaborateScope(nullptr); }

protected:
    enum class ERun { WHEN_MARKED, WHEN_RELEASED };

    /// `literals` are the characters for the nine values, in the order of their positions. `separator` goes between the
    /// names of a path in messages. `release` is the reason of the callback that removes the marks.
    CVpiHost(const char* literals, char separator, ERun run, PLI_INT32 release)
        : m_Literals(literals), m_Separator(separator), m_Run(run), m_ReleaseReason(release) {}

    /// The scopes directly inside a scope; the topmost ones for null.
    virtual std::vector<vpiHandle> GetScopes(vpiHandle scope) const = 0;

    /// The value of the scope's own MARLUNE_FOREIGN, the text of its foreign attribute; nothing if it has none.
    virtual std::optional<std::string> FindForeignText(vpiHandle scope) const = 0;

    /// The ports that the simulator shows, in the module's order. Warns of those that it does not.
    virtual std::vector<CVpiPort> GetPorts(vpiHandle scope) const = 0;

    /// The value of the scope's numeric parameter of that name, nothing if the simulator shows none.
    virtual std::optional<unsigned> FindNumber(vpiHandle scope, const char* name) const;

    /// Sets the scope's own MARLUNE_SERVED, if it has one. If that is not set, the module ends the simulation.
    virtual void MarkServed(vpiHandle scope) const = 0;

private:
    /// A process of an instance, with its mark and the signals that it is sensitive to.
    struct CVpiProcess {
        CVpiHost* m_Host;
        mtiProcessIdT m_Process;
        std::vector<mtiSignalIdT> m_Signals;
        bool m_IsMarked = false;
    };

    void ElaborateScope(vpiHandle scope);
    void ElaborateInstance(vpiHandle scope, const std::string& foreignText);
    void ListPorts(vpiHandle scope, mtiRegionIdTag& region);

    // An event marks the process; a marked one is not marked again. One callback removes all marks.
    static PLI_INT32 WakeProcess(t_cb_data* data);
    static PLI_INT32 ReleaseMarked(t_cb_data* data);
    void Wake(CVpiProcess& process);
    void Release();

    const char* m_Literals;
    char m_Separator;
    ERun m_Run;
    PLI_INT32 m_ReleaseReason;
    t_vpi_time m_Now{vpiSimTime, 0, 0, 0}; // a delay of 0; here because GHDL keeps its address
    std::deque<CVpiSignal> m_Signals;      // of all instances
    std::deque<CVpiProcess> m_Processes;
    std::vector<CVpiProcess*> m_Marked, m_Released;
};

/// The host for the product name that the simulator gives, null for an unknown one.
std::unique_ptr<CVpiHost> MakeVpiHost(const std::string& product);

std::unique_ptr<CVpiHost> MakeGhdl();
std::unique_ptr<CVpiHost> MakeIcarus();

/// A text property, copied: simulators use one buffer for all.
std::string GetText(PLI_INT32 property, vpiHandle object);

/// A value as a text, empty for none.
std::string GetTextValue(vpiHandle object);

/// Assigns 1 to an object of one bit; does nothing for null.
void PutOne(vpiHandle object);

/// All objects of a kind in a scope.
std::vector<vpiHandle> GetObjects(PLI_INT32 type, vpiHandle scope);

/// The one of them with the name, in exactly this case; null if there is none.
vpiHandle FindObject(PLI_INT32 type, vpiHandle scope, const std::string& name);

} // namespace marlune::bridge

#endif
