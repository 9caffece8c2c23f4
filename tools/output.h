// Where a command writes.
#ifndef MARLUNE_TOOLS_OUTPUT_H
#define MARLUNE_TOOLS_OUTPUT_H

#include <functional>
#include <iosfwd>
#include <string>

namespace marlune::tool {

/// Replaces the file `target` by what `write` stores in the file whose path it gets. That is a temporary file in the
/// same folder, which takes the target's place once it is complete and on the disk. If anything throws, the temporary
/// file is removed and the target stays as it was. A device or a pipe is written to directly. Throws
/// std::runtime_error.
void ReplaceFile(const std::string& target, const std::function<void(const std::string& path)>& write);

/// The same for a text or for bytes; an empty `target` is standard output.
void WriteOutput(const std::string& target, const std::function<void(std::ostream& out)>& write);

/// "cannot write 'name': No space left on device" (the reason from errno unless that is 0).
[[noreturn]] void ThrowCannotWrite(const std::string& name);

} // namespace marlune::tool

#endif
