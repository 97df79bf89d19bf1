// A screen's controller: its view (loaded on first use), its place among
// parent and child controllers, and modal presentation.
//
// Ownership follows the platform: a presenter holds the controller it
// presents, a parent its children, a controller its view; the reverse links
// (presentingViewController, parentViewController) are back references that
// the owner clears when it lets go.
//
// Appearance: viewWillAppear: and friends are sent as a controller's view
// comes and goes. A presentation sends the will- messages at once and the
// did- messages, then the completion, from the main queue once the
// transition is over (one turn of the main run loop), as an animated
// transition does on the device.
#pragma once

#include <UIKit/UIResponder.h>
#include <UIKit/UIView.h>

#include <objc/block.h>

#include <vector>

class NSArray;
class NSString;
class UINavigationController;

enum UIModalPresentationStyle : NSInteger {
    UIModalPresentationFullScreen = 0,
    UIModalPresentationPageSheet = 1,
    UIModalPresentationFormSheet = 2,
    UIModalPresentationCurrentContext = 3,
    UIModalPresentationCustom = 4,
    UIModalPresentationOverFullScreen = 5,
    UIModalPresentationOverCurrentContext = 6,
    UIModalPresentationPopover = 7,
    UIModalPresentationNone = -1,
};

class PV_EXPORT UIViewController : public UIResponder {
    OBJC_CLASS(UIViewController)

    using Completion = objc::Block<void()>;

    // [[UIViewController alloc] init], for C++ callers.
    static objc::Strong<UIViewController> create() { return objc::make<UIViewController>(); }

    UIViewController* initWithNibNameBundle(NSString* nibName, id bundle) {
        return objc::msgSend<UIViewController*>(this, objc::sel<"initWithNibName:bundle:">(),
                                                nibName, bundle);
    }

    // Loads the view on first use: loadView, then viewDidLoad.
    UIView* view() { return objc::msgSend<UIView*>(this, objc::sel<"view">()); }
    void setView(UIView* view) { objc::msgSend<void>(this, objc::sel<"setView:">(), view); }
    UIView* viewIfLoaded() { return objc::msgSend<UIView*>(this, objc::sel<"viewIfLoaded">()); }
    bool isViewLoaded() { return objc::msgSend<bool>(this, objc::sel<"isViewLoaded">()); }
    // Makes the view; the default is a plain view the size of the screen.
    void loadView() { objc::msgSend<void>(this, objc::sel<"loadView">()); }
    void viewDidLoad() { objc::msgSend<void>(this, objc::sel<"viewDidLoad">()); }
    void viewWillAppear(bool animated) {
        objc::msgSend<void>(this, objc::sel<"viewWillAppear:">(), animated);
    }
    void viewDidAppear(bool animated) {
        objc::msgSend<void>(this, objc::sel<"viewDidAppear:">(), animated);
    }
    void viewWillDisappear(bool animated) {
        objc::msgSend<void>(this, objc::sel<"viewWillDisappear:">(), animated);
    }
    void viewDidDisappear(bool animated) {
        objc::msgSend<void>(this, objc::sel<"viewDidDisappear:">(), animated);
    }
    // Sends viewWillAppear: / viewWillDisappear: (and, for a container, to
    // its visible children) unless the controller is already on its way
    // there; endAppearanceTransition sends the matching did- message.
    void beginAppearanceTransition(bool appearing, bool animated) {
        objc::msgSend<void>(this, objc::sel<"beginAppearanceTransition:animated:">(), appearing,
                            animated);
    }
    void endAppearanceTransition() {
        objc::msgSend<void>(this, objc::sel<"endAppearanceTransition">());
    }

    NSString* title() { return objc::msgSend<NSString*>(this, objc::sel<"title">()); }
    void setTitle(NSString* title) { objc::msgSend<void>(this, objc::sel<"setTitle:">(), title); }

    UIViewController* parentViewController() {
        return objc::msgSend<UIViewController*>(this, objc::sel<"parentViewController">());
    }
    // The nearest navigation controller among the ancestors, or nil.
    UINavigationController* navigationController() {
        return objc::msgSend<UINavigationController*>(this, objc::sel<"navigationController">());
    }
    NSArray* childViewControllers() {
        return objc::msgSend<NSArray*>(this, objc::sel<"childViewControllers">());
    }
    void addChildViewController(UIViewController* child) {
        objc::msgSend<void>(this, objc::sel<"addChildViewController:">(), child);
    }
    void removeFromParentViewController() {
        objc::msgSend<void>(this, objc::sel<"removeFromParentViewController">());
    }
    void willMoveToParentViewController(UIViewController* parent) {
        objc::msgSend<void>(this, objc::sel<"willMoveToParentViewController:">(), parent);
    }
    void didMoveToParentViewController(UIViewController* parent) {
        objc::msgSend<void>(this, objc::sel<"didMoveToParentViewController:">(), parent);
    }

