#include "injection.h"

#include <dlfcn.h>

#include <cstdio>

namespace messenger {

bool injectLibraries(const std::vector<std::string>& paths) {
    for (const std::string& path : paths) {
        // Never closed: an injected library lives as long as the process.
        if (dlopen(path.c_str(), RTLD_NOW | RTLD_GLOBAL) == nullptr) {
            const char* reason = dlerror();
            std::fprintf(stderr, "messenger: cannot load %s: %s\n", path.c_str(),
                         reason != nullptr ? reason : "unknown error");
            return false;
        }
    }
    return true;
}

}  // namespace messenger
