#include "bridge/vpi/failure.h"

#include "bridge/vpi/bridge.h"

#include <cstdio>
#include <cstdlib>

void PrintError(const std::string& text) {
    const std::string& path = GetBridge().GetElaboratedPath();
    const std::string line = "fatal error: " + (path.empty() ? "" : "'" + path + "': ") + text + "\n";
    std::fflush(nullptr); // the simulator's own output first
    std::fputs(line.c_str(), stderr);
}

void Stop() {
    std::fflush(nullptr);
    std::exit(EXIT_FAILURE);
}

void Fail(const std::string& text) {
    PrintError(text);
    Stop();
}
