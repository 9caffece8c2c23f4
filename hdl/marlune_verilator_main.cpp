// The main program of a Verilator model whose memories are the library's. The one that Verilator generates makes no VPI
// calls. Build with --prefix Vtop; marlune_memory.vlt and docs/simulators.md have the rest.
#include <cstdio>
#include <memory>

#include "Vtop.h"
#include "verilated.h"
#include "verilated_vpi.h"

extern "C" {
extern void (*vlog_startup_routines[])(); // in the bridge
}

namespace {

/// One time slot. Value callbacks mark the memories' processes, which run in cbReadWriteSynch and may drive new values:
/// those start another round.
void RunTimeSlot(Vtop& top) {
    bool hasCalled = true;
    while (hasCalled) {
        top.eval();
        hasCalled = VerilatedVpi::callValueCbs();
        hasCalled = VerilatedVpi::callCbs(cbReadWriteSynch) || hasCalled;
    }
}

} // namespace

int main(int argc, char** argv) {
    const auto context = std::make_unique<VerilatedContext>();
    context->commandArgs(argc, argv);
    const auto top = std::make_unique<Vtop>(context.get(), ""); // no name: paths begin with the test bench's
    for (auto* routine = vlog_startup_routines; *routine != nullptr; ++routine) {
        (*routine)();
    }
    VerilatedVpi::callCbs(cbStartOfSimulation);

    RunTimeSlot(*top);
    while (!context->gotFinish() && top->eventsPending()) {
        context->time(top->nextTimeSlot());
        RunTimeSlot(*top);
    }
    const bool isFinished = context->gotFinish();
    if (!isFinished) {
        std::fputs("error: nothing is left to happen, and $finish was not called\n", stderr);
    }
    top->final(); // final blocks may still look into memories, which the callback takes away
    VerilatedVpi::callCbs(cbEndOfSimulation);
    return isFinished ? 0 : 1;
}
