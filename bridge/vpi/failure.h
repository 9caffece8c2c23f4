#ifndef MARLUNE_BRIDGE_VPI_FAILURE_H
#define MARLUNE_BRIDGE_VPI_FAILURE_H

#include <string>

/// Prints an error on the standard error stream, with the path of the instance that is being elaborated, if any.
void PrintError(const std::string& text);

/// Ends the simulation with exit status 1. The process ends at once: through VPI, GHDL cannot be stopped and Icarus
/// would exit with status 0.
[[noreturn]] void Stop();

/// PrintError, then Stop.
[[noreturn]] void Fail(const std::string& text);

#endif
