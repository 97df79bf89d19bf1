#include <UIKit/UIColor.h>

#include <objc/image.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>

OBJC_DEFINE_CLASS(UIColor, NSObject, "UIColor")
OBJC_REGISTER_CLASS(UIColor)

namespace {

struct NamedColor {
    const char* selector;
    uikit::RGBA rgba;
    bool gray;
};

// The platform's named colours and their component values.
constexpr std::array<NamedColor, 15> kNamed{{
    {"blackColor", {0, 0, 0, 1}, true},
    {"darkGrayColor", {1.0 / 3, 1.0 / 3, 1.0 / 3, 1}, true},
    {"lightGrayColor", {2.0 / 3, 2.0 / 3, 2.0 / 3, 1}, true},
    {"whiteColor", {1, 1, 1, 1}, true},
    {"grayColor", {0.5, 0.5, 0.5, 1}, true},
    {"redColor", {1, 0, 0, 1}, false},
    {"greenColor", {0, 1, 0, 1}, false},
    {"blueColor", {0, 0, 1, 1}, false},
    {"cyanColor", {0, 1, 1, 1}, false},
    {"yellowColor", {1, 1, 0, 1}, false},
    {"magentaColor", {1, 0, 1, 1}, false},
    {"orangeColor", {1, 0.5, 0, 1}, false},
    {"purpleColor", {0.5, 0, 0.5, 1}, false},
    {"brownColor", {0.6, 0.4, 0.2, 1}, false},
    {"clearColor", {0, 0, 0, 0}, true},
}};

CGFloat clamp01(CGFloat value) {
    return std::isnan(value) ? 0 : std::clamp<CGFloat>(value, 0, 1);
}

UIColor* makeColor(Class cls, const uikit::RGBA& c, bool gray) {
    id obj = objc::msgSend<id>(cls, objc::sel<"alloc">());
    id made = gray ? objc::msgSend<id>(obj, objc::sel<"initWithWhite:alpha:">(), c.red, c.alpha)
                   : objc::msgSend<id>(obj, objc::sel<"initWithRed:green:blue:alpha:">(), c.red,
                                       c.green, c.blue, c.alpha);
    return static_cast<UIColor*>(objc_autorelease(made));
}

}  // namespace

template <int Index>
UIColor* UIColor::imp_named(Class cls) {
    return makeColor(cls, kNamed[Index].rgba, kNamed[Index].gray);
}

void UIColor::objcDefine(objc::ClassBuilder<UIColor>& b) {
    using C = UIColor;
    b.classMethod<&C::imp_colorWithRGBA>("colorWithRed:green:blue:alpha:")
        .classMethod<&C::imp_colorWithHSBA>("colorWithHue:saturation:brightness:alpha:")
        .classMethod<&C::imp_colorWithWhite>("colorWithWhite:alpha:")
        .method<&C::imp_initWithRGBA>("initWithRed:green:blue:alpha:")
        .method<&C::imp_initWithWhite>("initWithWhite:alpha:")
        .method<&C::imp_getRGBA>("getRed:green:blue:alpha:")
        .method<&C::imp_CGColor>("CGColor")
        .method<&C::imp_colorWithAlphaComponent>("colorWithAlphaComponent:")
        .method<&C::imp_isEqual>("isEqual:")
        .method<&C::imp_hash>("hash");
    b.classMethod<&C::imp_named<0>>(kNamed[0].selector)
        .classMethod<&C::imp_named<1>>(kNamed[1].selector)
        .classMethod<&C::imp_named<2>>(kNamed[2].selector)
        .classMethod<&C::imp_named<3>>(kNamed[3].selector)
        .classMethod<&C::imp_named<4>>(kNamed[4].selector)
        .classMethod<&C::imp_named<5>>(kNamed[5].selector)
        .classMethod<&C::imp_named<6>>(kNamed[6].selector)
        .classMethod<&C::imp_named<7>>(kNamed[7].selector)
        .classMethod<&C::imp_named<8>>(kNamed[8].selector)
        .classMethod<&C::imp_named<9>>(kNamed[9].selector)
        .classMethod<&C::imp_named<10>>(kNamed[10].selector)
        .classMethod<&C::imp_named<11>>(kNamed[11].selector)
        .classMethod<&C::imp_named<12>>(kNamed[12].selector)
        .classMethod<&C::imp_named<13>>(kNamed[13].selector)
        .classMethod<&C::imp_named<14>>(kNamed[14].selector);
}

