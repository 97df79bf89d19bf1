#include "recorders.h"

#include <objc/image.h>

OBJC_DEFINE_CLASS(RecordingViewController, UIViewController, "RecordingViewController")
OBJC_REGISTER_CLASS(RecordingViewController)

void RecordingViewController::objcDefine(objc::ClassBuilder<RecordingViewController>& b) {
    using C = RecordingViewController;
    b.method<&C::imp_viewDidLoad>("viewDidLoad")
        .method<&C::imp_viewWillAppear>("viewWillAppear:")
        .method<&C::imp_viewDidAppear>("viewDidAppear:")
        .method<&C::imp_viewWillDisappear>("viewWillDisappear:")
        .method<&C::imp_viewDidDisappear>("viewDidDisappear:");
}

objc::Strong<RecordingViewController> RecordingViewController::create(
    std::string name, std::vector<std::string>* log) {
    auto controller = objc::make<RecordingViewController>();
    controller->name = std::move(name);
    controller->log = log;
    return controller;
}

OBJC_DEFINE_CLASS(RecordingDelegate, NSObject, "RecordingDelegate")
OBJC_REGISTER_CLASS(RecordingDelegate)

void RecordingDelegate::objcDefine(objc::ClassBuilder<RecordingDelegate>& b) {
    using C = RecordingDelegate;
    b.method<&C::imp_clicked>("alertView:clickedButtonAtIndex:")
        .method<&C::imp_willDismiss>("alertView:willDismissWithButtonIndex:")
        .method<&C::imp_didDismiss>("alertView:didDismissWithButtonIndex:")
        .method<&C::imp_willPresent>("willPresentAlertView:")
        .method<&C::imp_didPresent>("didPresentAlertView:")
        .method<&C::imp_shouldDismissPopover>("popoverControllerShouldDismissPopover:")
        .method<&C::imp_didDismissPopover>("popoverControllerDidDismissPopover:")
        .method<&C::imp_menuCancelled>("documentMenuWasCancelled:");
}

OBJC_DEFINE_CLASS(SizedView, UIView, "SizedView")
OBJC_REGISTER_CLASS(SizedView)

void SizedView::objcDefine(objc::ClassBuilder<SizedView>& b) {
    b.method<&SizedView::imp_intrinsicContentSize>("intrinsicContentSize");
}

objc::Strong<SizedView> SizedView::create(CGSize content) {
    auto view = objc::make<SizedView>();
    view->content = content;
    view->setTranslatesAutoresizingMaskIntoConstraints(false);
    return view;
}
