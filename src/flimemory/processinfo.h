// A memory instance and the rules by which it recognises clock edges.
#ifndef MARLUNE_FLIMEMORY_PROCESSINFO_H
#define MARLUNE_FLIMEMORY_PROCESSINFO_H

#include <cstdint>
#include <memory>

#include "mti.h"
#include "src/flimemory/pipeline.h"
#include "src/flimemory/ports.h"
#include "src/flimemory/storage.h"

namespace marlune::foreign::fli {

/// One memory instance: its storage, its ports and what it carries from one clock edge to the next.
///
/// Writes are recorded at one edge and committed at the start of the next. Reads answer at once, or in synchronous mode
/// one edge later.
class CProcessInfo {
public:
    CProcessInfo(mtiRegionIdTag* region, std::unique_ptr<CStorage> storage, mtiSignalIdTag* clock, CPorts ports,
                 bool readIsSynchronous);

    /// Whether the current simulation time is that of a rising edge, by the simulator's time and clock signal.
    bool IsRisingEdgeCLK();

    /// Whether now is the time of a rising edge. The first evaluation at a time decides for all later ones at that
    /// time. An edge is reported only if the previous evaluation was not one. While the clock stays at 1, evaluations
    /// at successive times alternate: edge, no edge, edge. An edge commits the pending writes and advances the read
    /// pipeline. Time 0 is never that of an edge.
    bool EvaluateEdge(std::uint32_t now, bool clockIsOne) {
        if (now == m_LastTime) {
            return m_LastEdge;
        }
        m_LastEdge = !m_LastEdge && clockIsOne;
        m_LastTime = now;
        if (m_LastEdge) {
            WithPipeline([this](auto& pipeline) { pipeline.Advance(*m_Storage, m_ReadIsSynchronous); });
        }
        return m_LastEdge;
    }

    /// Serves all ports at a rising edge, from the signals' current values. A repetition within one time replaces what
    /// the earlier delta cycles read and recorded.
    void ServePorts();

    /// The same with values from elsewhere. With `ahead` it leaves out what the next pass at the same time will
    /// replace.
    template <typename TValues>
    void ServePorts(TValues& values, bool ahead) {
        WithPipeline(
            [&](auto& pipeline) { CPass(*m_Storage, m_Ports, m_ReadIsSynchronous, pipeline, values).Run(ahead); });
    }

    /// Commits the pending writes without an edge.
    void CommitWrites() {
        WithPipeline([this](auto& pipeline) { pipeline.CommitWrites(*m_Storage); });
    }

    mtiRegionIdTag* m_Region;
    std::unique_ptr<CStorage> m_Storage;
    mtiSignalIdTag* m_Clock;
    std::uint32_t m_LastTime = 0; // of the last edge evaluation, in the simulator's unit, low 32 bits
    bool m_LastEdge = false;      // its result
    CPorts m_Ports;
    bool m_ReadIsSynchronous;

private:
    template <typename TAction>
    void WithPipeline(TAction&& action) {
        if (m_Storage->HoldsNumbers()) {
            action(m_Numbers);
        } else {
            WithWords(action);
        }
    }

    /// Kept out of line, so that the path for numbers stays short.
    template <typename TAction>
    [[gnu::noinline]] void WithWords(TAction& action) {
        action(m_Words);
    }

    // Which of them is in use depends on the storage.
    CPipeline<std::uint64_t> m_Numbers;
    CPipeline<CStorage::CWord> m_Words;
};

} // namespace marlune::foreign::fli

#endif
