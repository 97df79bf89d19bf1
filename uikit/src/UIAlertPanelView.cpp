#include <UIKit/UIAlertPanelView.h>

#include <objc/image.h>

#include "view_drawing.h"

#include <cairo.h>

#include <algorithm>

OBJC_DEFINE_CLASS(UIAlertPanelView, UIView, "UIAlertPanelView")
OBJC_REGISTER_CLASS(UIAlertPanelView)

namespace {

constexpr uikit::RGBA kDim{0, 0, 0, 0.4};
constexpr uikit::RGBA kPanel{0.97, 0.97, 0.97, 1};
constexpr uikit::RGBA kSeparator{0, 0, 0, 0.2};
constexpr CGFloat kCorner = 13;
constexpr CGFloat kAlertWidth = 270;
constexpr CGFloat kAlertButton = 44;
constexpr CGFloat kSheetButton = 57;
constexpr CGFloat kSheetMargin = 8;
constexpr CGFloat kTextInset = 16;
constexpr CGFloat kTitleHeight = 22;
constexpr CGFloat kMessageHeight = 36;
constexpr CGFloat kTextTop = 20;

}  // namespace

void UIAlertPanelView::objcDefine(objc::ClassBuilder<UIAlertPanelView>& b) {
    b.method<&UIAlertPanelView::imp_drawRect>("drawRect:");
}

objc::Strong<UIAlertPanelView> UIAlertPanelView::create(CGRect screen,
                                                        UIAlertPanelContent content) {
    auto view = objc::adopt(
        static_cast<UIAlertPanelView*>(objc::alloc<UIAlertPanelView>()->initWithFrame(screen)));
    view->content_ = std::move(content);
    view->build();
    return view;
}

objc::Strong<UILabel> UIAlertPanelView::addLabel(NSString* text, CGRect frame) {
    auto label = UILabel::create(frame);
    label->setText(text);
    label->setTextAlignment(NSTextAlignmentCenter);
    label->setNumberOfLines(0);
    addSubview(label.get());
    return label;
}

void UIAlertPanelView::build() {
    const CGSize screen = bounds().size;
    const bool sheet = content_.style == UIAlertPanelStyle::ActionSheet;
    const CGFloat width = sheet ? screen.width - 2 * kSheetMargin : kAlertWidth;
    const CGFloat buttonHeight = sheet ? kSheetButton : kAlertButton;
    std::vector<NSString*> inPanel;
    NSString* apart = nullptr;
    for (std::size_t i = 0; i < content_.buttons.size(); ++i) {
        if (sheet && static_cast<NSInteger>(i) == content_.cancelIndex) {
            apart = content_.buttons[i].get();
        } else {
            inPanel.push_back(content_.buttons[i].get());
        }
    }
    const bool title = uikit::hasText(content_.title.get());
    const bool message = uikit::hasText(content_.message.get());
    CGFloat textHeight = 0;
    if (title || message) {
        textHeight = kTextTop + (title ? kTitleHeight : 0) + (message ? kMessageHeight : 0) + 12;
    }
    // Two alert buttons sit side by side; otherwise they are stacked.
    const bool sideBySide = !sheet && inPanel.size() == 2;
    const std::size_t rows = sideBySide ? 1 : inPanel.size();
    const CGFloat panelHeight = textHeight + buttonHeight * static_cast<CGFloat>(rows);
    const CGFloat cancelHeight = apart != nullptr ? buttonHeight + kSheetMargin : 0;
    const CGFloat x = (screen.width - width) / 2;
    const CGFloat top = sheet ? screen.height - kSheetMargin - cancelHeight - panelHeight
                              : (screen.height - panelHeight) / 2;
    panels_.push_back(CGRectMake(x, top, width, panelHeight));
    CGFloat y = top + kTextTop;
    if (title) {
        addLabel(content_.title.get(),
                 CGRectMake(x + kTextInset, y, width - 2 * kTextInset, kTitleHeight));
        y += kTitleHeight;
    }
    if (message) {
        addLabel(content_.message.get(),
                 CGRectMake(x + kTextInset, y, width - 2 * kTextInset, kMessageHeight));
    }
    y = top + textHeight;
    if (sideBySide) {
        separators_.push_back(y);
        verticalSeparators_.push_back(x + width / 2);
        verticalTop_ = y;
        verticalBottom_ = y + buttonHeight;
        addLabel(inPanel[0], CGRectMake(x, y, width / 2, buttonHeight));
        addLabel(inPanel[1], CGRectMake(x + width / 2, y, width / 2, buttonHeight));
    } else {
        for (std::size_t i = 0; i < inPanel.size(); ++i) {
            if (i > 0 || textHeight > 0) separators_.push_back(y);
            addLabel(inPanel[i], CGRectMake(x, y, width, buttonHeight));
            y += buttonHeight;
        }
    }
    if (apart != nullptr) {
        const CGRect cancel =
            CGRectMake(x, screen.height - kSheetMargin - buttonHeight, width, buttonHeight);
        panels_.push_back(cancel);
        addLabel(apart, cancel);
    }
}

void UIAlertPanelView::imp_drawRect(CGRect rect) {
    cairo_t* cairo = uikit::cairoContext(UIGraphicsGetCurrentContext());
    if (cairo == nullptr) return;
    uikit::setSourceRGBA(cairo, kDim);
    cairo_rectangle(cairo, rect.origin.x, rect.origin.y, rect.size.width, rect.size.height);
    cairo_fill(cairo);
    uikit::setSourceRGBA(cairo, kPanel);
    for (const CGRect& panel : panels_) {
        uikit::roundedRectPath(cairo, panel, kCorner);
        cairo_fill(cairo);
    }
    if (panels_.empty()) return;
    const CGRect main = panels_.front();
    double hairline = 1, unused = 0;
    cairo_device_to_user_distance(cairo, &hairline, &unused);
    hairline = std::max(std::abs(hairline), 0.25);
    uikit::setSourceRGBA(cairo, kSeparator);
    for (const CGFloat y : separators_) {
        cairo_rectangle(cairo, main.origin.x, y, main.size.width, hairline);
    }
    for (const CGFloat x : verticalSeparators_) {
        cairo_rectangle(cairo, x, verticalTop_, hairline, verticalBottom_ - verticalTop_);
    }
    cairo_fill(cairo);
}
