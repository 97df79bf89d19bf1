// The device the app runs on, as the current device profile describes it.
#pragma once

#include <UIKit/device_profile.h>

#include <objc/object.h>
#include <objc/string.h>

class PV_EXPORT UIDevice : public NSObject {
    OBJC_CLASS(UIDevice)

    // The one instance; it never dies.
    static UIDevice* currentDevice() {
        return objc::msgSend<UIDevice*>(objcClass(), objc::sel<"currentDevice">());
    }

    // Autoreleased strings.
    NSString* systemVersion() {
        return objc::msgSend<NSString*>(this, objc::sel<"systemVersion">());
    }
    // "iOS".
    NSString* systemName() { return objc::msgSend<NSString*>(this, objc::sel<"systemName">()); }
    // "iPhone" or "iPad", as the platform answers (not the marketing name).
    NSString* model() { return objc::msgSend<NSString*>(this, objc::sel<"model">()); }
    NSString* localizedModel() {
        return objc::msgSend<NSString*>(this, objc::sel<"localizedModel">());
    }
    // The device's name: the profile's model name ("iPhone 6s").
    NSString* name() { return objc::msgSend<NSString*>(this, objc::sel<"name">()); }
    UIUserInterfaceIdiom userInterfaceIdiom() {
        return objc::msgSend<UIUserInterfaceIdiom>(this, objc::sel<"userInterfaceIdiom">());
    }

    UIDevice() = default;

  private:
    static UIDevice* imp_currentDevice(Class cls);
    NSString* imp_systemVersion();
    NSString* imp_systemName();
    NSString* imp_model();
    NSString* imp_name();
    UIUserInterfaceIdiom imp_userInterfaceIdiom();
};

// UI_USER_INTERFACE_IDIOM()
inline UIUserInterfaceIdiom UI_USER_INTERFACE_IDIOM() {
    return UIDevice::currentDevice()->userInterfaceIdiom();
}
