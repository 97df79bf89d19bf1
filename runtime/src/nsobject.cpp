// The root class's methods.
#include <objc/invocation.h>
#include <objc/object.h>
#include <objc/string.h>

#include "internal.h"

#include <cstdio>

namespace {

id nsobject_alloc(Class cls, SEL) {
    return class_createInstance(cls, 0);
}
id nsobject_allocWithZone(Class cls, SEL, void*) {
    return class_createInstance(cls, 0);
}
id nsobject_newObject(Class cls, SEL) {
    return objc::msgSend<id>(objc::msgSend<id>(cls, objc::sel<"alloc">()), objc::sel<"init">());
}
id nsobject_init(id self, SEL) {
    return self;
}
void nsobject_dealloc(id self, SEL) {
    objc::detail::disposeObject(self);
}

id nsobject_copy(id self, SEL) {
    // The zone is a plain pointer: a nil object would not match the method's type.
    return objc::msgSend<id>(self, objc::sel<"copyWithZone:">(), static_cast<void*>(nullptr));
}
id nsobject_mutableCopy(id self, SEL) {
    return objc::msgSend<id>(self, objc::sel<"mutableCopyWithZone:">(),
                             static_cast<void*>(nullptr));
}

id nsobject_retain(id self, SEL) {
    return objc_retain(self);
}
void nsobject_release(id self, SEL) {
    objc_release(self);
}
id nsobject_autorelease(id self, SEL) {
    return objc_autorelease(self);
}
NSUInteger nsobject_retainCount(id self, SEL) {
    return objc_retainCount(self);
}
id nsobject_self(id self, SEL) {
    return self;
}

Class nsobject_instanceClass(id self, SEL) {
    return object_getClass(self);
}
Class nsobject_classClass(Class self, SEL) {
    return self;
}
Class nsobject_instanceSuperclass(id self, SEL) {
    return class_getSuperclass(object_getClass(self));
}
Class nsobject_classSuperclass(Class self, SEL) {
    return class_getSuperclass(self);
}

bool nsobject_isKindOfClass(id self, SEL, Class cls) {
    return objc::isKindOf(self, cls);
}
bool nsobject_isMemberOfClass(id self, SEL, Class cls) {
    return object_getClass(self) == cls;
}
bool nsobject_isSubclassOfClass(Class self, SEL, Class cls) {
    for (Class c = self; c != nullptr; c = class_getSuperclass(c)) {
        if (c == cls) return true;
    }
    return false;
}
bool nsobject_respondsToSelector(id self, SEL, SEL sel) {
    return class_respondsToSelector(object_getClass(self), sel);
}
bool nsobject_instancesRespondToSelector(Class self, SEL, SEL sel) {
    return class_respondsToSelector(self, sel);
}

NSMethodSignature* signatureOf(Method m) {
    const char* types = method_getTypeEncoding(m);
    return m != nullptr ? NSMethodSignature::signatureWithObjCTypes(types) : nullptr;
}
NSMethodSignature* nsobject_instanceMethodSignatureForSelector(Class self, SEL, SEL sel) {
    return signatureOf(class_getInstanceMethod(self, sel));
}
NSMethodSignature* nsobject_methodSignatureForSelector(id self, SEL, SEL sel) {
    return signatureOf(class_getInstanceMethod(object_getClass(self), sel));
}
void nsobject_forwardInvocation(id self, SEL, NSInvocation* invocation) {
    objc::msgSend<void>(self, objc::sel<"doesNotRecognizeSelector:">(), invocation->selector());
}
void nsobject_doesNotRecognizeSelector(id self, SEL, SEL sel) {
    objc::detail::unrecognizedSelector(self, sel);
}
id nsobject_performSelector(id self, SEL, SEL sel) {
    return objc::msgSend<id>(self, sel);
}
id nsobject_performSelectorWithObject(id self, SEL, SEL sel, id object) {
    return objc::msgSend<id>(self, sel, object);
}

bool nsobject_isEqual(id self, SEL, id other) {
    return self == other;
}
NSUInteger nsobject_hash(id self, SEL) {
    return reinterpret_cast<NSUInteger>(self);
}

NSString* nsobject_instanceDescription(id self, SEL) {
    char buffer[32];
    std::snprintf(buffer, sizeof buffer, "%p", static_cast<void*>(self));
    const std::string text = std::string("<") + object_getClassName(self) + ": " + buffer + ">";
    return objc::autorelease(NSString::create(text).leak());
}
NSString* nsobject_classDescription(Class self, SEL) {
    return NSStringFromClass(self);
}

}  // namespace

OBJC_DEFINE_ROOT_CLASS(NSObject, "NSObject")

void NSObject::objcDefine(objc::ClassBuilder<NSObject>& b) {
    b.classImp<&nsobject_alloc>("alloc")
        .classImp<&nsobject_allocWithZone>("allocWithZone:")
        .classImp<&nsobject_newObject>("new")
        .classImp<&nsobject_classClass>("class")
        .classImp<&nsobject_classSuperclass>("superclass")
        .classImp<&nsobject_isSubclassOfClass>("isSubclassOfClass:")
        .classImp<&nsobject_instancesRespondToSelector>("instancesRespondToSelector:")
        .classImp<&nsobject_instanceMethodSignatureForSelector>(
            "instanceMethodSignatureForSelector:")
        .classImp<&nsobject_classDescription>("description")
        .imp<&nsobject_init>("init")
        .imp<&nsobject_dealloc>("dealloc")
        .imp<&nsobject_copy>("copy")
        .imp<&nsobject_mutableCopy>("mutableCopy")
        .imp<&nsobject_retain>("retain")
        .imp<&nsobject_release>("release")
        .imp<&nsobject_autorelease>("autorelease")
        .imp<&nsobject_retainCount>("retainCount")
        .imp<&nsobject_self>("self")
        .imp<&nsobject_instanceClass>("class")
        .imp<&nsobject_instanceSuperclass>("superclass")
        .imp<&nsobject_isKindOfClass>("isKindOfClass:")
        .imp<&nsobject_isMemberOfClass>("isMemberOfClass:")
        .imp<&nsobject_respondsToSelector>("respondsToSelector:")
        .imp<&nsobject_methodSignatureForSelector>("methodSignatureForSelector:")
        .imp<&nsobject_forwardInvocation>("forwardInvocation:")
        .imp<&nsobject_doesNotRecognizeSelector>("doesNotRecognizeSelector:")
        .imp<&nsobject_performSelector>("performSelector:")
        .imp<&nsobject_performSelectorWithObject>("performSelector:withObject:")
        .imp<&nsobject_isEqual>("isEqual:")
        .imp<&nsobject_hash>("hash")
        .imp<&nsobject_instanceDescription>("description");
    objc::detail::defineKeyValueCoding(b.cls());
}

namespace objc {

bool isKindOf(id obj, Class cls) noexcept {
    if (obj == nullptr) return false;
    for (Class c = object_getClass(obj); c != nullptr; c = class_getSuperclass(c)) {
        if (c == cls) return true;
    }
    return false;
}

Strong<objc_object> makeInstance(const char* className) {
    return makeInstance(className != nullptr ? objc_getClass(className) : nullptr);
}

Strong<objc_object> makeInstance(Class cls) {
    if (cls == nullptr) return nullptr;
    const id obj = msgSend<id>(cls, sel<"alloc">());
    return Strong<objc_object>::adopt(msgSend<id>(obj, sel<"init">()));
}

}  // namespace objc
