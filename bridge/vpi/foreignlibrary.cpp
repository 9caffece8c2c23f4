#include "bridge/vpi/foreignlibrary.h"

#include "bridge/vpi/failure.h"

#include <dlfcn.h>

namespace {

/// Simulators load the bridge for themselves only, but the library's mti_* functions are looked for among global names.
void MakeOwnNamesGlobal() {
    Dl_info self{};
    if (dladdr(reinterpret_cast<void*>(&MakeOwnNamesGlobal), &self) == 0 ||
        dlopen(self.dli_fname, RTLD_NOW | RTLD_GLOBAL | RTLD_NOLOAD) == nullptr) {
        Fail("Cannot make the bridge's functions visible to libraries.");
    }
}

} // namespace

CInitFunction FindInitFunction(const std::string& library, const std::string& function) {
    MakeOwnNamesGlobal();
    void* handle = dlopen(library.c_str(), RTLD_NOW | RTLD_GLOBAL); // stays loaded to the end
    if (handle == nullptr) {
        const std::string reason = dlerror();
        const bool isUnserved = reason.find("undefined symbol: mti_") != std::string::npos;
        Fail("Cannot load library '" + library + "': " + reason +
             (isUnserved ? " (this bridge does not have the function)" : "") + ".");
    }
    void* address = dlsym(handle, function.c_str());
    if (address == nullptr) {
        Fail("Library '" + library + "' has no function '" + function + "'.");
    }
    return reinterpret_cast<CInitFunction>(address);
}
