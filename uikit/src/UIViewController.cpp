#include <UIKit/UIViewController.h>

#include <UIKit/device_profile.h>
#include <UIKit/UINavigationController.h>
#include <UIKit/UIScreen.h>
#include <UIKit/UIWindow.h>

#include <Foundation/NSArray.h>
#include <Foundation/NSLog.h>
#include <Foundation/dispatch.h>

#include <objc/exception.h>
#include <objc/image.h>

#include <algorithm>
#include <cstdio>
#include <string>

OBJC_DEFINE_CLASS(UIViewController, UIResponder, "UIViewController")
OBJC_REGISTER_CLASS(UIViewController)

void UIViewController::objcDefine(objc::ClassBuilder<UIViewController>& b) {
    using C = UIViewController;
    b.method<&C::imp_init>("init")
        .method<&C::imp_initWithNibNameBundle>("initWithNibName:bundle:")
        .method<&C::imp_view>("view")
        .method<&C::imp_setView>("setView:")
        .property<&C::view_>("viewIfLoaded", objc::Readonly | objc::Nonatomic)
        .method<&C::imp_isViewLoaded>("isViewLoaded")
        .method<&C::imp_loadView>("loadView")
        .method<&C::imp_viewDidLoad>("viewDidLoad")
        .method<&C::imp_viewWillAppear>("viewWillAppear:")
        .method<&C::imp_viewDidAppear>("viewDidAppear:")
        .method<&C::imp_viewWillDisappear>("viewWillDisappear:")
        .method<&C::imp_viewDidDisappear>("viewDidDisappear:")
        .method<&C::imp_beginAppearanceTransition>("beginAppearanceTransition:animated:")
        .method<&C::imp_endAppearanceTransition>("endAppearanceTransition")
        .property<&C::title_>("title", objc::Copy | objc::Nonatomic)
        .property<&C::parent_>("parentViewController",
                               objc::Readonly | objc::Weak | objc::Nonatomic)
        .method<&C::imp_navigationController>("navigationController")
        .method<&C::imp_childViewControllers>("childViewControllers")
        .method<&C::imp_addChildViewController>("addChildViewController:")
        .method<&C::imp_removeFromParentViewController>("removeFromParentViewController")
        .method<&C::imp_willMoveToParentViewController>("willMoveToParentViewController:")
        .method<&C::imp_didMoveToParentViewController>("didMoveToParentViewController:")
        .method<&C::imp_presentViewController>("presentViewController:animated:completion:")
        .method<&C::imp_dismissViewControllerAnimated>("dismissViewControllerAnimated:completion:")
        .property<&C::presented_>("presentedViewController", objc::Readonly | objc::Nonatomic)
        .method<&C::imp_presentingViewController>("presentingViewController")
        .property<&C::modalStyle_>("modalPresentationStyle", objc::Nonatomic)
        .method<&C::imp_nextResponder>("nextResponder");
}

namespace {

std::string describe(id object) {
    char address[32];
    std::snprintf(address, sizeof address, "%p", static_cast<void*>(object));
    return std::string("<") + object_getClassName(object) + ": " + address + ">";
}

}  // namespace

UIViewController::~UIViewController() {
    if (view_ && view_->controller_ == this) view_->controller_ = nullptr;
    for (const auto& child : children_) child->parent_ = nullptr;
    if (presented_) presented_->presenting_ = nullptr;
}

UIViewController* UIViewController::imp_init() {
    return initWithNibNameBundle(nullptr, nullptr);
}

UIViewController* UIViewController::imp_initWithNibNameBundle(NSString*, id) {
    return this;
}

UIView* UIViewController::imp_view() {
    if (!view_) {
        loadView();
        // A loadView that made nothing still leaves the controller a view.
        if (!view_) imp_loadView();
        viewDidLoad();
    }
    return view_.get();
}

void UIViewController::imp_setView(UIView* view) {
    if (view_ && view_->controller_ == this) view_->controller_ = nullptr;
    view_ = objc::retained(view);
    if (view_) view_->controller_ = this;
}

void UIViewController::imp_loadView() {
    setView(UIView::create(UIScreen::mainScreen()->bounds()).get());
}

std::vector<UIViewController*> UIViewController::appearanceChildren() {
    std::vector<UIViewController*> list;
    for (const auto& child : children_) list.push_back(child.get());
    return list;
}

void UIViewController::imp_beginAppearanceTransition(bool appearing, bool animated) {
    const Appearance target = appearing ? Appearance::Appearing : Appearance::Disappearing;
    const Appearance done = appearing ? Appearance::Appeared : Appearance::Disappeared;
    if (appearance_ == target || appearance_ == done) return;
    appearance_ = target;
    appearanceAnimated_ = animated;
    if (appearing) {
        view();
        viewWillAppear(animated);
    } else {
        viewWillDisappear(animated);
    }
    for (UIViewController* child : appearanceChildren()) {
        child->beginAppearanceTransition(appearing, animated);
    }
}

void UIViewController::imp_endAppearanceTransition() {
    if (appearance_ == Appearance::Appearing) {
        appearance_ = Appearance::Appeared;
        viewDidAppear(appearanceAnimated_);
    } else if (appearance_ == Appearance::Disappearing) {
        appearance_ = Appearance::Disappeared;
        viewDidDisappear(appearanceAnimated_);
    } else {
        return;
    }
    for (UIViewController* child : appearanceChildren()) child->endAppearanceTransition();
}

UINavigationController* UIViewController::imp_navigationController() {
    for (UIViewController* c = parent_; c != nullptr; c = c->parent_) {
        if (objc::isKindOf(c, UINavigationController::objcClass())) {
            return static_cast<UINavigationController*>(c);
        }
    }
    return nullptr;
}

