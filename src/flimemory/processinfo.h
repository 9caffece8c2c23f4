// The state of a memory instance and the rules by which it serves its ports.
#ifndef MARLUNE_FLIMEMORY_PROCESSINFO_H
#define MARLUNE_FLIMEMORY_PROCESSINFO_H

#include <cstdint>
#include <memory>
#include <utility>

#include "marlune_int"
#include "mti.h"
#include "src/flimemory/ports.h"
#include "src/flimemory/prefixmap.h"
#include "src/flimemory/storage.h"

namespace marlune::foreign::fli {

class CVectorValues;

/// What an instance carries from one clock edge to the next. The entries are keyed by the port prefix alone: ports of
/// different kinds with one prefix share an entry. TWord is the type of the words that the storage holds.
template <typename TWord>
struct CPipeline {
    explicit CPipeline(std::size_t prefixes)
        : m_ReadOutputs(prefixes), m_ReadSamples(prefixes), m_PendingWrites(prefixes) {}

    /// At the start of an edge: commits the pending writes, and in synchronous mode advances the reads.
    void Advance(CStorage& storage, bool readIsSynchronous);

    /// Records a write that is committed at the next edge; of one prefix only the last counts.
    void Write(std::size_t prefix, std::uint32_t address, const TWord& value) {
        m_PendingWrites.Set(prefix, {address, value});
    }

    CPrefixMap<TWord> m_ReadOutputs;                             // synchronous mode: driven at this edge
    CPrefixMap<TWord> m_ReadSamples;                             // synchronous mode: read from the storage at this edge
    CPrefixMap<std::pair<std::uint32_t, TWord>> m_PendingWrites; // address and value
};

/// One memory instance: its storage, its ports and what it carries from one clock edge to the next.
///
/// Writes are recorded at one edge and committed at the start of the next. Reads answer at once, or in synchronous mode
/// one edge later.
///
/// The values of the ports come either from the simulator's signals or, where the instance is served by direct calls,
/// from vectors of bits. The rules are the same code for both.
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
    bool EvaluateEdge(std::uint32_t now, bool clockIsOne);

    /// Serves all ports at a rising edge, from the signals' present values. Repeating it within one time replaces what
    /// the earlier delta cycles read and recorded.
    void ServePorts();

    /// The same with the values in the vectors.
    void ServePorts(CVectorValues& values);

    mtiRegionIdTag* m_Region;
    std::unique_ptr<CStorage> m_Storage;
    mtiSignalIdTag* m_Clock;
    std::uint32_t m_LastTime = 0; // of the last edge evaluation, in the simulator's unit, low 32 bits
    bool m_LastEdge = false;      // its result
    CPorts m_Ports;
    bool m_ReadIsSynchronous;

private:
    template <typename TValues>
    void Serve(TValues& values);

    // The one that fits the storage is in use: numbers for 64-bit cells, wide words for all others.
    CPipeline<std::uint64_t> m_Numbers;
    CPipeline<CStorage::CWord> m_Words;
};

} // namespace marlune::foreign::fli

#endif
