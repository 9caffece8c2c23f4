#include "src/flimemory/processinfo.h"

#include <utility>

#include "src/flimemory/signalvalue.h"

namespace marlune::foreign::fli {

using marlune::fli::GetValue;
using marlune::fli::SetValue;

namespace {

/// Only a value of exactly 1 is active; 3 on a two-bit enable is not.
bool IsActive(mtiSignalIdTag* signal) {
    return GetValue(signal).IsOne();
}

} // namespace

bool CSharedPort::IsReadEnabled() const {
    return IsActive(m_ChipSelect);
}

CProcessInfo::CProcessInfo(mtiRegionIdTag* region, std::unique_ptr<CStorage> storage, mtiSignalIdTag* clock,
                           bool readIsSynchronous)
    : m_Region(region), m_Storage(std::move(storage)), m_Clock(clock), m_ReadIsSynchronous(readIsSynchronous) {}

bool CProcessInfo::IsRisingEdgeCLK() {
    const auto now = static_cast<std::uint32_t>(mti_Now());
    const bool clockIsOne = IsActive(m_Clock);
    if (now == m_LastTime) {
        return m_LastEdge;
    }
    m_LastEdge = !m_LastEdge && clockIsOne;
    m_LastTime = now;
    if (!m_LastEdge) {
        return false;
    }
    if (m_ReadIsSynchronous) {
        m_ReadOutputs.swap(m_ReadSamples);
        m_ReadSamples.clear();
    }
    m_PendingWrites.ForEach([this](const std::string&, const std::pair<std::uint32_t, CWord>& write) {
        m_Storage->Write(write.first, write.second);
    });
    m_PendingWrites.clear();
    return true;
}

void CProcessInfo::ServePorts() {
    for (const auto& [prefix, port] : m_ReadPorts) { // whatever the read enable says
        Read(prefix, port.m_Address, port.m_Data, port.m_Driver);
    }
    for (const auto& [prefix, port] : m_SharedPorts) {
        if (port.IsReadEnabled()) {
            Read(prefix, port.m_Address, port.m_ReadData, port.m_Driver);
        }
    }
    for (const auto& [prefix, port] : m_WritePorts) {
        RecordWrite(prefix, IsActive(port.m_Enable), port.m_Address, port.m_Data);
    }
    for (const auto& [prefix, port] : m_SharedPorts) {
        RecordWrite(prefix, port.IsReadEnabled() && IsActive(port.m_WriteEnable), port.m_Address, port.m_WriteData);
    }
}

void CProcessInfo::Write(const std::string& prefix, std::uint32_t address, const CWord& value) {
    m_PendingWrites[prefix] = {address, value};
}

void CProcessInfo::Read(const std::string& prefix, mtiSignalIdTag* address, mtiSignalIdTag* data,
                        mtiDriverIdTag* driver) {
    const CWord word = m_Storage->Read(static_cast<std::uint32_t>(GetValue(address)));
    if (m_ReadIsSynchronous) {
        m_ReadSamples[prefix] = word;
        SetValue(data, m_ReadOutputs[prefix], driver, 0, MTI_INERTIAL);
    } else {
        SetValue(data, word, driver, 0, MTI_INERTIAL);
    }
}

void CProcessInfo::RecordWrite(const std::string& prefix, bool enabled, mtiSignalIdTag* address, mtiSignalIdTag* data) {
    if (!enabled) {
        m_PendingWrites.erase(prefix);
        return;
    }
    const CWord value = GetValue(data);
    Write(prefix, static_cast<std::uint32_t>(GetValue(address)), value);
}

} // namespace marlune::foreign::fli
