// A colour: RGBA components from 0 to 1, made from RGB, HSB or a grey level,
// or one of the platform's named colours. Two colours are equal when their
// components are.
#pragma once

#include <UIKit/CGColor.h>

#include <objc/object.h>

class PV_EXPORT UIColor : public NSObject {
    OBJC_CLASS(UIColor)

    // Autoreleased.
    static UIColor* colorWithRGBA(CGFloat red, CGFloat green, CGFloat blue, CGFloat alpha) {
        return objc::msgSend<UIColor*>(objcClass(), objc::sel<"colorWithRed:green:blue:alpha:">(),
                                       red, green, blue, alpha);
    }
    // Hue, saturation and brightness from 0 to 1 (hue wraps around).
    static UIColor* colorWithHSBA(CGFloat hue, CGFloat saturation, CGFloat brightness,
                                  CGFloat alpha) {
        return objc::msgSend<UIColor*>(objcClass(),
                                       objc::sel<"colorWithHue:saturation:brightness:alpha:">(),
                                       hue, saturation, brightness, alpha);
    }
    static UIColor* colorWithWhite(CGFloat white, CGFloat alpha) {
        return objc::msgSend<UIColor*>(objcClass(), objc::sel<"colorWithWhite:alpha:">(), white,
                                       alpha);
    }
    static UIColor* blackColor() { return named<"blackColor">(); }
    static UIColor* darkGrayColor() { return named<"darkGrayColor">(); }
    static UIColor* lightGrayColor() { return named<"lightGrayColor">(); }
    static UIColor* whiteColor() { return named<"whiteColor">(); }
    static UIColor* grayColor() { return named<"grayColor">(); }
    static UIColor* redColor() { return named<"redColor">(); }
    static UIColor* greenColor() { return named<"greenColor">(); }
    static UIColor* blueColor() { return named<"blueColor">(); }
    static UIColor* cyanColor() { return named<"cyanColor">(); }
    static UIColor* yellowColor() { return named<"yellowColor">(); }
    static UIColor* magentaColor() { return named<"magentaColor">(); }
    static UIColor* orangeColor() { return named<"orangeColor">(); }
    static UIColor* purpleColor() { return named<"purpleColor">(); }
    static UIColor* brownColor() { return named<"brownColor">(); }
    static UIColor* clearColor() { return named<"clearColor">(); }

    // Answers true and fills the components (any pointer may be null).
    bool getRGBA(CGFloat* red, CGFloat* green, CGFloat* blue, CGFloat* alpha) {
        return objc::msgSend<bool>(this, objc::sel<"getRed:green:blue:alpha:">(), red, green, blue,
                                   alpha);
    }
    // The colour's CGColor, owned by the colour: retain it to keep it longer.
    CGColorRef CGColor() { return objc::msgSend<CGColorRef>(this, objc::sel<"CGColor">()); }
    UIColor* colorWithAlphaComponent(CGFloat alpha) {
        return objc::msgSend<UIColor*>(this, objc::sel<"colorWithAlphaComponent:">(), alpha);
    }

    // The components without a message.
    const uikit::RGBA& rgba() const noexcept { return rgba_; }

    UIColor() = default;

  private:
    template <objc::FixedString Name>
    static UIColor* named() {
        return objc::msgSend<UIColor*>(objcClass(), objc::sel<Name>());
    }
    static UIColor* imp_colorWithRGBA(Class cls, CGFloat r, CGFloat g, CGFloat b, CGFloat a);
    static UIColor* imp_colorWithHSBA(Class cls, CGFloat h, CGFloat s, CGFloat v, CGFloat a);
    static UIColor* imp_colorWithWhite(Class cls, CGFloat white, CGFloat alpha);
    template <int Index>
    static UIColor* imp_named(Class cls);
    UIColor* imp_initWithRGBA(CGFloat r, CGFloat g, CGFloat b, CGFloat a);
    UIColor* imp_initWithWhite(CGFloat white, CGFloat alpha);
    bool imp_getRGBA(CGFloat* r, CGFloat* g, CGFloat* b, CGFloat* a) const;
    CGColorRef imp_CGColor();
    UIColor* imp_colorWithAlphaComponent(CGFloat alpha);
    bool imp_isEqual(id other) const;
    NSUInteger imp_hash() const;

    uikit::RGBA rgba_;
    bool gray_ = false;  // made from a grey level: its CGColor is grey too
    uikit::ColorRef cgColor_;
};
