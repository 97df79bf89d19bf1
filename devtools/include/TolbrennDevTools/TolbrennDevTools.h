// The maker's tools, offered to the libraries that load it through class
// methods of TolbrennDevTools (the class has no instances).
#pragma once

#include <objc/block.h>
#include <objc/object.h>

class UIViewController;

class PV_EXPORT TolbrennDevTools : public NSObject {
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

    using PathBlock = objc::Block<void(id, NSString*)>;

    // Presents a file browser over the whole file system, starting at "/",
    // modally and animated from `presenter`, inside a UINavigationController.
    // Each block (any may be nil; they are copied) receives that navigation
    // controller and a full path: didSelectFile when the user chooses a
    // file, didLoadPath when a folder has been read, cancelBlock when the user
    // gives up. The browser never dismisses itself: dismiss the controller the
    // blocks receive (dismissViewControllerAnimated:completion:).
    //
    // The browser on screen is found from the presenter:
    //   auto* nav = static_cast<UINavigationController*>(presenter->presentedViewController());
    //   auto* browser =
    //   static_cast<ParcelvaneFileBrowserViewController*>(nav->topViewController());
    // (topViewController changes as the user opens folders and goes back.)
    // A nil presenter raises NSInvalidArgumentException.
    static void showFilePickerFromViewController(UIViewController* presenter,
                                                 PathBlock* didSelectFile, PathBlock* didLoadPath,
                                                 PathBlock* cancelBlock) {
        objc::msgSend<void>(
            objcClass(),
            objc::sel<"showFilePickerFromViewController:didSelectFile:didLoadPath:cancelBlock:">(),
            presenter, didSelectFile, didLoadPath, cancelBlock);
    }

  private:
    static void imp_showFilePicker(Class cls, UIViewController* presenter, PathBlock* didSelectFile,
                                   PathBlock* didLoadPath, PathBlock* cancelBlock);
    static void imp_loadFileBrowserLibrariesIfNeeded(Class cls);
    static bool imp_fileBrowserLibrariesLoaded(Class cls);
};
