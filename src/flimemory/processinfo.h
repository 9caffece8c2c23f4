#ifndef MARLUNE_FLIMEMORY_PROCESSINFO_H
#define MARLUNE_FLIMEMORY_PROCESSINFO_H

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <utility>

#include "marlune_int"
#include "mti.h"
#include "src/flimemory/prefixmap.h"
#include "src/flimemory/storage.h"

namespace marlune::foreign::fli {

/// The signals of a read port; all handles are the simulator's, null until found or created.
struct CReadPort {
    mtiSignalIdTag* m_Data = nullptr;    // "Q0"
    mtiDriverIdTag* m_Driver = nullptr;  // of m_Data
    mtiSignalIdTag* m_Address = nullptr; // "RA0"
    mtiSignalIdTag* m_Enable = nullptr;  // "RE0"

    bool IsComplete() const { return m_Data != nullptr && m_Address != nullptr && m_Enable != nullptr; }
};

struct CWritePort {
    mtiSignalIdTag* m_Data = nullptr;    // "D0"
    mtiSignalIdTag* m_Address = nullptr; // "WA0"
    mtiSignalIdTag* m_Enable = nullptr;  // "WE0"

    bool IsComplete() const { return m_Data != nullptr && m_Address != nullptr && m_Enable != nullptr; }
};

/// A port that reads and writes at one address.
struct CSharedPort {
    mtiSignalIdTag* m_Address = nullptr;     // "A0"
    mtiSignalIdTag* m_ChipSelect = nullptr;  // "CS0"
    mtiSignalIdTag* m_WriteEnable = nullptr; // "WE0"
    mtiSignalIdTag* m_WriteData = nullptr;   // "D0"
    mtiSignalIdTag* m_ReadData = nullptr;    // "Q0"
    mtiDriverIdTag* m_Driver = nullptr;      // of m_ReadData

    bool IsComplete() const {
        return m_Address != nullptr && m_ChipSelect != nullptr && m_WriteEnable != nullptr && m_WriteData != nullptr &&
               m_ReadData != nullptr;
    }

    /// Whether the chip is selected; the write enable does not matter.
    bool IsReadEnabled() const;
};

/// One memory instance: its storage, its ports and what it carries from one clock edge to the next.
///
/// Writes are recorded at one edge and committed at the start of the next. Reads answer at once, or in synchronous mode
/// one edge later.
class CProcessInfo {
public:
    using CWord = CStorage::CWord;

    CProcessInfo(mtiRegionIdTag* region, std::unique_ptr<CStorage> storage, mtiSignalIdTag* clock,
                 bool readIsSynchronous);

    /// Whether the current simulation time is that of a rising edge. The first call at a time decides for all later
    /// delta cycles of that time; on an edge it also advances the read pipeline and commits the pending writes. What
    /// matters is the result of the evaluation before, not the clock's level then: a wake-up with the clock still at 1
    /// is no edge right behind one, but is at the next time after that.
    bool IsRisingEdgeCLK();

    /// Serves all ports at a rising edge, from the signals' present values. Repeating it within one time replaces what
    /// the earlier delta cycles read and recorded.
    void ServePorts();

    /// Records a write that is committed at the next edge; of one prefix only the last counts.
    void Write(const std::string& prefix, std::uint32_t address, const CWord& value);

    mtiRegionIdTag* m_Region;
    std::unique_ptr<CStorage> m_Storage;
    mtiSignalIdTag* m_Clock;
    std::uint32_t m_LastTime = 0; // low 32 bits of the time of the last edge evaluation
    bool m_LastEdge = false;      // its result
    std::map<std::string, CReadPort> m_ReadPorts;
    std::map<std::string, CWritePort> m_WritePorts;
    std::map<std::string, CSharedPort> m_SharedPorts;

    // Keyed by the port prefix alone: ports of different kinds with one prefix share an entry.
    CPrefixMap<CWord> m_ReadOutputs;                             // synchronous mode: driven at this edge
    CPrefixMap<CWord> m_ReadSamples;                             // synchronous mode: read from the storage at this edge
    CPrefixMap<std::pair<std::uint32_t, CWord>> m_PendingWrites; // address and value
    bool m_ReadIsSynchronous;

private:
    void Read(const std::string& prefix, mtiSignalIdTag* address, mtiSignalIdTag* data, mtiDriverIdTag* driver);
    void RecordWrite(const std::string& prefix, bool enabled, mtiSignalIdTag* address, mtiSignalIdTag* data);
};

} // namespace marlune::foreign::fli

#endif
