#include "hooks/document_picker_hooks.h"

#include "hooks/document_sending.h"
#include "hooks/hook_installation.h"
#include "hooks/preferences.h"
#include "hooks/settings_keys.h"
#include "support/ParcelvaneHelper.h"

#include <Foundation/NSArray.h>
#include <Foundation/NSURL.h>
#include <Foundation/dispatch.h>
#include <UIKit/UIDevice.h>
#include <UIKit/UIDocumentMenuViewController.h>
#include <UIKit/UIPopoverController.h>
#include <UIKit/UIWindow.h>

#include <objc/block.h>
#include <objc/message.h>
#include <objc/strong.h>

namespace parcelvane::hooks {

namespace {

// Every data file conforms to "public.data"; import mode copies the file in.
constexpr UIDocumentPickerMode kWidenedMode = UIDocumentPickerModeImport;
objc::Strong<NSArray> widenedTypes() {
    return NSArray::create({NSSTR("public.data")});
}

bool sendDocumentsEnabled() {
    return GetBool(keys::sendDocumentsEnabled());
}

// The view a popover is anchored in. The responds-to test is asked of the
// window class, which has no class method of that name: the key window's
// last subview is the anchor in practice.
UIView* anchorView() {
    UIWindow* const window = UIWindow::keyWindow();
    UIView* view = nullptr;
    if (objc::msgSend<bool>(UIWindow::objcClass(), objc::sel<"respondsToSelector:">(),
                            objc::sel<"rootViewController">())) {
        UIViewController* const root = window != nullptr ? window->rootViewController() : nullptr;
        view = root != nullptr ? root->view() : nullptr;
    }
    if (view == nullptr && window != nullptr) {
        view = static_cast<UIView*>(window->subviews()->lastObject());
    }
    return view;
}

UIUserInterfaceIdiom currentIdiom() {
    UIDevice* const device = UIDevice::currentDevice();
    if (!device->respondsToSelector(objc::sel<"userInterfaceIdiom">())) {
        return UIUserInterfaceIdiomPhone;
    }
    return device->userInterfaceIdiom();
}

}  // namespace

id initWithDocumentTypesInMode(id self, SEL sel, NSArray* types, NSUInteger mode) {
    if (sendDocumentsEnabled()) {
        const objc::Strong<NSArray> widened = widenedTypes();
        return callOriginal<&initWithDocumentTypesInMode>(self, sel, widened.get(), kWidenedMode);
    }
    return callOriginal<&initWithDocumentTypesInMode>(self, sel, types, mode);
}

void presentShareDocumentController(id self, SEL sel) {
    if (!sendDocumentsEnabled()) {
        callOriginal<&presentShareDocumentController>(self, sel);
        return;
    }
    // Before iOS 8 there is no document menu: the file browser stands in.
    if (ParcelvaneHelper::isLowerThanIOS8()) {
        objc::msgSend<void>(self, objc::sel<"sendParcelvaneFile">());
        return;
    }
    // Made through the initialiser's replacement, like any other menu.
    const objc::Strong<NSArray> types = widenedTypes();
    const objc::Strong<UIDocumentMenuViewController> menu =
        objc::adopt(objc::alloc<UIDocumentMenuViewController>()->initWithDocumentTypesInMode(
            types.get(), kWidenedMode));
    menu->setDelegate(self);
    objc::msgSend<void>(self, objc::sel<"_presentForCurrentInterface:">(),
                        static_cast<id>(menu.get()));
}

void documentPickerDidPickDocumentAtURL(id self, SEL sel, id picker, NSURL* url) {
    if (!sendDocumentsEnabled()) {
        callOriginal<&documentPickerDidPickDocumentAtURL>(self, sel, picker, url);
        return;
    }
    // One turn of the main queue later, once the picker has gone; the work
    // holds the URL and the screen until then.
    dispatch_async(dispatch_get_main_queue(),
                   [screen = objc::retained(self), picked = objc::retained(url)] {
                       NSURL* fileURL = picked.get();
                       // The whole absolute string, scheme included, becomes the path.
                       if (!fileURL->isFileURL()) {
                           fileURL = NSURL::fileURLWithPath(fileURL->absoluteString());
                       }
                       sendDocumentIfPresent(screen.get(), fileURL);
                   });
}

void documentMenuDidPickDocumentPicker(id self, SEL sel, id menu, id picker) {
    // Whatever the settings: a provider's picker is shown as a form sheet.
    objc::msgSend<void>(picker, objc::sel<"setModalPresentationStyle:">(),
                        UIModalPresentationFormSheet);
    callOriginal<&documentMenuDidPickDocumentPicker>(self, sel, menu, picker);
}

void presentForCurrentInterface(id self, SEL, id viewController) {
    UIView* const anchor = anchorView();
    auto* const content = static_cast<UIViewController*>(viewController);
    if (currentIdiom() == UIUserInterfaceIdiomPad) {
        const CGRect bounds = objc::msgSend<CGRect>(anchor, objc::sel<"bounds">());
        const CGRect centre{{bounds.size.width * 0.5, bounds.size.height * 0.5}, {1.0, 1.0}};
        // A shown popover keeps itself alive; the library keeps no reference.
        const objc::Strong<UIPopoverController> popover =
            objc::adopt(objc::alloc<UIPopoverController>()->initWithContentViewController(content));
        popover->setDelegate(self);
        popover->presentPopoverFromRect(centre, anchor, UIPopoverArrowDirectionAny, true);
        return;
    }
    objc::msgSend<void>(self, objc::sel<"presentViewController:animated:completion:">(), content,
                        true, static_cast<UIViewController::Completion*>(nullptr));
}

}  // namespace parcelvane::hooks
