#include <UIKit/UISwitch.h>

#include <objc/image.h>

#include <cairo.h>

OBJC_DEFINE_CLASS(UISwitch, UIControl, "UISwitch")
OBJC_REGISTER_CLASS(UISwitch)

namespace {

// A switch is always drawn at the platform's size, whatever frame it gets.
constexpr CGSize kSwitchSize{51, 31};
// The flat look: a green track when on, a light grey outline when off.
constexpr uikit::RGBA kOnTrack{76.0 / 255, 217.0 / 255, 100.0 / 255, 1};
constexpr uikit::RGBA kOffOutline{229.0 / 255, 229.0 / 255, 229.0 / 255, 1};
constexpr uikit::RGBA kKnobEdge{0, 0, 0, 0.12};
constexpr CGFloat kKnobInset = 2;

}  // namespace

void UISwitch::objcDefine(objc::ClassBuilder<UISwitch>& b) {
    b.method<&UISwitch::imp_initWithFrame>("initWithFrame:")
        .property<&UISwitch::on_>("on", objc::Nonatomic | objc::getter("isOn"))
        .method<&UISwitch::imp_setOnAnimated>("setOn:animated:")
        .method<&UISwitch::imp_userToggle>("_userToggle")
        .method<&UISwitch::imp_drawRect>("drawRect:");
}

UISwitch* UISwitch::imp_initWithFrame(CGRect frame) {
    frame.size = kSwitchSize;
    objc::superSend<UIView*>(this, objc::sel<"initWithFrame:">(), frame);
    return this;
}

void UISwitch::imp_setOnAnimated(bool on, bool /*animated*/) {
    setOn(on);
}

bool UISwitch::imp_userToggle() {
    if (!isEnabled()) return false;
    setOnAnimated(!isOn(), true);
    sendActionsForControlEvents(UIControlEventValueChanged);
    return true;
}

void UISwitch::imp_drawRect(CGRect /*rect*/) {
    cairo_t* cairo = uikit::cairoContext(UIGraphicsGetCurrentContext());
    if (cairo == nullptr) return;
    const CGRect track{{0, 0}, kSwitchSize};
    const CGFloat radius = kSwitchSize.height / 2;
    if (on_) {
        uikit::setSourceRGBA(cairo, kOnTrack);
        uikit::roundedRectPath(cairo, track, radius);
        cairo_fill(cairo);
    } else {
        cairo_set_source_rgb(cairo, 1, 1, 1);
        uikit::roundedRectPath(cairo, track, radius);
        cairo_fill_preserve(cairo);
        uikit::setSourceRGBA(cairo, kOffOutline);
        cairo_set_line_width(cairo, 1.5);
        cairo_stroke(cairo);
    }
    const CGFloat knob = kSwitchSize.height - 2 * kKnobInset;
    const CGFloat x = on_ ? kSwitchSize.width - kKnobInset - knob : kKnobInset;
    const CGRect knobRect{{x, kKnobInset}, {knob, knob}};
    uikit::roundedRectPath(cairo, knobRect, knob / 2);
    cairo_set_source_rgb(cairo, 1, 1, 1);
    cairo_fill_preserve(cairo);
    uikit::setSourceRGBA(cairo, kKnobEdge);
    cairo_set_line_width(cairo, 0.5);
    cairo_stroke(cairo);
}
