#include <TolbrennDevTools/TolbrennDevTools.h>

#include "file_browser_classes.h"

#include <Foundation/dispatch.h>

#include <objc/image.h>

#include <atomic>

OBJC_DEFINE_CLASS(TolbrennDevTools, NSObject, "TolbrennDevTools")
OBJC_REGISTER_CLASS(TolbrennDevTools)

void TolbrennDevTools::objcDefine(objc::ClassBuilder<TolbrennDevTools>& b) {
    b.classMethod<&TolbrennDevTools::imp_loadFileBrowserLibrariesIfNeeded>(
         "loadFileBrowserLibrariesIfNeeded")
        .classMethod<&TolbrennDevTools::imp_fileBrowserLibrariesLoaded>(
            "fileBrowserLibrariesLoaded");
}

namespace {

// Once per process; the flag is set only after the preparation returned.
dispatch_once_t fileBrowserOnce = 0;
std::atomic<bool> fileBrowserReady{false};

}  // namespace

void TolbrennDevTools::imp_loadFileBrowserLibrariesIfNeeded(Class) {
    dispatch_once(&fileBrowserOnce, [] {
        for (const objc::ClassFunction classFunction : tolbrenn::detail::fileBrowserClasses()) {
            classFunction();
        }
        fileBrowserReady.store(true, std::memory_order_release);
    });
}

bool TolbrennDevTools::imp_fileBrowserLibrariesLoaded(Class) {
    return fileBrowserReady.load(std::memory_order_acquire);
}
