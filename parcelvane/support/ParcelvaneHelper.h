// The library's helper queries, as class methods of ParcelvaneHelper (the
// class has no instances).
#pragma once

#include <objc/object.h>
#include <objc/string.h>

class ParcelvaneHelper : public NSObject {
    OBJC_CLASS(ParcelvaneHelper)

    // "/User/Library/Preferences/com.tolbrenn.parcelvane.plist". The settings
    // live in the host's standard user defaults, not in this file.
    static NSString* preferencesPath() {
        return objc::msgSend<NSString*>(objcClass(), objc::sel<"preferencesPath">());
    }
    // "com.tolbrenn.parcelvane.preferences-changed"; nobody posts it.
    static NSString* preferencesChanged() {
        return objc::msgSend<NSString*>(objcClass(), objc::sel<"preferencesChanged">());
    }

  private:
    static NSString* imp_preferencesPath(Class cls);
    static NSString* imp_preferencesChanged(Class cls);
};
