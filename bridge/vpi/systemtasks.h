// Test bench access in Verilog simulators with VPI: $marlune_load_image, $marlune_load_bank, $marlune_poke,
// $marlune_peek.
#ifndef MARLUNE_BRIDGE_VPI_SYSTEMTASKS_H
#define MARLUNE_BRIDGE_VPI_SYSTEMTASKS_H

namespace marlune::bridge {

/// Registers the tasks. To be called before the simulator reads the design.
void RegisterSystemTasks();

} // namespace marlune::bridge

#endif
