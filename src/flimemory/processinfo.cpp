#include "src/flimemory/processinfo.h"

#include <utility>

#include "src/flimemory/signalvalue.h"
#include "src/flimemory/vectorvalues.h"

namespace marlune::foreign::fli {

namespace {

using CWord = CStorage::CWord;

/// The values of ports that are the simulator's signals.
class CSignalValues {
public:
    static std::uint32_t Address(mtiSignalIdTag* signal) {
        return static_cast<std::uint32_t>(marlune::fli::GetLow64(signal));
    }
    /// Only a value of exactly 1 is active; 3 on a two-bit enable is not.
    static bool IsActive(mtiSignalIdTag* signal) { return marlune::fli::IsOne(signal); }

    static void Get(mtiSignalIdTag* signal, std::uint64_t& value) { value = marlune::fli::GetLow64(signal); }
    static void Get(mtiSignalIdTag* signal, CWord& value) { value = marlune::fli::GetValue(signal); }

    template <typename TWord>
    static void Drive(mtiSignalIdTag* signal, mtiDriverIdTag* driver, const TWord& value) {
        marlune::fli::SetValue(signal, value, driver, 0, MTI_INERTIAL);
    }
};

/// One run through all ports of an instance. TValues is where their values come from.
template <typename TWord, typename TValues>
class CPass {
public:
    CPass(CProcessInfo& process, CPipeline<TWord>& pipeline, TValues& values)
        : m_Storage(*process.m_Storage), m_Ports(process.m_Ports), m_Pipeline(pipeline), m_Values(values),
          m_ReadIsSynchronous(process.m_ReadIsSynchronous) {}

    void Run() {
        for (const auto& [prefix, port] : m_Ports.m_ReadPorts) { // whatever the read enable says
            Read(port.m_Prefix, port.m_Address, port.m_Data, port.m_Driver);
        }
        for (const auto& [prefix, port] : m_Ports.m_SharedPorts) {
            if (port.IsReadEnabled(m_Values)) {
                Read(port.m_Prefix, port.m_Address, port.m_ReadData, port.m_Driver);
            }
        }
        for (const auto& [prefix, port] : m_Ports.m_WritePorts) {
            RecordWrite(port.m_Prefix, m_Values.IsActive(port.m_Enable), port.m_Address, port.m_Data);
        }
        for (const auto& [prefix, port] : m_Ports.m_SharedPorts) {
            RecordWrite(port.m_Prefix, port.IsReadEnabled(m_Values) && m_Values.IsActive(port.m_WriteEnable),
                        port.m_Address, port.m_WriteData);
        }
    }

private:
    void Read(std::size_t prefix, mtiSignalIdTag* address, mtiSignalIdTag* data, mtiDriverIdTag* driver) {
        TWord word;
        m_Storage.Read(m_Values.Address(address), word);
        if (m_ReadIsSynchronous) {
            m_Pipeline.m_ReadSamples.Set(prefix, word);
            m_Values.Drive(data, driver, m_Pipeline.m_ReadOutputs[prefix]);
        } else {
            m_Values.Drive(data, driver, word);
        }
    }

    void RecordWrite(std::size_t prefix, bool enabled, mtiSignalIdTag* address, mtiSignalIdTag* data) {
        if (!enabled) {
            m_Pipeline.m_PendingWrites.erase(prefix);
            return;
        }
        TWord value;
        m_Values.Get(data, value);
        m_Pipeline.Write(prefix, m_Values.Address(address), value);
    }

    CStorage& m_Storage;
    const CPorts& m_Ports;
    CPipeline<TWord>& m_Pipeline;
    TValues& m_Values;
    const bool m_ReadIsSynchronous;
};

} // namespace

template <typename TWord>
void CPipeline<TWord>::Advance(CStorage& storage, bool readIsSynchronous) {
    if (readIsSynchronous) {
        m_ReadOutputs.swap(m_ReadSamples);
        m_ReadSamples.clear();
    }
    m_PendingWrites.ForEach([&](const auto& write) { storage.Write(write.first, write.second); });
    m_PendingWrites.clear();
}

CProcessInfo::CProcessInfo(mtiRegionIdTag* region, std::unique_ptr<CStorage> storage, mtiSignalIdTag* clock,
                           CPorts ports, bool readIsSynchronous)
    : m_Region(region), m_Storage(std::move(storage)), m_Clock(clock), m_Ports(std::move(ports)),
      m_ReadIsSynchronous(readIsSynchronous), m_Numbers(m_Storage->HoldsNumbers() ? m_Ports.m_PrefixCount : 0),
      m_Words(m_Storage->HoldsNumbers() ? 0 : m_Ports.m_PrefixCount) {}

bool CProcessInfo::IsRisingEdgeCLK() {
    const auto now = static_cast<std::uint32_t>(mti_Now());
    return EvaluateEdge(now, marlune::fli::IsOne(m_Clock));
}

bool CProcessInfo::EvaluateEdge(std::uint32_t now, bool clockIsOne) {
    if (now == m_LastTime) {
        return m_LastEdge;
    }
    m_LastEdge = !m_LastEdge && clockIsOne;
    m_LastTime = now;
    if (m_LastEdge && m_Storage->HoldsNumbers()) {
        m_Numbers.Advance(*m_Storage, m_ReadIsSynchronous);
    } else if (m_LastEdge) {
        m_Words.Advance(*m_Storage, m_ReadIsSynchronous);
    }
    return m_LastEdge;
}

template <typename TValues>
void CProcessInfo::Serve(TValues& values) {
    if (m_Storage->HoldsNumbers()) {
        CPass<std::uint64_t, TValues>(*this, m_Numbers, values).Run();
    } else {
        CPass<CWord, TValues>(*this, m_Words, values).Run();
    }
}

void CProcessInfo::ServePorts() {
    CSignalValues values;
    Serve(values);
}

void CProcessInfo::ServePorts(CVectorValues& values) {
    Serve(values);
}

} // namespace marlune::foreign::fli
