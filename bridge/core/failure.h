// How a simulation ends when something is wrong.
#ifndef MARLUNE_BRIDGE_CORE_FAILURE_H
#define MARLUNE_BRIDGE_CORE_FAILURE_H

#include <string>

namespace marlune::bridge {

/// Prints an error to the standard error stream. `path` names the instance concerned; it may be empty.
void PrintError(const std::string& path, const std::string& text);

/// Prints a warning in the same form.
void PrintWarning(const std::string& path, const std::string& text);

/// Ends the simulation with exit status 1. The process ends at once: through VPI, GHDL cannot be stopped and Icarus
/// would exit with status 0. Handlers for the end of the process run.
[[noreturn]] void Stop();

/// Whether Stop has been called.
bool HasFailed();

/// PrintError, then Stop.
[[noreturn]] void Fail(const std::string& path, const std::string& text);

} // namespace marlune::bridge

#endif
