#include <Foundation/NSNull.h>

#include <objc/image.h>
#include <objc/string.h>

OBJC_DEFINE_CLASS(NSNull, NSObject, "NSNull")
OBJC_REGISTER_CLASS(NSNull)

void NSNull::objcDefine(objc::ClassBuilder<NSNull>& b) {
    b.classMethod<&NSNull::imp_null>("null")
        .method<&NSNull::imp_description>("description")
        .method<&NSNull::imp_copyWithZone>("copyWithZone:");
}

NSNull* NSNull::imp_null(Class) {
    // One instance for the process, whatever subclass asks first.
    static NSNull* const instance = [] {
        id obj = objc::msgSend<id>(objc::msgSend<id>(NSNull::objcClass(), objc::sel<"alloc">()),
                                   objc::sel<"init">());
        obj->refs_.store(objc_object::kImmortalRefs, std::memory_order_relaxed);
        return static_cast<NSNull*>(obj);
    }();
    return instance;
}

NSString* NSNull::imp_description() const {
    return NSSTR("<null>");
}
