#include "bridge/vpi/process.h"

#include "bridge/vpi/bridge.h"
#include "bridge/vpi/signal.h"

#include <algorithm>

namespace {

PLI_INT32 WakeProcess(t_cb_data* data) {
    GetBridge().GetSimulator().Wake(*reinterpret_cast<mtiProcessIdTag*>(data->user_data));
    return 0;
}

// GHDL keeps the addresses of what a callback is registered with.
t_vpi_time g_NoTime{vpiSuppressTime, 0, 0, 0};
t_vpi_value g_NoValue{vpiSuppressVal, {nullptr}};

} // namespace

void mtiProcessIdTag::Sensitize(mtiSignalIdT signal) {
    if (std::find(m_Signals.begin(), m_Signals.end(), signal) != m_Signals.end()) {
        return;
    }
    m_Signals.push_back(signal);
    t_cb_data data{cbValueChange, WakeProcess, signal->GetObject(),          &g_NoTime,
                   &g_NoValue,    0,           reinterpret_cast<char*>(this)};
    vpi_register_cb(&data);
}
