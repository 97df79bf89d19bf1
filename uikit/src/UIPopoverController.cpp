#include <UIKit/UIPopoverController.h>

#include <UIKit/device_profile.h>
#include <UIKit/UIWindow.h>

#include <Foundation/dispatch.h>

#include <objc/exception.h>
#include <objc/image.h>

#include <algorithm>

OBJC_DEFINE_CLASS(UIPopoverController, NSObject, "UIPopoverController")
OBJC_REGISTER_CLASS(UIPopoverController)

void UIPopoverController::objcDefine(objc::ClassBuilder<UIPopoverController>& b) {
    using C = UIPopoverController;
    b.method<&C::imp_initWithContentViewController>("initWithContentViewController:")
        .method<&C::imp_contentViewController>("contentViewController")
        .method<&C::imp_setContentViewController>("setContentViewController:")
        .property<&C::delegate_>("delegate", objc::Nonatomic | objc::Weak)
        .property<&C::contentSize_>("popoverContentSize", objc::Nonatomic)
        .method<&C::imp_presentPopoverFromRect>(
            "presentPopoverFromRect:inView:permittedArrowDirections:animated:")
        .method<&C::imp_isPopoverVisible>("isPopoverVisible")
        .method<&C::imp_dismissPopoverAnimated>("dismissPopoverAnimated:");
}

namespace {

// The shown popovers, each holding itself alive while visible. UIKit is used
// from the main thread only.
std::vector<objc::Strong<UIPopoverController>>& visibleList() {
    static std::vector<objc::Strong<UIPopoverController>> list;
    return list;
}

}  // namespace

UIPopoverController* UIPopoverController::imp_initWithContentViewController(
    UIViewController* content) {
    if (uikit::currentDeviceProfile().idiom != UIUserInterfaceIdiomPad &&
        !uikit::systemVersionAtLeast("8.0")) {
        // The caller owns self; it is gone once init raises.
        objc_release(this);
        objc::raise(objc::exception_name::InvalidArgument,
                    "-[UIPopoverController initWithContentViewController:] called when not "
                    "running under UIUserInterfaceIdiomPad.");
    }
    content_ = objc::retained(content);
    return this;
}

void UIPopoverController::imp_setContentViewController(UIViewController* content) {
    if (content == content_.get()) return;
    if (visible_ && content_) {
        content_->beginAppearanceTransition(false, false);
        content_->endAppearanceTransition();
    }
    content_ = objc::retained(content);
    if (visible_ && content_) {
        content_->beginAppearanceTransition(true, false);
        content_->endAppearanceTransition();
    }
}

void UIPopoverController::imp_presentPopoverFromRect(CGRect rect, UIView* view,
                                                     UIPopoverArrowDirection arrows,
                                                     bool animated) {
    if (view == nullptr || view->window() == nullptr) {
        objc::raise(objc::exception_name::InvalidArgument,
                    "Popovers cannot be presented from a view which does not have a window.");
    }
    if (!content_) {
        objc::raise(objc::exception_name::InvalidArgument,
                    "The content view controller of a popover cannot be nil.");
    }
    rect_ = rect;
    anchor_ = objc::retained(view);
    arrows_ = arrows;
    if (visible_) return;  // shown again at the new place
    visible_ = true;
    visibleList().push_back(objc::retained(this));
    content_->beginAppearanceTransition(true, animated);
    const objc::Strong<UIViewController> content = content_;
    dispatch_async(dispatch_get_main_queue(), [content] { content->endAppearanceTransition(); });
}

void UIPopoverController::imp_dismissPopoverAnimated(bool animated) {
    if (!visible_) return;
    visible_ = false;
    // The list's reference may be the last one.
    const objc::Strong<UIPopoverController> keep = objc::retained(this);
    auto& list = visibleList();
    list.erase(
        std::remove_if(list.begin(), list.end(), [this](const auto& p) { return p.get() == this; }),
        list.end());
    anchor_.reset();
    if (content_) {
        content_->beginAppearanceTransition(false, animated);
        const objc::Strong<UIViewController> content = content_;
        dispatch_async(dispatch_get_main_queue(),
                       [content] { content->endAppearanceTransition(); });
    }
}

bool UIPopoverController::dismissByUser() {
    if (!visible_) return false;
    const objc::Strong<UIPopoverController> keep = objc::retained(this);
    const id delegate = delegate_;
    const SEL should = objc::sel<"popoverControllerShouldDismissPopover:">();
    if (objc::sendIfAny<bool>(delegate, objc::sel<"respondsToSelector:">(), should)) {
        if (!objc::msgSend<bool>(delegate, should, this)) return false;
    }
    dismissPopoverAnimated(true);
    const SEL did = objc::sel<"popoverControllerDidDismissPopover:">();
    if (objc::sendIfAny<bool>(delegate_, objc::sel<"respondsToSelector:">(), did)) {
        objc::msgSend<void>(delegate_, did, this);
    }
    return true;
}

std::vector<UIPopoverController*> UIPopoverController::visiblePopovers() {
    std::vector<UIPopoverController*> list;
    for (const auto& p : visibleList()) list.push_back(p.get());
    return list;
}

UIPopoverController* UIPopoverController::topVisiblePopover() {
    const auto& list = visibleList();
    return list.empty() ? nullptr : list.back().get();
}
