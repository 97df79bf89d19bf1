// The bar at the top of a navigation controller's screen: the status bar's
// strip and a 44-point bar with the top screen's title and, below the root,
// a back button (a chevron and the previous screen's title) in the tint colour.
#pragma once

#include <UIKit/UILabel.h>
#include <UIKit/UIView.h>

#include <objc/string.h>

class UINavigationController;

class PV_EXPORT UINavigationBar : public UIView {
    OBJC_CLASS(UINavigationBar)

    // Status bar and bar together, in points.
    static constexpr CGFloat kHeight = 64;

    static objc::Strong<UINavigationBar> create(CGFloat width) {
        return objc::adopt(static_cast<UINavigationBar*>(
            objc::alloc<UINavigationBar>()->initWithFrame(CGRectMake(0, 0, width, kHeight))));
    }

    // What the bar shows (C++ side): the title, and the back button's title
    // or nothing (null) at the root.
    void show(NSString* title, NSString* backTitle);
    // The controller whose stack the bar shows when drawn (not retained:
    // the controller holds the bar).
    void setNavigationController(UINavigationController* controller) noexcept {
        controller_ = controller;
    }
    UILabel* titleLabel() const noexcept { return title_.get(); }
    UILabel* backLabel() const noexcept { return back_.get(); }
    bool showsBackButton() const noexcept { return showsBack_; }

    UINavigationBar() = default;

  private:
    UINavigationBar* imp_initWithFrame(CGRect frame);
    void imp_drawRect(CGRect rect);

    objc::Strong<UILabel> title_;
    objc::Strong<UILabel> back_;
    bool showsBack_ = false;
    UINavigationController* controller_ = nullptr;
};
