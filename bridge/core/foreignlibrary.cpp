// Loads foreign libraries and makes the interface visible to them.
#include "bridge/core/foreignlibrary.h"

#include <dlfcn.h>

#include "bridge/core/failure.h"

namespace marlune::bridge {

namespace {

/// Simulators load this library for themselves only, but a foreign library's mti_* functions are looked up among global
/// names.
void MakeOwnNamesGlobal(const std::string& path) {
    Dl_info self{};
    if (dladdr(reinterpret_cast<void*>(&MakeOwnNamesGlobal), &self) == 0 ||
        dlopen(self.dli_fname, RTLD_NOW | RTLD_GLOBAL | RTLD_NOLOAD) == nullptr) {
        Fail(path, "Cannot make the bridge's functions visible to libraries.");
    }
}

} // namespace

CInitFunction FindInitFunction(const std::string& library, const std::string& function, const std::string& path) {
    MakeOwnNamesGlobal(path);
    void* handle = dlopen(library.c_str(), RTLD_NOW | RTLD_GLOBAL); // stays loaded to the end
    if (handle == nullptr) {
        const std::string reason = dlerror();
        const bool isUnserved = reason.find("undefined symbol: mti_") != std::string::npos;
        Fail(path, "Cannot load library '" + library + "': " + reason +
                       (isUnserved ? " (this bridge does not have the function)" : "") + ".");
    }
    void* address = dlsym(handle, function.c_str());
    if (address == nullptr) {
        Fail(path, "Library '" + library + "' has no function '" + function + "'.");
    }
    return reinterpret_cast<CInitFunction>(address);
}

} // namespace marlune::bridge
