// The names by which a test bench knows memories.
#ifndef MARLUNE_FLIMEMORY_PROJECTNAME_H
#define MARLUNE_FLIMEMORY_PROJECTNAME_H

#include <string>

namespace marlune {

/// Replaces each occurrence of from in the text. With wholeWord an occurrence that has a letter, a digit, "_" or "-"
/// beside it is left alone.
void RewriteString(std::string& text, const std::string& from, const std::string& to, bool wholeWord);

/// The name under which a memory instance is known to a test bench: the name with each of
/// - = / * + % . : , blank ( ) [ ] { } > < @ # & \ turned into "_".
std::string FixProjectName(const std::string& name);

} // namespace marlune

#endif
