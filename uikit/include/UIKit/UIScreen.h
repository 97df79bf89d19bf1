// The device's screen, from the current device profile (portrait).
#pragma once

#include <UIKit/device_profile.h>

#include <objc/geometry.h>
#include <objc/object.h>

class PV_EXPORT UIScreen : public NSObject {
    OBJC_CLASS(UIScreen)

    // The one instance; it never dies.
    static UIScreen* mainScreen() {
        return objc::msgSend<UIScreen*>(objcClass(), objc::sel<"mainScreen">());
    }

    // In points, at the origin.
    CGRect bounds() { return objc::msgSend<CGRect>(this, objc::sel<"bounds">()); }
    CGFloat scale() { return objc::msgSend<CGFloat>(this, objc::sel<"scale">()); }
    // The platform added nativeScale and nativeBounds in iOS 8: on an older
    // system the screen does not respond to them (respondsToSelector: answers
    // NO and sending them raises, as an unknown selector does).
    CGFloat nativeScale() { return objc::msgSend<CGFloat>(this, objc::sel<"nativeScale">()); }
    // In pixels of the panel.
    CGRect nativeBounds() { return objc::msgSend<CGRect>(this, objc::sel<"nativeBounds">()); }

    UIScreen() = default;

  private:
    static UIScreen* imp_mainScreen(Class cls);
    CGRect imp_bounds();
    CGFloat imp_scale();
    CGFloat imp_nativeScale();
    CGRect imp_nativeBounds();
    bool imp_respondsToSelector(SEL sel);
};
