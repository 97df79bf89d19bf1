#include <UIKit/UINavigationBar.h>
#include <UIKit/device_profile.h>

#include <UIKit/UINavigationController.h>

#include <objc/image.h>

#include <cairo.h>

OBJC_DEFINE_CLASS(UINavigationBar, UIView, "UINavigationBar")
OBJC_REGISTER_CLASS(UINavigationBar)

namespace {

constexpr CGFloat kStatusBar = 20;
constexpr CGFloat kBar = 44;
constexpr uikit::RGBA kBarColor{247.0 / 255, 247.0 / 255, 247.0 / 255, 1};
constexpr uikit::RGBA kShadow{0, 0, 0, 0.3};
constexpr CGFloat kChevronLeft = 8;
constexpr CGSize kChevron{12.5, 21};
constexpr CGFloat kBackTitleLeft = 26;
constexpr CGFloat kTitleWidthShare = 0.5;

}  // namespace

void UINavigationBar::objcDefine(objc::ClassBuilder<UINavigationBar>& b) {
    b.method<&UINavigationBar::imp_initWithFrame>("initWithFrame:")
        .method<&UINavigationBar::imp_drawRect>("drawRect:");
}

UINavigationBar* UINavigationBar::imp_initWithFrame(CGRect frame) {
    objc::superSend<UIView*>(this, objc::sel<"initWithFrame:">(), frame);
    const CGFloat width = frame.size.width;
    title_ = UILabel::create(
        CGRectMake(width * (1 - kTitleWidthShare) / 2, kStatusBar, width * kTitleWidthShare, kBar));
    title_->setTextAlignment(NSTextAlignmentCenter);
    back_ = UILabel::create(
        CGRectMake(kBackTitleLeft, kStatusBar, width * (1 - kTitleWidthShare) / 2 - 30, kBar));
    back_->setHidden(true);
    addSubview(title_.get());
    addSubview(back_.get());
    return this;
}

void UINavigationBar::show(NSString* title, NSString* backTitle) {
    title_->setText(title);
    showsBack_ = backTitle != nullptr;
    back_->setText(backTitle);
    back_->setHidden(!showsBack_);
}

void UINavigationBar::imp_drawRect(CGRect rect) {
    cairo_t* cairo = uikit::cairoContext(UIGraphicsGetCurrentContext());
    if (cairo == nullptr) return;
    if (controller_ != nullptr) {
        // The stack as it is now: titles may have changed since the last push.
        const auto& stack = controller_->childList();
        NSString* title = stack.empty() ? nullptr : stack.back()->title();
        NSString* back = nullptr;
        if (stack.size() > 1) {
            back = stack[stack.size() - 2]->title();
            if (back == nullptr || back->length() == 0) back = NSSTR("Back");
        }
        show(title, back);
    }
    // The back button is the tint's colour, at the leading edge.
    const bool rightToLeft = uikit::userInterfaceIsRightToLeft();
    const CGFloat width = bounds().size.width;
    const CGFloat backWidth = width * (1 - kTitleWidthShare) / 2 - 30;
    back_->setFrame(CGRectMake(rightToLeft ? width - kBackTitleLeft - backWidth : kBackTitleLeft,
                               kStatusBar, backWidth, kBar));
    back_->setTextAlignment(rightToLeft ? NSTextAlignmentRight : NSTextAlignmentLeft);
    back_->setTextColor(tintColor());
    uikit::setSourceRGBA(cairo, kBarColor);
    cairo_rectangle(cairo, rect.origin.x, rect.origin.y, rect.size.width, rect.size.height);
    cairo_fill(cairo);
    // The hairline under the bar: one device pixel.
    double hairline = 1, unused = 0;
    cairo_device_to_user_distance(cairo, &hairline, &unused);
    uikit::setSourceRGBA(cairo, kShadow);
    cairo_rectangle(cairo, rect.origin.x, rect.origin.y + rect.size.height - hairline,
                    rect.size.width, hairline);
    cairo_fill(cairo);
    if (!showsBack_) return;
    const CGFloat middle = kStatusBar + kBar / 2;
    uikit::setSourceColor(cairo, tintColor()->CGColor());
    cairo_set_line_width(cairo, 3);
    cairo_set_line_cap(cairo, CAIRO_LINE_CAP_ROUND);
    cairo_set_line_join(cairo, CAIRO_LINE_JOIN_ROUND);
    // Mirrored, the chevron points right from the right edge.
    const double edge = rightToLeft ? width : 0;
    const double direction = rightToLeft ? -1 : 1;
    cairo_move_to(cairo, edge + direction * (kChevronLeft + kChevron.width),
                  middle - kChevron.height / 2);
    cairo_line_to(cairo, edge + direction * (kChevronLeft + 1.5), middle);
    cairo_line_to(cairo, edge + direction * (kChevronLeft + kChevron.width),
                  middle + kChevron.height / 2);
    cairo_stroke(cairo);
}