    // Presents modally. A nil controller, or one that is already presented
    // or in a container, raises NSInvalidArgumentException. A receiver that
    // already presents a controller refuses with a warning on standard error,
    // and the completion does not run. The completion (may be nil) runs on
    // the main queue after the transition.
    void presentViewController(UIViewController* controller, bool animated,
                               Completion* completion) {
        objc::msgSend<void>(this, objc::sel<"presentViewController:animated:completion:">(),
                            controller, animated, completion);
    }
    // Sent to a presenter: dismisses the controller it presents (with any it
    // presents in turn). Sent to a presented controller that presents
    // nothing: dismisses itself. With nothing to dismiss nothing happens and
    // the completion does not run, as on the device.
    void dismissViewControllerAnimated(bool animated, Completion* completion) {
        objc::msgSend<void>(this, objc::sel<"dismissViewControllerAnimated:completion:">(),
                            animated, completion);
    }
    UIViewController* presentedViewController() {
        return objc::msgSend<UIViewController*>(this, objc::sel<"presentedViewController">());
    }
    // The presenter of this controller or of its nearest presented ancestor.
    UIViewController* presentingViewController() {
        return objc::msgSend<UIViewController*>(this, objc::sel<"presentingViewController">());
    }
    UIModalPresentationStyle modalPresentationStyle() {
        return objc::msgSend<UIModalPresentationStyle>(this, objc::sel<"modalPresentationStyle">());
    }
    void setModalPresentationStyle(UIModalPresentationStyle style) {
        objc::msgSend<void>(this, objc::sel<"setModalPresentationStyle:">(), style);
    }

    // C++ views of the state, without messages.
    enum class Appearance { Disappeared, Appearing, Appeared, Disappearing };
    Appearance appearance() const noexcept { return appearance_; }
    UIViewController* presentedController() const noexcept { return presented_.get(); }
    const std::vector<objc::Strong<UIViewController>>& childList() const noexcept {
        return children_;
    }
    // The controller at the top of the presentation chain that starts here.
    UIViewController* topPresentedController() noexcept;

    UIViewController() = default;
    ~UIViewController() override;

  protected:
    // The children that appear and disappear with this controller; all of
    // them by default (a navigation controller answers its top one).
    virtual std::vector<UIViewController*> appearanceChildren();

  private:
    UIViewController* imp_init();
    UIViewController* imp_initWithNibNameBundle(NSString* nibName, id bundle);
    UIView* imp_view();
    void imp_setView(UIView* view);
    bool imp_isViewLoaded() const { return static_cast<bool>(view_); }
    void imp_loadView();
    void imp_viewDidLoad() {}
    void imp_viewWillAppear(bool) {}
    void imp_viewDidAppear(bool) {}
    void imp_viewWillDisappear(bool) {}
    void imp_viewDidDisappear(bool) {}
    void imp_beginAppearanceTransition(bool appearing, bool animated);
    void imp_endAppearanceTransition();
    UINavigationController* imp_navigationController();
    NSArray* imp_childViewControllers() const;
    void imp_addChildViewController(UIViewController* child);
    void imp_removeFromParentViewController();
    void imp_willMoveToParentViewController(UIViewController*) {}
    void imp_didMoveToParentViewController(UIViewController*) {}
    void imp_presentViewController(UIViewController* controller, bool animated,
                                   Completion* completion);
    void imp_dismissViewControllerAnimated(bool animated, Completion* completion);
    UIViewController* imp_presentingViewController() const;
    UIResponder* imp_nextResponder();

    // Whether presenting `presented` hides this controller's view.
    bool isCoveredBy(UIViewController* presented);

    objc::Strong<UIView> view_;
    objc::Strong<NSString> title_;
    UIViewController* parent_ = nullptr;  // not retained: the parent holds us
    std::vector<objc::Strong<UIViewController>> children_;
    objc::Strong<UIViewController> presented_;
    UIViewController* presenting_ = nullptr;  // not retained: the presenter holds us
    UIModalPresentationStyle modalStyle_ = UIModalPresentationFullScreen;
    Appearance appearance_ = Appearance::Disappeared;
    bool appearanceAnimated_ = false;
};
