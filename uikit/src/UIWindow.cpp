#include <UIKit/UIWindow.h>

#include <UIKit/UIScreen.h>
#include <UIKit/UIViewController.h>

#include <objc/image.h>

#include <atomic>

OBJC_DEFINE_CLASS(UIWindow, UIView, "UIWindow")
OBJC_REGISTER_CLASS(UIWindow)

void UIWindow::objcDefine(objc::ClassBuilder<UIWindow>& b) {
    b.classMethod<&UIWindow::imp_keyWindow>("keyWindow")
        .method<&UIWindow::imp_initWithFrame>("initWithFrame:")
        .method<&UIWindow::imp_makeKeyAndVisible>("makeKeyAndVisible")
        .method<&UIWindow::imp_makeKeyWindow>("makeKeyWindow")
        .method<&UIWindow::imp_isKeyWindow>("isKeyWindow")
        .method<&UIWindow::imp_rootViewController>("rootViewController")
        .method<&UIWindow::imp_setRootViewController>("setRootViewController:")
        .method<&UIWindow::imp_setHidden>("setHidden:");
}

namespace {
// Not retained: the app owns its windows (see the header).
std::atomic<UIWindow*> gKeyWindow{nullptr};
}  // namespace

objc::Strong<UIWindow> UIWindow::create() {
    return objc::adopt(static_cast<UIWindow*>(
        objc::alloc<UIWindow>()->initWithFrame(UIScreen::mainScreen()->bounds())));
}

UIWindow::~UIWindow() {
    UIWindow* self = this;
    gKeyWindow.compare_exchange_strong(self, nullptr);
}

UIWindow* UIWindow::imp_keyWindow(Class) {
    return gKeyWindow.load();
}

UIWindow* UIWindow::imp_initWithFrame(CGRect frame) {
    auto* self = objc::superSend<UIWindow*>(this, objc::sel<"initWithFrame:">(), frame);
    // Windows start hidden until shown.
    if (self != nullptr) self->setHidden(true);
    return self;
}

void UIWindow::imp_makeKeyAndVisible() {
    makeKeyWindow();
    setHidden(false);
}

void UIWindow::imp_makeKeyWindow() {
    gKeyWindow.store(this);
}

bool UIWindow::imp_isKeyWindow() const {
    return gKeyWindow.load() == this;
}

void UIWindow::imp_setHidden(bool hidden) {
    const bool wasHidden = isHidden();
    objc::superSend<void>(this, objc::sel<"setHidden:">(), hidden);
    if (!root_ || wasHidden == hidden) return;
    root_->beginAppearanceTransition(!hidden, false);
    root_->endAppearanceTransition();
}

void UIWindow::imp_setRootViewController(UIViewController* controller) {
    if (controller == root_.get()) return;
    const objc::Strong<UIViewController> previous = root_;
    const bool visible = !isHidden();
    if (previous) {
        if (visible) previous->beginAppearanceTransition(false, false);
        if (UIView* old = previous->viewIfLoaded(); old != nullptr && old->superview() == this) {
            old->removeFromSuperview();
        }
    }
    root_ = objc::retained(controller);
    if (root_) {
        if (visible) root_->beginAppearanceTransition(true, false);
        UIView* content = root_->view();
        content->setFrame(bounds());
        insertSubviewAtIndex(content, 0);
    }
    if (visible) {
        if (previous) previous->endAppearanceTransition();
        if (root_) root_->endAppearanceTransition();
    }
}
