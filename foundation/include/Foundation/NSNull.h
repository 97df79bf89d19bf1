// The object that stands for "nothing" inside collections.
#pragma once

#include <objc/object.h>

class PV_EXPORT NSNull : public NSObject {
    OBJC_CLASS(NSNull)

    // The one instance; it never dies.
    static NSNull* null() { return objc::msgSend<NSNull*>(objcClass(), objc::sel<"null">()); }

    NSNull() = default;

  private:
    static NSNull* imp_null(Class cls);
    NSString* imp_description() const;
    id imp_copyWithZone(void*) { return objc_retain(this); }
};
