// ParcelvaneHelper's presentation of the tools library's file browser and of
// a plain alert.
#include "support/ParcelvaneHelper.h"

#include <TolbrennDevTools/ParcelvaneFileBrowserViewController.h>
#include <UIKit/UIAlertView.h>
#include <UIKit/UINavigationController.h>

#include <objc/strong.h>

void ParcelvaneHelper::imp_showFilePicker(Class, id presenter, id target) {
    const objc::Strong<ParcelvaneFileBrowserViewController> browser =
        objc::adopt(objc::msgSend<ParcelvaneFileBrowserViewController*>(
            ParcelvaneFileBrowserViewController::objcClass(), objc::sel<"new">()));
    browser->setDelegate(target);
    const objc::Strong<UINavigationController> navigation =
        UINavigationController::create(browser.get());
    navigation->setModalPresentationStyle(UIModalPresentationFormSheet);
    objc::msgSend<void>(presenter, objc::sel<"presentViewController:animated:completion:">(),
                        static_cast<UIViewController*>(navigation.get()), true,
                        static_cast<UIViewController::Completion*>(nullptr));
}

void ParcelvaneHelper::imp_showAlertViewForExt(Class, id controller, NSString* title,
                                               NSString* message) {
    // A shown alert keeps itself alive until it is dismissed.
    const objc::Strong<UIAlertView> alert =
        UIAlertView::create(title, message, controller, NSSTR("OK"));
    alert->show();
}
