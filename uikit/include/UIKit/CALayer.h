// A view's backing layer: the drawing properties views do not carry themselves.
#pragma once

#include <UIKit/CGColor.h>
#include <UIKit/UIGraphics.h>

#include <objc/geometry.h>
#include <objc/object.h>

class UIView;

class PV_EXPORT CALayer : public NSObject {
    OBJC_CLASS(CALayer)

    static objc::Strong<CALayer> create() { return objc::make<CALayer>(); }

    CGFloat cornerRadius() { return objc::msgSend<CGFloat>(this, objc::sel<"cornerRadius">()); }
    void setCornerRadius(CGFloat radius) {
        objc::msgSend<void>(this, objc::sel<"setCornerRadius:">(), radius);
    }
    bool masksToBounds() { return objc::msgSend<bool>(this, objc::sel<"masksToBounds">()); }
    void setMasksToBounds(bool masks) {
        objc::msgSend<void>(this, objc::sel<"setMasksToBounds:">(), masks);
    }
    CGFloat borderWidth() { return objc::msgSend<CGFloat>(this, objc::sel<"borderWidth">()); }
    void setBorderWidth(CGFloat width) {
        objc::msgSend<void>(this, objc::sel<"setBorderWidth:">(), width);
    }
    float opacity() { return objc::msgSend<float>(this, objc::sel<"opacity">()); }
    void setOpacity(float opacity) {
        objc::msgSend<void>(this, objc::sel<"setOpacity:">(), opacity);
    }

    // Retained by the layer; null for none.
    CGColorRef backgroundColor() {
        return objc::msgSend<CGColorRef>(this, objc::sel<"backgroundColor">());
    }
    void setBackgroundColor(CGColorRef color) {
        objc::msgSend<void>(this, objc::sel<"setBackgroundColor:">(), color);
    }
    CGColorRef borderColor() { return objc::msgSend<CGColorRef>(this, objc::sel<"borderColor">()); }
    void setBorderColor(CGColorRef color) {
        objc::msgSend<void>(this, objc::sel<"setBorderColor:">(), color);
    }
    bool isHidden() { return objc::msgSend<bool>(this, objc::sel<"isHidden">()); }
    void setHidden(bool hidden) { objc::msgSend<void>(this, objc::sel<"setHidden:">(), hidden); }
    // Draws the layer (a view's layer: the view and its subviews) into the
    // context, at the context's origin.
    void renderInContext(CGContextRef context) {
        objc::msgSend<void>(this, objc::sel<"renderInContext:">(), context);
    }

    // The view this layer backs (not retained: the view holds the layer).
    UIView* owningView() const noexcept { return view_; }
    void setOwningView(UIView* view) noexcept { view_ = view; }
    // Background below the content, without messages (the view draws its
    // content in between); the border goes above.
    void drawBackground(cairo_t* cairo, CGRect bounds) const;
    void drawBorder(cairo_t* cairo, CGRect bounds) const;

    CALayer() = default;

  private:
    CGColorRef imp_backgroundColor() const { return background_.get(); }
    void imp_setBackgroundColor(CGColorRef color) { background_ = uikit::ColorRef::retain(color); }
    CGColorRef imp_borderColor() const { return border_.get(); }
    void imp_setBorderColor(CGColorRef color) { border_ = uikit::ColorRef::retain(color); }
    void imp_renderInContext(CGContextRef context);

    uikit::ColorRef background_;
    uikit::ColorRef border_;
    bool hidden_ = false;
    UIView* view_ = nullptr;
    CGFloat cornerRadius_ = 0;
    bool masksToBounds_ = false;
    CGFloat borderWidth_ = 0;
    float opacity_ = 1.0f;
};
