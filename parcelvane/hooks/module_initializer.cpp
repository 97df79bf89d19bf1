// The library's only entry: installs every hook when the library is loaded,
// on the loading thread, before the host can call any hooked method.
#include "hooks/hook_table.h"

#include <objc/strong.h>

namespace {

__attribute__((constructor)) void loadParcelvane() {
    const objc::AutoreleasePool pool;
    // Nothing is reported: a hook whose class or method the host lacks, or
    // whose method has other types, simply stays out.
    static_cast<void>(parcelvane::hooks::installParcelvane());
}

}  // namespace
