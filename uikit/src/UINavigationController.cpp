#include <UIKit/UINavigationController.h>

#include <UIKit/UIScreen.h>

#include <Foundation/NSArray.h>

#include <objc/exception.h>
#include <objc/image.h>

#include <cstdio>
#include <string>

OBJC_DEFINE_CLASS(UINavigationController, UIViewController, "UINavigationController")
OBJC_REGISTER_CLASS(UINavigationController)

void UINavigationController::objcDefine(objc::ClassBuilder<UINavigationController>& b) {
    using C = UINavigationController;
    b.method<&C::imp_initWithRootViewController>("initWithRootViewController:")
        .method<&C::imp_pushViewController>("pushViewController:animated:")
        .method<&C::imp_popViewControllerAnimated>("popViewControllerAnimated:")
        .method<&C::imp_popToRootViewControllerAnimated>("popToRootViewControllerAnimated:")
        .method<&C::imp_popToViewController>("popToViewController:animated:")
        .method<&C::imp_viewControllers>("viewControllers")
        .method<&C::imp_setViewControllers>("setViewControllers:animated:")
        .method<&C::imp_topViewController>("topViewController")
        .method<&C::imp_visibleViewController>("visibleViewController")
        .method<&C::imp_loadView>("loadView");
}

namespace {

std::string describe(id object) {
    char address[32];
    std::snprintf(address, sizeof address, "%p", static_cast<void*>(object));
    return std::string("<") + object_getClassName(object) + ": " + address + ">";
}

NSArray* autoreleasedArray(const std::vector<objc::Strong<UIViewController>>& list) {
    if (list.empty()) return nullptr;
    std::vector<id> objects(list.begin(), list.end());
    return objc::autorelease(NSArray::create(std::move(objects)).leak());
}

}  // namespace

UINavigationController* UINavigationController::imp_initWithRootViewController(
    UIViewController* root) {
    auto* self = objc::superSend<UINavigationController*>(this, objc::sel<"init">());
    if (self != nullptr && root != nullptr) self->pushViewController(root, false);
    return self;
}

std::vector<UIViewController*> UINavigationController::appearanceChildren() {
    if (childList().empty()) return {};
    return {childList().back().get()};
}

void UINavigationController::imp_loadView() {
    const CGRect screen = UIScreen::mainScreen()->bounds();
    setView(UIView::create(screen).get());
    bar_ = UINavigationBar::create(screen.size.width);
    bar_->setNavigationController(this);
    showTopView();
}

void UINavigationController::showTopView() {
    UIView* container = viewIfLoaded();
    if (container == nullptr) return;
    for (const auto& sub : std::vector(container->subviewList())) sub->removeFromSuperview();
    CGRect below = container->bounds();
    if (bar_) {
        below.origin.y += UINavigationBar::kHeight;
        below.size.height -= UINavigationBar::kHeight;
    }
    if (UIViewController* top = topViewController()) {
        UIView* content = top->view();
        content->setFrame(below);
        container->addSubview(content);
    }
    if (bar_) container->addSubview(bar_.get());
}

void UINavigationController::imp_pushViewController(UIViewController* controller, bool animated) {
    if (controller == nullptr) {
        objc::raise(
            objc::exception_name::InvalidArgument,
            "Application tried to push a nil view controller on target " + describe(this) + ".");
    }
    for (const auto& c : childList()) {
        if (c.get() == controller) {
            objc::raise(objc::exception_name::InvalidArgument,
                        "Pushing the same view controller instance more than once is not "
                        "supported (" +
                            describe(controller) + ")");
        }
    }
    if (controller->parentViewController() != nullptr) {
        objc::raise(objc::exception_name::InvalidArgument,
                    "Cannot push a view controller that already has a parent (" +
                        describe(controller) + ")");
    }
    UIViewController* const previous = topViewController();
    const bool visible = onScreen();
    if (visible && previous != nullptr) previous->beginAppearanceTransition(false, animated);
    addChildViewController(controller);
    if (visible) controller->beginAppearanceTransition(true, animated);
    showTopView();
    controller->didMoveToParentViewController(this);
    if (visible) {
        if (previous != nullptr) previous->endAppearanceTransition();
        controller->endAppearanceTransition();
    }
}

std::vector<objc::Strong<UIViewController>> UINavigationController::popTo(std::size_t keep,
                                                                          bool animated) {
    std::vector<objc::Strong<UIViewController>> popped;
    if (keep + 1 >= childList().size()) return popped;
    popped.assign(childList().begin() + static_cast<std::ptrdiff_t>(keep + 1), childList().end());
    UIViewController* const revealed = childList()[keep].get();
    const bool visible = onScreen();
    if (visible) {
        popped.back()->beginAppearanceTransition(false, animated);
        revealed->beginAppearanceTransition(true, animated);
    }
    for (auto it = popped.rbegin(); it != popped.rend(); ++it) {
        (*it)->willMoveToParentViewController(nullptr);
        (*it)->removeFromParentViewController();
    }
    showTopView();
    if (visible) {
        popped.back()->endAppearanceTransition();
        revealed->endAppearanceTransition();
    }
    return popped;
}

UIViewController* UINavigationController::imp_popViewControllerAnimated(bool animated) {
    if (childList().size() < 2) return nullptr;
    auto popped = popTo(childList().size() - 2, animated);
    return objc::autorelease(popped.back().leak());
}

NSArray* UINavigationController::imp_popToRootViewControllerAnimated(bool animated) {
    return autoreleasedArray(popTo(0, animated));
}

NSArray* UINavigationController::imp_popToViewController(UIViewController* controller,
                                                         bool animated) {
    for (std::size_t i = 0; i < childList().size(); ++i) {
        if (childList()[i].get() == controller) return autoreleasedArray(popTo(i, animated));
    }
    objc::raise(objc::exception_name::InvalidArgument,
                "Tried to pop to a view controller that doesn't exist.");
}

NSArray* UINavigationController::imp_viewControllers() {
    std::vector<id> objects(childList().begin(), childList().end());
    return objc::autorelease(NSArray::create(std::move(objects)).leak());
}

void UINavigationController::imp_setViewControllers(NSArray* controllers, bool animated) {
    std::vector<objc::Strong<UIViewController>> next;
    if (controllers != nullptr) {
        for (id c : *controllers) {
            if (objc::cast<UIViewController>(c) == nullptr) {
                objc::raise(objc::exception_name::InvalidArgument,
                            "setViewControllers: takes view controllers only");
            }
            next.push_back(objc::retained(static_cast<UIViewController*>(c)));
        }
    }
    UIViewController* const previous = topViewController();
    const bool visible = onScreen();
    if (visible && previous != nullptr) previous->beginAppearanceTransition(false, animated);
    for (const auto& c : std::vector(childList())) {
        c->willMoveToParentViewController(nullptr);
        c->removeFromParentViewController();
    }
    for (const auto& c : next) {
        addChildViewController(c.get());
        c->didMoveToParentViewController(this);
    }
    UIViewController* const top = topViewController();
    if (visible && top != nullptr) top->beginAppearanceTransition(true, animated);
    showTopView();
    if (visible) {
        if (previous != nullptr) previous->endAppearanceTransition();
        if (top != nullptr) top->endAppearanceTransition();
    }
}

UIViewController* UINavigationController::imp_topViewController() {
    return childList().empty() ? nullptr : childList().back().get();
}

UIViewController* UINavigationController::imp_visibleViewController() {
    UIViewController* top = topViewController();
    if (top == nullptr) return nullptr;
    if (presentedController() != nullptr) return presentedController()->topPresentedController();
    return top->topPresentedController();
}
