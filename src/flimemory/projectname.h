// The names by which a test bench knows memories.
#ifndef MARLUNE_FLIMEMORY_PROJECTNAME_H
#define MARLUNE_FLIMEMORY_PROJECTNAME_H

#include <string>

namespace marlune {

/// Replaces each occurrence of `from` in the text by `to`. With `wholeWord` it skips an occurrence that has a letter, a
/// digit, "_" or "-" beside it.
void RewriteString(std::string& text, const std::string& from, const std::string& to, bool wholeWord);

/// The name under which a test bench knows a memory instance: `name` with "_" in place of each of
/// - = / * + % . : , blank ( ) [ ] { } > < @ # & \ .
std::string FixProjectName(const std::string& name);

} // namespace marlune

#endif
