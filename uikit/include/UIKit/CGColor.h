// A colour as the drawing layer sees it: a reference-counted value of
// components in a grey or an RGB colour space. Layers hold these, not
// UIColor objects, as on the platform.
#pragma once

#include <objc/encoding.h>
#include <objc/geometry.h>

#include <cstddef>

struct CGColor;
using CGColorRef = CGColor*;

template <>
struct objc::TypeEncoding<CGColor> : objc::StructEncoding<"CGColor"> {};

// A new colour with one reference (release it with CGColorRelease).
PV_EXPORT CGColorRef CGColorCreateRGBA(CGFloat red, CGFloat green, CGFloat blue, CGFloat alpha);
PV_EXPORT CGColorRef CGColorCreateGray(CGFloat white, CGFloat alpha);
// Null is allowed and answered with null / ignored.
PV_EXPORT CGColorRef CGColorRetain(CGColorRef color);
PV_EXPORT void CGColorRelease(CGColorRef color);
// 2 for grey (white, alpha), 4 for RGB (red, green, blue, alpha); 0 for null.
PV_EXPORT std::size_t CGColorGetNumberOfComponents(CGColorRef color);
PV_EXPORT const CGFloat* CGColorGetComponents(CGColorRef color);
PV_EXPORT CGFloat CGColorGetAlpha(CGColorRef color);
PV_EXPORT bool CGColorEqualToColor(CGColorRef a, CGColorRef b);

namespace uikit {

struct RGBA {
    CGFloat red = 0, green = 0, blue = 0, alpha = 0;
};
// The colour as RGB; null is transparent black.
PV_EXPORT RGBA rgbaOf(CGColorRef color);

// Owns one reference to a colour.
class ColorRef {
  public:
    ColorRef() = default;
    // Takes over a reference the caller owns.
    static ColorRef adopt(CGColorRef color) { return ColorRef(color); }
    static ColorRef retain(CGColorRef color) { return ColorRef(CGColorRetain(color)); }
    ColorRef(const ColorRef& other) : color_(CGColorRetain(other.color_)) {}
    ColorRef(ColorRef&& other) noexcept : color_(other.color_) { other.color_ = nullptr; }
    ColorRef& operator=(ColorRef other) noexcept {
        std::swap(color_, other.color_);
        return *this;
    }
    ~ColorRef() { CGColorRelease(color_); }
    CGColorRef get() const noexcept { return color_; }

  private:
    explicit ColorRef(CGColorRef color) : color_(color) {}
    CGColorRef color_ = nullptr;
};

}  // namespace uikit
