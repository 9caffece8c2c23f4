// What a simulator calls after it has loaded this library for VPI.
#include <memory>
#include <string>
#include <utility>

#include "bridge/core/failure.h"
#include "bridge/vpi/host.h"
#include "bridge/vpi/systemtasks.h"

namespace marlune::bridge {

namespace {

std::string GetProduct() {
    t_vpi_vlog_info info{};
    vpi_get_vlog_info(&info);
    return info.product != nullptr ? info.product : "";
}

/// The simulator has built the design.
PLI_INT32 OnStart(t_cb_data* /*data*/) {
    std::unique_ptr<CVpiHost> made = MakeVpiHost(GetProduct());
    if (made == nullptr) {
        Fail("", "The bridge does not know the simulator '" + GetProduct() + "'.");
    }
    CVpiHost& host = *made;
    GetSimulation().SetHost(std::move(made));
    host.Elaborate();
    GetSimulation().Start();
    return 0;
}

PLI_INT32 OnEnd(t_cb_data* /*data*/) {
    GetSimulation().Quit();
    return 0;
}

void Register() {
    if (GetProduct() != "GHDL") { // VHDL has no system tasks
        RegisterSystemTasks();
    }
    t_cb_data start{cbStartOfSimulation, OnStart, nullptr, nullptr, nullptr, 0, nullptr};
    vpi_register_cb(&start);
    t_cb_data end{cbEndOfSimulation, OnEnd, nullptr, nullptr, nullptr, 0, nullptr};
    vpi_register_cb(&end);
}

} // namespace

} // namespace marlune::bridge

extern "C" {
extern void (*vlog_startup_routines[])();
void (*vlog_startup_routines[])() = {marlune::bridge::Register, nullptr};
}
