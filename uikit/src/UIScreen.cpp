#include <UIKit/UIScreen.h>

#include <objc/image.h>

#include <cmath>

OBJC_DEFINE_CLASS(UIScreen, NSObject, "UIScreen")
OBJC_REGISTER_CLASS(UIScreen)

void UIScreen::objcDefine(objc::ClassBuilder<UIScreen>& b) {
    b.classMethod<&UIScreen::imp_mainScreen>("mainScreen")
        .method<&UIScreen::imp_bounds>("bounds")
        .method<&UIScreen::imp_scale>("scale")
        .method<&UIScreen::imp_nativeScale>("nativeScale")
        .method<&UIScreen::imp_nativeBounds>("nativeBounds")
        .method<&UIScreen::imp_respondsToSelector>("respondsToSelector:");
}

namespace {
bool hasNativeMetrics() {
    return uikit::systemVersionAtLeast("8.0");
}
bool isNativeSelector(SEL sel) {
    return sel == objc::sel<"nativeScale">() || sel == objc::sel<"nativeBounds">();
}
}  // namespace

UIScreen* UIScreen::imp_mainScreen(Class) {
    static UIScreen* const screen = [] {
        id obj = objc::msgSend<id>(objc::msgSend<id>(UIScreen::objcClass(), objc::sel<"alloc">()),
                                   objc::sel<"init">());
        obj->refs_.store(objc_object::kImmortalRefs, std::memory_order_relaxed);
        return static_cast<UIScreen*>(obj);
    }();
    return screen;
}

CGRect UIScreen::imp_bounds() {
    const CGSize size = uikit::currentDeviceProfile().screenSize;
    return CGRectMake(0, 0, size.width, size.height);
}

CGFloat UIScreen::imp_scale() {
    return uikit::currentDeviceProfile().scale;
}

CGFloat UIScreen::imp_nativeScale() {
    if (!hasNativeMetrics()) doesNotRecognizeSelector(objc::sel<"nativeScale">());
    return uikit::currentDeviceProfile().nativeScale;
}

CGRect UIScreen::imp_nativeBounds() {
    if (!hasNativeMetrics()) doesNotRecognizeSelector(objc::sel<"nativeBounds">());
    const uikit::DeviceProfile profile = uikit::currentDeviceProfile();
    // The panel's whole pixels: 736 points at a native 2.608 fill 1920.
    const auto pixels = [&](CGFloat points) {
        return std::ceil(points * profile.nativeScale - 1e-9);
    };
    return CGRectMake(0, 0, pixels(profile.screenSize.width), pixels(profile.screenSize.height));
}

bool UIScreen::imp_respondsToSelector(SEL sel) {
    if (isNativeSelector(sel) && !hasNativeMetrics()) return false;
    return objc::superSend<bool>(this, objc::sel<"respondsToSelector:">(), sel);
}
