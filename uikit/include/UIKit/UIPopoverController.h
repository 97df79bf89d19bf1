// A controller shown in a floating box anchored at a rectangle of a view.
//
// A shown popover keeps itself alive (its caller usually keeps no reference)
// in the process's list of visible popovers until it is dismissed; the C++
// side reads that list to find what is on screen. The delegate is not
// retained.
#pragma once

#include <UIKit/UIViewController.h>

#include <objc/geometry.h>
#include <objc/options.h>

#include <vector>

enum UIPopoverArrowDirection : NSUInteger {
    UIPopoverArrowDirectionUp = 1,
    UIPopoverArrowDirectionDown = 2,
    UIPopoverArrowDirectionLeft = 4,
    UIPopoverArrowDirectionRight = 8,
    UIPopoverArrowDirectionAny = 15,
    UIPopoverArrowDirectionUnknown = ~0ul,
};
OBJC_OPTIONS(UIPopoverArrowDirection);

class PV_EXPORT UIPopoverController : public NSObject {
    OBJC_CLASS(UIPopoverController)

    // Before iOS 8 popovers exist on the iPad only: elsewhere this raises
    // NSInvalidArgumentException, as on the device.
    UIPopoverController* initWithContentViewController(UIViewController* content) {
        return objc::msgSend<UIPopoverController*>(
            this, objc::sel<"initWithContentViewController:">(), content);
    }

    UIViewController* contentViewController() {
        return objc::msgSend<UIViewController*>(this, objc::sel<"contentViewController">());
    }
    void setContentViewController(UIViewController* content) {
        objc::msgSend<void>(this, objc::sel<"setContentViewController:">(), content);
    }
    id delegate() { return objc::msgSend<id>(this, objc::sel<"delegate">()); }
    void setDelegate(id delegate) {
        objc::msgSend<void>(this, objc::sel<"setDelegate:">(), delegate);
    }
    CGSize popoverContentSize() {
        return objc::msgSend<CGSize>(this, objc::sel<"popoverContentSize">());
    }
    void setPopoverContentSize(CGSize size) {
        objc::msgSend<void>(this, objc::sel<"setPopoverContentSize:">(), size);
    }

    // Shows the content anchored at `rect` of `view`. A view that is not in
    // a window raises NSInvalidArgumentException, as on the device.
    void presentPopoverFromRect(CGRect rect, UIView* view, UIPopoverArrowDirection arrows,
                                bool animated) {
        objc::msgSend<void>(
            this, objc::sel<"presentPopoverFromRect:inView:permittedArrowDirections:animated:">(),
            rect, view, arrows, animated);
    }
    bool isPopoverVisible() { return objc::msgSend<bool>(this, objc::sel<"isPopoverVisible">()); }
    // Hides it; the delegate is not told (a dismissal the code asks for).
    void dismissPopoverAnimated(bool animated) {
        objc::msgSend<void>(this, objc::sel<"dismissPopoverAnimated:">(), animated);
    }

    // The user taps outside: asks the delegate's
    // popoverControllerShouldDismissPopover: (where it answers), then
    // dismisses and tells popoverControllerDidDismissPopover:. Answers
    // whether the popover went away.
    bool dismissByUser();

    // Where it was last presented.
    CGRect presentedRect() const noexcept { return rect_; }
    UIView* presentedInView() const noexcept { return anchor_.get(); }
    UIPopoverArrowDirection permittedArrowDirections() const noexcept { return arrows_; }

    // The visible popovers, oldest first, and the newest one (or null).
    static std::vector<UIPopoverController*> visiblePopovers();
    static UIPopoverController* topVisiblePopover();

    UIPopoverController() = default;

  private:
    UIPopoverController* imp_initWithContentViewController(UIViewController* content);
    UIViewController* imp_contentViewController() const { return content_.get(); }
    void imp_setContentViewController(UIViewController* content);
    void imp_presentPopoverFromRect(CGRect rect, UIView* view, UIPopoverArrowDirection arrows,
                                    bool animated);
    bool imp_isPopoverVisible() const { return visible_; }
    void imp_dismissPopoverAnimated(bool animated);

    objc::Strong<UIViewController> content_;
    id delegate_ = nullptr;  // not retained
    CGSize contentSize_{320, 480};
    bool visible_ = false;
    CGRect rect_{};
    objc::Strong<UIView> anchor_;
    UIPopoverArrowDirection arrows_ = UIPopoverArrowDirectionUnknown;
};