UIColor* UIColor::imp_colorWithRGBA(Class cls, CGFloat r, CGFloat g, CGFloat b, CGFloat a) {
    return makeColor(cls, {r, g, b, a}, false);
}

UIColor* UIColor::imp_colorWithHSBA(Class cls, CGFloat h, CGFloat s, CGFloat v, CGFloat a) {
    h = clamp01(h) * 6;
    s = clamp01(s);
    v = clamp01(v);
    const int sector = static_cast<int>(std::floor(h)) % 6;
    const CGFloat f = h - std::floor(h);
    const CGFloat p = v * (1 - s);
    const CGFloat q = v * (1 - s * f);
    const CGFloat t = v * (1 - s * (1 - f));
    static constexpr int kOrder[6][3] = {{0, 3, 1}, {2, 0, 1}, {1, 0, 3},
                                         {1, 2, 0}, {3, 1, 0}, {0, 1, 2}};
    const CGFloat values[4] = {v, p, q, t};
    const int* o = kOrder[sector];
    return makeColor(cls, {values[o[0]], values[o[1]], values[o[2]], a}, false);
}

UIColor* UIColor::imp_colorWithWhite(Class cls, CGFloat white, CGFloat alpha) {
    return makeColor(cls, {white, white, white, alpha}, true);
}

UIColor* UIColor::imp_initWithRGBA(CGFloat r, CGFloat g, CGFloat b, CGFloat a) {
    rgba_ = {clamp01(r), clamp01(g), clamp01(b), clamp01(a)};
    gray_ = false;
    return this;
}

UIColor* UIColor::imp_initWithWhite(CGFloat white, CGFloat alpha) {
    const CGFloat w = clamp01(white);
    rgba_ = {w, w, w, clamp01(alpha)};
    gray_ = true;
    return this;
}

bool UIColor::imp_getRGBA(CGFloat* r, CGFloat* g, CGFloat* b, CGFloat* a) const {
    if (r != nullptr) *r = rgba_.red;
    if (g != nullptr) *g = rgba_.green;
    if (b != nullptr) *b = rgba_.blue;
    if (a != nullptr) *a = rgba_.alpha;
    return true;
}

CGColorRef UIColor::imp_CGColor() {
    // Made once and kept: callers that keep it longer retain it.
    if (cgColor_.get() == nullptr) {
        cgColor_ = uikit::ColorRef::adopt(
            gray_ ? CGColorCreateGray(rgba_.red, rgba_.alpha)
                  : CGColorCreateRGBA(rgba_.red, rgba_.green, rgba_.blue, rgba_.alpha));
    }
    return cgColor_.get();
}

UIColor* UIColor::imp_colorWithAlphaComponent(CGFloat alpha) {
    return makeColor(getClass(), {rgba_.red, rgba_.green, rgba_.blue, alpha}, gray_);
}

bool UIColor::imp_isEqual(id other) const {
    if (other == this) return true;
    if (other == nullptr || !objc::isKindOf(other, UIColor::objcClass())) return false;
    const auto& c = static_cast<UIColor*>(other)->rgba_;
    return c.red == rgba_.red && c.green == rgba_.green && c.blue == rgba_.blue &&
           c.alpha == rgba_.alpha;
}

NSUInteger UIColor::imp_hash() const {
    // Components quantised to 8 bits: equal colours hash alike.
    const auto byte = [](CGFloat v) { return static_cast<NSUInteger>(std::lround(v * 255)); };
    return (byte(rgba_.red) << 24) | (byte(rgba_.green) << 16) | (byte(rgba_.blue) << 8) |
           byte(rgba_.alpha);
}
