// Prints errors and warnings, and ends the simulation.
#include "bridge/core/failure.h"

#include <cstdio>
#include <cstdlib>

namespace marlune::bridge {

namespace {

bool g_HasFailed = false;

void Print(const char* kind, const std::string& path, const std::string& text) {
    const std::string line = kind + (path.empty() ? "" : "'" + path + "': ") + text + "\n";
    std::fflush(nullptr); // the simulator's own output first
    std::fputs(line.c_str(), stderr);
}

} // namespace

void PrintError(const std::string& path, const std::string& text) {
    Print("fatal error: ", path, text);
}

void PrintWarning(const std::string& path, const std::string& text) {
    Print("warning: ", path, text);
}

void Stop() {
    std::fflush(nullptr);
    if (g_HasFailed) { // in a handler, which must not call exit again
        std::_Exit(EXIT_FAILURE);
    }
    g_HasFailed = true;
    std::exit(EXIT_FAILURE);
}

bool HasFailed() {
    return g_HasFailed;
}

void Fail(const std::string& path, const std::string& text) {
    PrintError(path, text);
    Stop();
}

} // namespace marlune::bridge
