// Decides what is a clock edge, and serves the ports at it.
#include "src/flimemory/processinfo.h"

#include <utility>

#include "src/flimemory/signalvalue.h"

namespace marlune::foreign::fli {

namespace {

using CWord = CStorage::CWord;

/// The values of ports that are the simulator's signals.
class CSignalValues {
public:
    static constexpr bool IS_FREE = false; // each value costs several calls

    static std::uint32_t Address(const CPortSignal& signal) {
        return static_cast<std::uint32_t>(marlune::fli::GetLow64(signal.m_Handle));
    }
    /// Only a value of exactly 1 is active; 3 on a two-bit enable is not.
    static bool IsActive(const CPortSignal& signal) { return marlune::fli::IsOne(signal.m_Handle); }

    static void Get(const CPortSignal& signal, std::uint64_t& value) {
        value = marlune::fli::GetLow64(signal.m_Handle);
    }
    static void Get(const CPortSignal& signal, CWord& value) { value = marlune::fli::GetValue(signal.m_Handle); }

    template <typename TWord>
    static void Drive(const CPortSignal& signal, mtiDriverIdTag* driver, const TWord& value) {
        marlune::fli::SetValue(signal.m_Handle, value, driver, 0, MTI_INERTIAL);
    }
};

} // namespace

CProcessInfo::CProcessInfo(mtiRegionIdTag* region, std::unique_ptr<CStorage> storage, mtiSignalIdTag* clock,
                           CPorts ports, bool readIsSynchronous)
    : m_Region(region), m_Storage(std::move(storage)), m_Clock(clock), m_Ports(std::move(ports)),
      m_ReadIsSynchronous(readIsSynchronous), m_Numbers(m_Ports.m_ReadPrefixes, m_Ports.m_WritePrefixes),
      m_Words(m_Storage->HoldsNumbers() ? 0 : m_Ports.m_ReadPrefixes,
              m_Storage->HoldsNumbers() ? 0 : m_Ports.m_WritePrefixes) {}

bool CProcessInfo::IsRisingEdgeCLK() {
    const auto now = static_cast<std::uint32_t>(mti_Now());
    return EvaluateEdge(now, marlune::fli::IsOne(m_Clock));
}

void CProcessInfo::ServePorts() {
    CSignalValues values;
    ServePorts(values, false);
}

} // namespace marlune::foreign::fli
