// A notification: a name, the object that sent it and optional details.
#pragma once

#include <objc/object.h>
#include <objc/string.h>

class NSDictionary;
using NSNotificationName = NSString*;

class PV_EXPORT NSNotification : public NSObject {
    OBJC_CLASS(NSNotification)

    // An owned notification; the name is copied, object and userInfo retained.
    static objc::Strong<NSNotification> create(NSString* name, id object,
                                               NSDictionary* userInfo = nullptr);
    // Autoreleased, as the platform's convenience constructors answer.
    static NSNotification* notificationWithName(NSString* name, id object) {
        return objc::msgSend<NSNotification*>(
            objcClass(), objc::sel<"notificationWithName:object:">(), name, object);
    }
    static NSNotification* notificationWithName(NSString* name, id object, NSDictionary* userInfo) {
        return objc::msgSend<NSNotification*>(objcClass(),
                                              objc::sel<"notificationWithName:object:userInfo:">(),
                                              name, object, userInfo);
    }
    // Raises NSInvalidArgumentException for a nil name.
    NSNotification* initWithName(NSString* name, id object, NSDictionary* userInfo) {
        return objc::msgSend<NSNotification*>(this, objc::sel<"initWithName:object:userInfo:">(),
                                              name, object, userInfo);
    }

    NSString* name() { return objc::msgSend<NSString*>(this, objc::sel<"name">()); }
    id object() { return objc::msgSend<id>(this, objc::sel<"object">()); }
    NSDictionary* userInfo() { return objc::msgSend<NSDictionary*>(this, objc::sel<"userInfo">()); }

    NSNotification() = default;
    ~NSNotification() override;

  private:
    static NSNotification* imp_notificationWithNameObject(Class cls, NSString* name, id object);
    static NSNotification* imp_notificationWithNameObjectUserInfo(Class cls, NSString* name,
                                                                  id object,
                                                                  NSDictionary* userInfo);
    NSNotification* imp_initWithNameObjectUserInfo(NSString* name, id object,
                                                   NSDictionary* userInfo);
    NSString* imp_description();

    objc::Strong<NSString> name_;
    objc::Strong<objc_object> object_;
    objc::Strong<NSDictionary> userInfo_;
};
