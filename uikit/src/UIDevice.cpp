#include <UIKit/UIDevice.h>

#include <objc/image.h>

OBJC_DEFINE_CLASS(UIDevice, NSObject, "UIDevice")
OBJC_REGISTER_CLASS(UIDevice)

void UIDevice::objcDefine(objc::ClassBuilder<UIDevice>& b) {
    b.classMethod<&UIDevice::imp_currentDevice>("currentDevice")
        .method<&UIDevice::imp_systemVersion>("systemVersion")
        .method<&UIDevice::imp_systemName>("systemName")
        .method<&UIDevice::imp_model>("model")
        .method<&UIDevice::imp_model>("localizedModel")
        .method<&UIDevice::imp_name>("name")
        .method<&UIDevice::imp_userInterfaceIdiom>("userInterfaceIdiom");
}

namespace {
NSString* autoreleasedString(const std::string& text) {
    return objc::autorelease(NSString::create(text).leak());
}
}  // namespace

UIDevice* UIDevice::imp_currentDevice(Class) {
    static UIDevice* const device = [] {
        id obj = objc::msgSend<id>(objc::msgSend<id>(UIDevice::objcClass(), objc::sel<"alloc">()),
                                   objc::sel<"init">());
        obj->refs_.store(objc_object::kImmortalRefs, std::memory_order_relaxed);
        return static_cast<UIDevice*>(obj);
    }();
    return device;
}

NSString* UIDevice::imp_systemVersion() {
    return autoreleasedString(uikit::currentDeviceProfile().systemVersion);
}

NSString* UIDevice::imp_systemName() {
    return NSSTR("iOS");
}

NSString* UIDevice::imp_model() {
    return autoreleasedString(uikit::currentDeviceProfile().genericModel());
}

NSString* UIDevice::imp_name() {
    return autoreleasedString(uikit::currentDeviceProfile().name);
}

UIUserInterfaceIdiom UIDevice::imp_userInterfaceIdiom() {
    return uikit::currentDeviceProfile().idiom;
}
