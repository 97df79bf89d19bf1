// The root class.
#pragma once

#include <objc/class_builder.h>
#include <objc/exception.h>
#include <objc/message.h>
#include <objc/strong.h>

class NSString;
class NSMethodSignature;
class NSInvocation;

class PV_EXPORT NSObject : public objc_object {
    OBJC_CLASS(NSObject)

    // Typed wrappers: each sends its message.
    Class getClass() { return objc::msgSend<Class>(this, objc::sel<"class">()); }
    Class superclass() { return objc::msgSend<Class>(this, objc::sel<"superclass">()); }
    NSObject* init() { return objc::msgSend<NSObject*>(this, objc::sel<"init">()); }
    id copy() { return objc::msgSend<id>(this, objc::sel<"copy">()); }
    id mutableCopy() { return objc::msgSend<id>(this, objc::sel<"mutableCopy">()); }
    bool isKindOfClass(Class c) {
        return objc::msgSend<bool>(this, objc::sel<"isKindOfClass:">(), c);
    }
    bool isMemberOfClass(Class c) {
        return objc::msgSend<bool>(this, objc::sel<"isMemberOfClass:">(), c);
    }
    bool respondsToSelector(SEL s) {
        return objc::msgSend<bool>(this, objc::sel<"respondsToSelector:">(), s);
    }
    bool isEqual(id other) { return objc::msgSend<bool>(this, objc::sel<"isEqual:">(), other); }
    NSUInteger hash() { return objc::msgSend<NSUInteger>(this, objc::sel<"hash">()); }
    NSString* description() { return objc::msgSend<NSString*>(this, objc::sel<"description">()); }
    id performSelector(SEL s) {
        return objc::msgSend<id>(this, objc::sel<"performSelector:">(), s);
    }
    NSMethodSignature* methodSignatureForSelector(SEL s) {
        return objc::msgSend<NSMethodSignature*>(this, objc::sel<"methodSignatureForSelector:">(),
                                                 s);
    }
    void forwardInvocation(NSInvocation* inv) {
        objc::msgSend<void>(this, objc::sel<"forwardInvocation:">(), inv);
    }
    void doesNotRecognizeSelector(SEL s) {
        objc::msgSend<void>(this, objc::sel<"doesNotRecognizeSelector:">(), s);
    }
    id valueForKey(NSString* key) {
        return objc::msgSend<id>(this, objc::sel<"valueForKey:">(), key);
    }
    void setValueForKey(id value, NSString* key) {
        objc::msgSend<void>(this, objc::sel<"setValue:forKey:">(), value, key);
    }
};

namespace objc {

// [[cls alloc] init], owned by the caller.
template <class T>
Strong<T> make() {
    id obj = msgSend<id>(T::objcClass(), sel<"alloc">());
    return Strong<T>::adopt(static_cast<T*>(msgSend<id>(obj, sel<"init">())));
}

// [[NSClassFromString(name) alloc] init], owned by the caller: an instance of
// a class known only by name. nil when no class has that name.
PV_EXPORT Strong<objc_object> makeInstance(const char* className);
// The same for a class already looked up; nil for a nil class.
PV_EXPORT Strong<objc_object> makeInstance(Class cls);

// [cls alloc]: an uninitialised instance, owned by the caller.
template <class T>
T* alloc() {
    return static_cast<T*>(msgSend<id>(T::objcClass(), sel<"alloc">()));
}

// Whether obj is an instance of cls or of a subclass, asked without a message.
PV_EXPORT bool isKindOf(id obj, Class cls) noexcept;

// A checked downcast: null when obj is not kind of T.
template <class T>
T* cast(id obj) noexcept {
    return isKindOf(obj, T::objcClass()) ? static_cast<T*>(obj) : nullptr;
}

// The scalar boxing that key-value coding needs comes from Foundation's
// NSNumber; the runtime only knows objects.
struct PV_EXPORT ScalarBoxing {
    id (*box)(const void* value, const char* type);        // autoreleased
    bool (*unbox)(id value, void* out, const char* type);  // false: cannot convert
};
PV_EXPORT void setScalarBoxing(ScalarBoxing boxing);

}  // namespace objc
