// The hash of tables whose keys come from files.
#ifndef MARLUNE_OBJECTFILE_SEEDEDHASH_H
#define MARLUNE_OBJECTFILE_SEEDEDHASH_H

#include <cstddef>
#include <string_view>

namespace ObjectFile {

/// SipHash-1-3 (J.-P. Aumasson, D. J. Bernstein, "SipHash: a fast short-input PRF", 2012) with a key that changes from
/// process to process, so that no file can be made whose names collide.
struct CSeededHash {
    std::size_t operator()(std::string_view text) const;
};

} // namespace ObjectFile

#endif
