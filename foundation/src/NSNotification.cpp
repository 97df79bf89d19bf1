#include <Foundation/NSNotification.h>

#include <Foundation/NSDictionary.h>

#include <objc/exception.h>
#include <objc/image.h>

#include <cstdio>

OBJC_DEFINE_CLASS(NSNotification, NSObject, "NSNotification")
OBJC_REGISTER_CLASS(NSNotification)

void NSNotification::objcDefine(objc::ClassBuilder<NSNotification>& b) {
    b.classMethod<&NSNotification::imp_notificationWithNameObject>("notificationWithName:object:")
        .classMethod<&NSNotification::imp_notificationWithNameObjectUserInfo>(
            "notificationWithName:object:userInfo:")
        .method<&NSNotification::imp_initWithNameObjectUserInfo>("initWithName:object:userInfo:")
        .property<&NSNotification::name_>("name", objc::Readonly | objc::Copy | objc::Nonatomic)
        .property<&NSNotification::object_>("object", objc::Readonly | objc::Nonatomic)
        .property<&NSNotification::userInfo_>("userInfo",
                                              objc::Readonly | objc::Copy | objc::Nonatomic)
        .method<&NSNotification::imp_description>("description");
}

NSNotification::~NSNotification() = default;

objc::Strong<NSNotification> NSNotification::create(NSString* name, id object,
                                                    NSDictionary* userInfo) {
    return objc::adopt(objc::alloc<NSNotification>()->initWithName(name, object, userInfo));
}

NSNotification* NSNotification::imp_notificationWithNameObject(Class cls, NSString* name,
                                                               id object) {
    return imp_notificationWithNameObjectUserInfo(cls, name, object, nullptr);
}

NSNotification* NSNotification::imp_notificationWithNameObjectUserInfo(Class cls, NSString* name,
                                                                       id object,
                                                                       NSDictionary* userInfo) {
    auto* fresh = static_cast<NSNotification*>(objc::msgSend<id>(cls, objc::sel<"alloc">()));
    return objc::autorelease(fresh->initWithName(name, object, userInfo));
}

NSNotification* NSNotification::imp_initWithNameObjectUserInfo(NSString* name, id object,
                                                               NSDictionary* userInfo) {
    if (name == nullptr) {
        objc_release(this);  // a failed init gives back the allocation
        objc::raise(objc::exception_name::InvalidArgument, "a notification needs a name");
    }
    name_ = objc::adopt(static_cast<NSString*>(objc::msgSend<id>(name, objc::sel<"copy">())));
    object_ = objc::retained(object);
    userInfo_ = objc::retained(userInfo);
    return this;
}

NSString* NSNotification::imp_description() {
    char address[32];
    std::snprintf(address, sizeof address, "%p", static_cast<void*>(this));
    std::string text = std::string("NSConcreteNotification ") + address +
                       " {name = " + (name_ ? name_->utf8() : std::string());
    const auto describe = [](id value) {
        NSString* d = objc::msgSend<NSString*>(value, objc::sel<"description">());
        return d != nullptr ? std::string(d->UTF8String()) : std::string("(null)");
    };
    if (object_) text += "; object = " + describe(object_.get());
    if (userInfo_) text += "; userInfo = " + describe(userInfo_.get());
    text += "}";
    return objc::autorelease(NSString::create(text).leak());
}
