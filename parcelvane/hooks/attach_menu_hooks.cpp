#include "hooks/attach_menu_hooks.h"

#include "hooks/document_sending.h"
#include "hooks/hook_installation.h"
#include "hooks/preferences.h"
#include "hooks/settings_keys.h"

#include <Foundation/NSBundle.h>
#include <Foundation/NSURL.h>
#include <Foundation/string_format.h>
#include <MobileCoreServices/UTType.h>
#include <UIKit/UIViewController.h>

#include <objc/block.h>
#include <objc/message.h>
#include <objc/runtime.h>
#include <objc/strong.h>

namespace parcelvane::hooks {

namespace {

// Set when the chat bar's attach button is pressed, cleared when
// sendParcelvaneFile runs; it marks the next action sheets as the attach
// menu. Deliberately not reset when a sheet is shown. Main thread only, like
// every hooked call, so it needs no lock.
bool attachMenuRequested = false;

// The file browser's three callbacks: its view controller and a path.
using BrowserBlock = objc::Block<void(id, NSString*)>;

void dismissBrowser(id browser, UIViewController::Completion* completion) {
    objc::msgSend<void>(browser, objc::sel<"dismissViewControllerAnimated:completion:">(), true,
                        completion);
}

}  // namespace

void chatBarManagerWantsToAttachMedia(id self, SEL sel, id manager) {
    attachMenuRequested = true;
    callOriginal<&chatBarManagerWantsToAttachMedia>(self, sel, manager);
}

void showActionSheet(id self, SEL sel, id sheet) {
    NSString* const localised =
        NSBundle::mainBundle()->localizedStringForKey(NSSTR("Share Document"), NSSTR(""), nullptr);
    NSString* const title = objc::format(NSSTR("%@ (Parcelvane)"), localised);
    if (attachMenuRequested && GetBool(keys::sendFilesystemEnabled())) {
        // The sheet belongs to the screen while shown, so its handler does
        // not retain the screen.
        const id screen = self;
        const auto handler = objc::makeBlock<void()>(
            [screen] { objc::msgSend<void>(screen, objc::sel<"sendParcelvaneFile">()); });
        objc::msgSend<void>(sheet, objc::sel<"addButtonWithTitle:handler:">(), title,
                            handler.get());
    }
    callOriginal<&showActionSheet>(self, sel, sheet);
}

void sendParcelvaneFile(id self, SEL) {
    attachMenuRequested = false;
    if (!GetBool(keys::sendFilesystemEnabled())) return;

    const auto didSelectFile = objc::makeBlock<void(id, NSString*)>(
        [screen = objc::retained(self)](id browser, NSString* path) {
            // Worked out as the tools expect, though nothing depends on the
            // file's type: any file is sent.
            const objc::Strong<NSString> type = objc::adopt(UTTypeCreatePreferredIdentifierForTag(
                kUTTagClassFilenameExtension, path->pathExtension(), nullptr));
            const objc::Strong<NSString> mimeType =
                objc::adopt(UTTypeCopyPreferredTagWithClass(type.get(), kUTTagClassMIMEType));
            // Sent once the browser has gone.
            const auto afterDismissal =
                objc::makeBlock<void()>([screen, chosen = objc::retained(path)] {
                    sendDocumentIfPresent(screen.get(), NSURL::fileURLWithPath(chosen.get()));
                });
            dismissBrowser(browser, afterDismissal.get());
        });
    const auto didLoadPath = objc::makeBlock<void(id, NSString*)>([](id, NSString*) {});
    const auto cancel = objc::makeBlock<void(id, NSString*)>([](id browser, NSString*) {
        const auto nothing = objc::makeBlock<void()>([] {});
        dismissBrowser(browser, nothing.get());
    });
    objc::msgSend<void>(
        objc_getClass("TolbrennDevTools"),
        objc::sel<"showFilePickerFromViewController:didSelectFile:didLoadPath:cancelBlock:">(),
        self, didSelectFile.get(), didLoadPath.get(), cancel.get());
}

}  // namespace parcelvane::hooks
