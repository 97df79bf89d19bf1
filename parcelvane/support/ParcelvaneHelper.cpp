#include "support/ParcelvaneHelper.h"

#include <objc/image.h>

OBJC_DEFINE_CLASS(ParcelvaneHelper, NSObject, "ParcelvaneHelper")
OBJC_REGISTER_CLASS(ParcelvaneHelper)

void ParcelvaneHelper::objcDefine(objc::ClassBuilder<ParcelvaneHelper>& b) {
    b.classMethod<&ParcelvaneHelper::imp_preferencesPath>("preferencesPath")
        .classMethod<&ParcelvaneHelper::imp_preferencesChanged>("preferencesChanged");
}

NSString* ParcelvaneHelper::imp_preferencesPath(Class) {
    return NSSTR("/User/Library/Preferences/com.tolbrenn.parcelvane.plist");
}

NSString* ParcelvaneHelper::imp_preferencesChanged(Class) {
    return NSSTR("com.tolbrenn.parcelvane.preferences-changed");
}
