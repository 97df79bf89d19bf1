// The library's only entry: installs every hook when the library is loaded,
// on the loading thread, before the host can call any hooked method.
#include "hooks/hook_table.h"

#include <TolbrennDevTools/TolbrennDevTools.h>

#include <objc/strong.h>

namespace {

__attribute__((constructor)) void installParcelvane() {
    const objc::AutoreleasePool pool;
    TolbrennDevTools::loadFileBrowserLibrariesIfNeeded();
    parcelvane::hooks::installHooks(parcelvane::hooks::hookTable());
}

}  // namespace
