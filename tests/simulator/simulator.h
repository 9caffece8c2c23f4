// A simulator in the process of the tests.
#ifndef MARLUNE_TESTS_SIMULATOR_H
#define MARLUNE_TESTS_SIMULATOR_H

#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "mti.h"
#include "src/flimemory/direct.h"

// The handle types of the interface are this simulator's own records.
struct mtiTypeIdTag {
    mtiTypeKindT m_Kind;
    int m_Length = 1;
    mtiTypeIdT m_Element = nullptr;
};
struct mtiProcessIdTag {
    mtiVoidFuncPtrT m_Function;
    void* m_Argument;
};
struct mtiSignalIdTag {
    marlune_direct_signal m_Place{}; // where direct calls have the value
    std::string m_Name;
    mtiTypeIdT m_Type;
    std::string m_Value; // one enumeration position per element
    std::vector<mtiProcessIdT> m_Sensitive;
    int m_Assignments = 0; // by the library
};
struct mtiDriverIdTag {
    mtiSignalIdT m_Signal;
    mtiProcessIdT m_Owner = nullptr;
};
struct mtiRegionIdTag {
    std::string m_Path;
};

/// A simulator in this process: signals, drivers, processes with delta cycles, callbacks, transcript and command log,
/// and an account of the memory that it lends. It defines the functions of the foreign language interface. One at a
/// time.
class CSimulator {
public:
    CSimulator();
    ~CSimulator();
    CSimulator(const CSimulator&) = delete;
    CSimulator& operator=(const CSimulator&) = delete;

    static CSimulator& Current();

    // The design. Values are written as text, "0", "1" or any other letter of std_logic, first element first.
    mtiSignalIdT AddSignal(const std::string& name, int length); // length 0: a single std_logic
    mtiSignalIdT AddSignal(const std::string& name, mtiTypeKindT kind, mtiTypeKindT elementKind);
    mtiSignalIdT Signal(const std::string& name);
    std::string Value(const std::string& name);

    /// Elaborates an instance with the ports, in this order; each is connected to the signal of its name after the
    /// scope, and one without such a signal is left open.
    using CInit = void (*)(mtiRegionIdT, char*, mtiInterfaceListT*, mtiInterfaceListT*);
    void Elaborate(CInit init, const std::string& path, const std::string& parameters,
                   const std::vector<std::string>& ports, const std::string& scope = "");

    /// Changes signals in one delta cycle of the present time, and runs delta cycles until all is quiet.
    using CChanges = std::vector<std::pair<std::string, std::string>>;
    void Set(const CChanges& changes);
    void AdvanceTo(int time) { m_Now = time; }

    void Quit() { RunCallbacks(m_QuitCallbacks); }
    void Restart() { RunCallbacks(m_RestartCallbacks); }
    /// Takes the design down, at time 0 again; only after a restart.
    void Reset();

    std::string TakeTranscript() { return std::exchange(m_Transcript, ""); }
    std::vector<std::string> TakeLog() { return std::exchange(m_Log, {}); }

    using CCallbacks = std::vector<std::pair<mtiVoidFuncPtrT, void*>>;
    std::string m_Transcript;
    std::vector<std::string> m_Log; // commands, fatal errors and calls that build or drive, in order
    int m_Now = 0;
    std::set<void*> m_Lent; // buffers not yet given back
    CCallbacks m_QuitCallbacks;
    CCallbacks m_RestartCallbacks;
    std::deque<mtiDriverIdTag> m_Drivers;
    std::deque<mtiProcessIdTag> m_Processes;
    CChanges m_Scheduled; // for the next delta cycle, as enumeration positions

    void* Lend(const std::string& content);

private:
    void RunDeltas(CChanges changes);
    void RunCallbacks(CCallbacks& callbacks);

    std::deque<mtiTypeIdTag> m_Types;
    std::map<std::string, mtiSignalIdTag> m_Signals;
    std::deque<mtiRegionIdTag> m_Regions;
};

#endif
