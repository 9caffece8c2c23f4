// Test bench access in Verilog simulators with VPI: $marlune_load_image, $marlune_load_bank, $marlune_poke,
// $marlune_peek.
#ifndef MARLUNE_BRIDGE_VPI_SYSTEMTASKS_H
#define MARLUNE_BRIDGE_VPI_SYSTEMTASKS_H

namespace marlune::bridge {

/// Makes the tasks known to the simulator; to be called before it reads the design.
void RegisterSystemTasks();

} // namespace marlune::bridge

#endif
