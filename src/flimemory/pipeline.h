// The state of a memory instance between clock edges, and the passes over its ports at an edge.
#ifndef MARLUNE_FLIMEMORY_PIPELINE_H
#define MARLUNE_FLIMEMORY_PIPELINE_H

#include <cstddef>
#include <cstdint>
#include <utility>

#include "mti.h"
#include "src/flimemory/ports.h"
#include "src/flimemory/prefixmap.h"
#include "src/flimemory/storage.h"

namespace marlune::foreign::fli {

/// The state between edges. Its entries are keyed by the port prefix alone: ports of different kinds with one prefix
/// share an entry. TWord is the type of the words that the storage holds.
template <typename TWord>
struct CPipeline {
    CPipeline(std::size_t readPrefixes, std::size_t writePrefixes)
        : m_ReadOutputs(readPrefixes), m_ReadSamples(readPrefixes), m_PendingWrites(writePrefixes) {}

    /// At the start of an edge: commits the pending writes, and in synchronous mode advances the reads.
    void Advance(CStorage& storage, bool readIsSynchronous) {
        if (readIsSynchronous) {
            m_ReadOutputs.swap(m_ReadSamples);
            m_ReadSamples.clear();
        }
        CommitWrites(storage);
    }

    void CommitWrites(CStorage& storage) {
        m_PendingWrites.Drain([&](const auto& write) { storage.Write(write.first, write.second); });
    }

    /// Records a write, to be committed at the next edge. It replaces an earlier one of the same prefix.
    void Write(std::size_t prefix, std::uint32_t address, const TWord& value) {
        m_PendingWrites.Set(prefix, {address, value});
    }

    CPrefixMap<TWord> m_ReadOutputs;                             // synchronous mode: driven at this edge
    CPrefixMap<TWord> m_ReadSamples;                             // synchronous mode: read from the storage at this edge
    CPrefixMap<std::pair<std::uint32_t, TWord>> m_PendingWrites; // address and value
};

/// A pass over all ports of an instance at an edge. TValues is where the values of signals come from and go to. If its
/// IS_FREE is true, reading a value that is not needed costs nothing.
template <typename TWord, typename TValues>
class CPass {
public:
    CPass(CStorage& storage, const CPorts& ports, bool readIsSynchronous, CPipeline<TWord>& pipeline, TValues& values)
        : m_Storage(storage), m_Ports(ports), m_Pipeline(pipeline), m_Values(values),
          m_ReadIsSynchronous(readIsSynchronous) {}

    /// With `ahead` the pass leaves out what the next pass at the same time will replace.
    void Run(bool ahead) {
        if (ahead && m_Ports.m_SharedPorts.empty()) { // a shared port may be deselected by then
            DriveOutputs();
            return;
        }
        for (const CReadPort& port : m_Ports.m_ReadPorts) { // the read enable is ignored
            Read(port.m_ReadPrefix, port.m_Address, port.m_Data, port.m_Driver);
        }
        for (const CSharedPort& port : m_Ports.m_SharedPorts) {
            if (port.IsReadEnabled(m_Values)) {
                Read(port.m_ReadPrefix, port.m_Address, port.m_ReadData, port.m_Driver);
            }
        }
        for (const CWritePort& port : m_Ports.m_WritePorts) {
            RecordWrite(port.m_WritePrefix, m_Values.IsActive(port.m_Enable), port.m_Address, port.m_Data);
        }
        for (const CSharedPort& port : m_Ports.m_SharedPorts) {
            RecordWrite(port.m_WritePrefix, port.IsReadEnabled(m_Values) && m_Values.IsActive(port.m_WriteEnable),
                        port.m_Address, port.m_WriteData);
        }
    }

private:
    void DriveOutputs() {
        if (m_ReadIsSynchronous) {
            for (const CReadPort& port : m_Ports.m_ReadPorts) {
                m_Values.Drive(port.m_Data, port.m_Driver, m_Pipeline.m_ReadOutputs[port.m_ReadPrefix]);
            }
        }
    }

    void Read(std::size_t prefix, const CPortSignal& address, const CPortSignal& data, mtiDriverIdTag* driver) {
        TWord word;
        m_Storage.Read(m_Values.Address(address), word);
        if (m_ReadIsSynchronous) {
            m_Pipeline.m_ReadSamples.Set(prefix, word);
            m_Values.Drive(data, driver, m_Pipeline.m_ReadOutputs[prefix]);
        } else {
            m_Values.Drive(data, driver, word);
        }
    }

    void RecordWrite(std::size_t prefix, bool enabled, const CPortSignal& address, const CPortSignal& data) {
        if (TValues::IS_FREE || enabled) {
            TWord value;
            m_Values.Get(data, value);
            m_Pipeline.Write(prefix, m_Values.Address(address), value);
        }
        if (!enabled) {
            m_Pipeline.m_PendingWrites.erase(prefix);
        }
    }

    CStorage& m_Storage;
    const CPorts& m_Ports;
    CPipeline<TWord>& m_Pipeline;
    TValues& m_Values;
    const bool m_ReadIsSynchronous;
};

} // namespace marlune::foreign::fli

#endif
