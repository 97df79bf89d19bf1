// A view's backing layer: the drawing properties views do not carry themselves.
#pragma once

#include <objc/geometry.h>
#include <objc/object.h>

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

    CALayer() = default;

  private:
    CGFloat cornerRadius_ = 0;
    bool masksToBounds_ = false;
    CGFloat borderWidth_ = 0;
    float opacity_ = 1.0f;
};
