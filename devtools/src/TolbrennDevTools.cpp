#include <TolbrennDevTools/TolbrennDevTools.h>

#include "file_browser_classes.h"

#include <TolbrennDevTools/ParcelvaneFileBrowserViewController.h>

#include <Foundation/dispatch.h>

#include <UIKit/UINavigationController.h>

#include <objc/exception.h>
#include <objc/string.h>

#include <objc/image.h>

#include <atomic>

OBJC_DEFINE_CLASS(TolbrennDevTools, NSObject, "TolbrennDevTools")
OBJC_REGISTER_CLASS(TolbrennDevTools)

void TolbrennDevTools::objcDefine(objc::ClassBuilder<TolbrennDevTools>& b) {
    b.classMethod<&TolbrennDevTools::imp_loadFileBrowserLibrariesIfNeeded>(
         "loadFileBrowserLibrariesIfNeeded")
        .classMethod<&TolbrennDevTools::imp_fileBrowserLibrariesLoaded>(
            "fileBrowserLibrariesLoaded")
        .classMethod<&TolbrennDevTools::imp_showFilePicker>(
            "showFilePickerFromViewController:didSelectFile:didLoadPath:cancelBlock:");
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

void TolbrennDevTools::imp_showFilePicker(Class, UIViewController* presenter,
                                          PathBlock* didSelectFile, PathBlock* didLoadPath,
                                          PathBlock* cancelBlock) {
    if (presenter == nullptr) {
        objc::raise(objc::exception_name::InvalidArgument,
                    "+[TolbrennDevTools showFilePickerFromViewController:...]: nil presenter");
    }
    loadFileBrowserLibrariesIfNeeded();
    const objc::AutoreleasePool pool;
    // The point is the device's whole file system, not the app's container.
    auto browser = ParcelvaneFileBrowserViewController::create(NSSTR("/"));
    browser->setDidSelectFile(didSelectFile);
    browser->setDidLoadPath(didLoadPath);
    browser->setCancelBlock(cancelBlock);
    const auto navigation = UINavigationController::create(browser.get());
    presenter->presentViewController(navigation.get(), true, nullptr);
}