NSArray* UIViewController::imp_childViewControllers() const {
    std::vector<id> list(children_.begin(), children_.end());
    return objc::autorelease(NSArray::create(std::move(list)).leak());
}

void UIViewController::imp_addChildViewController(UIViewController* child) {
    if (child == nullptr || child == this || child->parent_ == this) return;
    const objc::Strong<UIViewController> keep = objc::retained(child);
    if (child->parent_ != nullptr) child->removeFromParentViewController();
    child->willMoveToParentViewController(this);
    children_.push_back(keep);
    child->parent_ = this;
}

void UIViewController::imp_removeFromParentViewController() {
    UIViewController* const parent = parent_;
    if (parent == nullptr) return;
    // The parent's reference may be the last: keep this controller alive
    // until the move is complete.
    const objc::Strong<UIViewController> keep = objc::retained(this);
    auto& list = parent->children_;
    list.erase(
        std::remove_if(list.begin(), list.end(), [this](const auto& c) { return c.get() == this; }),
        list.end());
    parent_ = nullptr;
    didMoveToParentViewController(nullptr);
}

bool UIViewController::isCoveredBy(UIViewController* presented) {
    const UIModalPresentationStyle style = presented->modalPresentationStyle();
    if (style == UIModalPresentationOverFullScreen ||
        style == UIModalPresentationOverCurrentContext || style == UIModalPresentationCustom) {
        return false;
    }
    // A compact screen shows sheets and popovers full screen.
    if (uikit::currentDeviceProfile().idiom != UIUserInterfaceIdiomPad) return true;
    return style == UIModalPresentationFullScreen || style == UIModalPresentationCurrentContext;
}

void UIViewController::imp_presentViewController(UIViewController* controller, bool animated,
                                                 Completion* completion) {
    if (controller == nullptr) {
        objc::raise(objc::exception_name::InvalidArgument,
                    "Application tried to present a nil modal view controller on target " +
                        describe(this) + ".");
    }
    if (controller == this || controller->presenting_ != nullptr ||
        controller->parent_ != nullptr) {
        objc::raise(
            objc::exception_name::InvalidArgument,
            "Application tried to present modally an active controller " + describe(this) + ".");
    }
    if (presented_) {
        NSLog(NSSTR("Warning: Attempt to present %s on %s which is already presenting %s"),
              describe(controller).c_str(), describe(this).c_str(),
              describe(presented_.get()).c_str());
        return;
    }
    presented_ = objc::retained(controller);
    controller->presenting_ = this;
    const bool covers = isCoveredBy(controller);

    controller->beginAppearanceTransition(true, animated);
    // The presented view goes on top of the presenter's window, where the
    // device puts its transition view.
    if (UIWindow* window = view_ ? view_->window() : nullptr) {
        UIView* shown = controller->view();
        shown->setFrame(window->bounds());
        window->addSubview(shown);
    }
    if (covers) beginAppearanceTransition(false, animated);

    const objc::Strong<UIViewController> presenter = objc::retained(this);
    const objc::Strong<UIViewController> presented = objc::retained(controller);
    const objc::Strong<Completion> done = objc::retained(completion);
    dispatch_async(dispatch_get_main_queue(), [presenter, presented, done, covers] {
        presented->endAppearanceTransition();
        if (covers) presenter->endAppearanceTransition();
        if (done) (*done)();
    });
}

void UIViewController::imp_dismissViewControllerAnimated(bool animated, Completion* completion) {
    UIViewController* presenter = presented_ ? this : presentingViewController();
    if (presenter == nullptr) return;

    // The whole chain above the presenter goes, topmost first.
    std::vector<objc::Strong<UIViewController>> chain;
    for (UIViewController* c = presenter->presented_.get(); c != nullptr; c = c->presented_.get()) {
        chain.push_back(objc::retained(c));
    }
    const bool uncovers = presenter->isCoveredBy(chain.front().get());
    for (auto it = chain.rbegin(); it != chain.rend(); ++it) {
        (*it)->beginAppearanceTransition(false, animated);
    }
    if (uncovers) presenter->beginAppearanceTransition(true, animated);
    for (const auto& c : chain) {
        if (UIView* shown = c->viewIfLoaded(); shown != nullptr && shown->window() != nullptr) {
            shown->removeFromSuperview();
        }
        c->presenting_ = nullptr;
        c->presented_.reset();
    }
    presenter->presented_.reset();

    const objc::Strong<UIViewController> keepPresenter = objc::retained(presenter);
    const objc::Strong<Completion> done = objc::retained(completion);
    dispatch_async(dispatch_get_main_queue(), [keepPresenter, chain, done, uncovers] {
        for (auto it = chain.rbegin(); it != chain.rend(); ++it) (*it)->endAppearanceTransition();
        if (uncovers) keepPresenter->endAppearanceTransition();
        if (done) (*done)();
    });
}

UIViewController* UIViewController::imp_presentingViewController() const {
    for (const UIViewController* c = this; c != nullptr; c = c->parent_) {
        if (c->presenting_ != nullptr) return c->presenting_;
    }
    return nullptr;
}

UIViewController* UIViewController::topPresentedController() noexcept {
    UIViewController* top = this;
    while (top->presented_) top = top->presented_.get();
    return top;
}

UIResponder* UIViewController::imp_nextResponder() {
    if (view_ && view_->superview_ != nullptr) return view_->superview_;
    if (parent_ != nullptr) return parent_;
    return presenting_;
}
