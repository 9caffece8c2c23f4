// What a simulator calls after it has loaded this library for VPI.
#include "bridge/core/failure.h"
#include "bridge/vpi/host.h"

namespace marlune::bridge {

namespace {

/// The simulator has built the design.
PLI_INT32 OnStart(t_cb_data* /*data*/) {
    t_vpi_vlog_info info{};
    vpi_get_vlog_info(&info);
    const std::string product = info.product != nullptr ? info.product : "";
    std::unique_ptr<CVpiHost> made = MakeVpiHost(product);
    if (made == nullptr) {
        Fail("", "The bridge does not know the simulator '" + product + "'.");
    }
    CVpiHost& host = *made;
    GetSimulation().SetHost(std::move(made));
    host.Elaborate();
    return 0;
}

PLI_INT32 OnEnd(t_cb_data* /*data*/) {
    GetSimulation().Quit();
    return 0;
}

void RegisterCallbacks() {
    t_cb_data start{cbStartOfSimulation, OnStart, nullptr, nullptr, nullptr, 0, nullptr};
    vpi_register_cb(&start);
    t_cb_data end{cbEndOfSimulation, OnEnd, nullptr, nullptr, nullptr, 0, nullptr};
    vpi_register_cb(&end);
}

} // namespace

} // namespace marlune::bridge

extern "C" {
extern void (*vlog_startup_routines[])();
void (*vlog_startup_routines[])() = {marlune::bridge::RegisterCallbacks, nullptr};
}
