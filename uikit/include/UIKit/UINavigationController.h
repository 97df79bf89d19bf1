// A stack of controllers, the top one shown. The stack's controllers are the
// navigation controller's children; the top one's view is its view's only
// content. Pushes and pops move appearance at once (the did- messages follow
// the will- ones without waiting for the main queue) while the navigation
// controller is itself on screen.
#pragma once

#include <UIKit/UINavigationBar.h>
#include <UIKit/UIViewController.h>

class PV_EXPORT UINavigationController : public UIViewController {
    OBJC_CLASS(UINavigationController)

    static objc::Strong<UINavigationController> create(UIViewController* root) {
        return objc::adopt(objc::alloc<UINavigationController>()->initWithRootViewController(root));
    }

    UINavigationController* initWithRootViewController(UIViewController* root) {
        return objc::msgSend<UINavigationController*>(
            this, objc::sel<"initWithRootViewController:">(), root);
    }

    // A nil controller, or one already in the stack, raises
    // NSInvalidArgumentException as on the device.
    void pushViewController(UIViewController* controller, bool animated) {
        objc::msgSend<void>(this, objc::sel<"pushViewController:animated:">(), controller,
                            animated);
    }
    // The popped controller (autoreleased), or nil when only the root is left.
    UIViewController* popViewControllerAnimated(bool animated) {
        return objc::msgSend<UIViewController*>(this, objc::sel<"popViewControllerAnimated:">(),
                                                animated);
    }
    // The popped controllers, bottom first (autoreleased; nil when none).
    NSArray* popToRootViewControllerAnimated(bool animated) {
        return objc::msgSend<NSArray*>(this, objc::sel<"popToRootViewControllerAnimated:">(),
                                       animated);
    }
    NSArray* popToViewController(UIViewController* controller, bool animated) {
        return objc::msgSend<NSArray*>(this, objc::sel<"popToViewController:animated:">(),
                                       controller, animated);
    }
    // The stack, bottom first (autoreleased).
    NSArray* viewControllers() {
        return objc::msgSend<NSArray*>(this, objc::sel<"viewControllers">());
    }
    void setViewControllers(NSArray* controllers, bool animated) {
        objc::msgSend<void>(this, objc::sel<"setViewControllers:animated:">(), controllers,
                            animated);
    }
    UIViewController* topViewController() {
        return objc::msgSend<UIViewController*>(this, objc::sel<"topViewController">());
    }
    // What the user sees: the top controller's presented controller if any,
    // else the top controller.
    UIViewController* visibleViewController() {
        return objc::msgSend<UIViewController*>(this, objc::sel<"visibleViewController">());
    }

    // The bar over the top screen (made with the view).
    UINavigationBar* navigationBar() const noexcept { return bar_.get(); }

    UINavigationController() = default;
    ~UINavigationController() override {
        if (bar_) bar_->setNavigationController(nullptr);
    }

  protected:
    std::vector<UIViewController*> appearanceChildren() override;

  private:
    UINavigationController* imp_initWithRootViewController(UIViewController* root);
    void imp_pushViewController(UIViewController* controller, bool animated);
    UIViewController* imp_popViewControllerAnimated(bool animated);
    NSArray* imp_popToRootViewControllerAnimated(bool animated);
    NSArray* imp_popToViewController(UIViewController* controller, bool animated);
    NSArray* imp_viewControllers();
    void imp_setViewControllers(NSArray* controllers, bool animated);
    UIViewController* imp_topViewController();
    UIViewController* imp_visibleViewController();
    void imp_loadView();

    // Pops down to (and keeping) index `keep`; answers the popped, bottom first.
    std::vector<objc::Strong<UIViewController>> popTo(std::size_t keep, bool animated);
    // Shows the top controller's view as the navigation controller's content.
    void showTopView();
    bool onScreen() const noexcept { return appearance() == Appearance::Appeared; }

    objc::Strong<UINavigationBar> bar_;
};
