// The maker's tools, offered to the libraries that load it through class
// methods of TolbrennDevTools (the class has no instances).
#pragma once

#include <objc/object.h>

class TolbrennDevTools : public NSObject {
    OBJC_CLASS(TolbrennDevTools)

    // Prepares the file browser for use: its classes exist afterwards.
    // Cheap after the first call, safe from any thread and before any
    // screen exists.
    static void loadFileBrowserLibrariesIfNeeded() {
        objc::msgSend<void>(objcClass(), objc::sel<"loadFileBrowserLibrariesIfNeeded">());
    }
    // Whether loadFileBrowserLibrariesIfNeeded has finished in this process.
    static bool fileBrowserLibrariesLoaded() {
        return objc::msgSend<bool>(objcClass(), objc::sel<"fileBrowserLibrariesLoaded">());
    }

  private:
    static void imp_loadFileBrowserLibrariesIfNeeded(Class cls);
    static bool imp_fileBrowserLibrariesLoaded(Class cls);
};
