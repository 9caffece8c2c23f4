#ifndef MARLUNE_BRIDGE_VPI_SIMULATOR_H
#define MARLUNE_BRIDGE_VPI_SIMULATOR_H

#include "bridge/vpi/process.h"
#include "bridge/vpi/vpi.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

/// The object of an instance whose value is the text of its foreign attribute.
constexpr const char* FOREIGN_OBJECT = "MARLUNE_FOREIGN";

struct SPort {
    std::string m_Name;
    vpiHandle m_Object; ///< the net or variable inside the instance
    mtiDirectionT m_Direction;
};

/// A simulator's own habits: how instances and their ports are found, and when a process runs. One class derives for
/// each simulator.
class CSimulator {
public:
    virtual ~CSimulator() = default;
    CSimulator(const CSimulator&) = delete;
    CSimulator& operator=(const CSimulator&) = delete;

    /// The scopes directly inside a scope; the topmost ones for null.
    virtual std::vector<vpiHandle> GetScopes(vpiHandle scope) const = 0;

    /// The value of the scope's own FOREIGN_OBJECT, nothing when it has none.
    virtual std::optional<std::string> FindForeignText(vpiHandle scope) const = 0;

    virtual std::vector<SPort> GetPorts(vpiHandle scope) const = 0;

    /// The scope's path as it stands in the source, its names separated by '.'.
    virtual std::string GetPath(vpiHandle scope) const;

    /// The characters that write the positions of the nine values, in their order.
    const char* GetLiterals() const { return m_Literals; }

    /// Called for each event that a process is sensitive to. It marks the process; a marked one is not marked again.
    /// All marks are taken off together in one callback.
    void Wake(mtiProcessIdTag& process);

protected:
    enum class ERun { WHEN_MARKED, WHEN_RELEASED };

    /// `release` is the reason of the callback that takes off the marks.
    CSimulator(const char* literals, ERun run, PLI_INT32 release)
        : m_Literals(literals), m_Run(run), m_ReleaseReason(release) {}

private:
    static PLI_INT32 ReleaseMarked(t_cb_data* data);
    void Release();

    const char* m_Literals;
    ERun m_Run;
    PLI_INT32 m_ReleaseReason;
    t_vpi_time m_Now{vpiSimTime, 0, 0, 0}; // a delay of 0; here because GHDL keeps its address
    std::vector<mtiProcessIdTag*> m_Marked, m_Released;
};

/// Processes run when the time step has settled, for a run in the event's own callback would race with the design's
/// always blocks. What they assign starts a new round of the same step.
class CVerilogSimulator : public CSimulator {
protected:
    CVerilogSimulator() : CSimulator("xx01zx01x", ERun::WHEN_RELEASED, cbReadWriteSynch) {}

    /// The value of a parameter that holds text.
    static std::string ReadText(vpiHandle parameter);
};

/// The class for the product name that the simulator gives, null for an unknown one.
std::unique_ptr<CSimulator> MakeSimulator(const std::string& product);

std::unique_ptr<CSimulator> MakeGhdl();
std::unique_ptr<CSimulator> MakeIcarus();
std::unique_ptr<CSimulator> MakeVerilator();

/// A text property, copied: simulators use one buffer for all.
std::string GetText(PLI_INT32 property, vpiHandle object);

/// All objects of a kind in a scope.
std::vector<vpiHandle> GetObjects(PLI_INT32 type, vpiHandle scope);

#endif
