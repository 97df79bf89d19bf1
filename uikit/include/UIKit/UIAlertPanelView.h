// How an alert or an action sheet looks on screen: the screen dimmed, and a
// rounded panel with the title, the message and the buttons between
// hairlines (an alert centred, a sheet at the bottom with its cancel button
// apart). Texts are labels.
#pragma once

#include <UIKit/UILabel.h>
#include <UIKit/UIView.h>

#include <objc/string.h>

#include <vector>

enum class UIAlertPanelStyle { Alert, ActionSheet };

struct UIAlertPanelContent {
    UIAlertPanelStyle style = UIAlertPanelStyle::Alert;
    objc::Strong<NSString> title;
    objc::Strong<NSString> message;
    std::vector<objc::Strong<NSString>> buttons;
    NSInteger cancelIndex = -1;  // the button set apart (a sheet's), or -1
};

class PV_EXPORT UIAlertPanelView : public UIView {
    OBJC_CLASS(UIAlertPanelView)

    // A view covering `screen` that shows the content.
    static objc::Strong<UIAlertPanelView> create(CGRect screen, UIAlertPanelContent content);

    // The panels' places, in the view's bounds (a sheet's cancel panel is
    // the second; alerts have one).
    const std::vector<CGRect>& panels() const noexcept { return panels_; }

    UIAlertPanelView() = default;

  private:
    void imp_drawRect(CGRect rect);
    // Places the panels and makes the labels.
    void build();
    objc::Strong<UILabel> addLabel(NSString* text, CGRect frame);

    UIAlertPanelContent content_;
    std::vector<CGRect> panels_;
    std::vector<CGFloat> separators_;          // y of each hairline inside the panels
    std::vector<CGFloat> verticalSeparators_;  // x of hairlines between side-by-side buttons
    CGFloat verticalTop_ = 0;
    CGFloat verticalBottom_ = 0;
};
