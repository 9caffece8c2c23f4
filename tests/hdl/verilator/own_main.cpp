// A user's own main program. With +still it forgets to advance the time.
#include "Vclocked.h"
#include "verilated.h"

int main(int argc, char** argv) {
    VerilatedContext context;
    context.commandArgs(argc, argv);
    const bool isStill = *context.commandArgsPlusMatch("still") != '\0';
    Vclocked model(&context, "");
    for (int half = 0; half < 5; ++half) {
        model.clk = half % 2;
        model.eval();
        if (!isStill) {
            context.timeInc(1);
        }
    }
    model.final();
    return model.q == 0x5A ? 0 : 2;
}
