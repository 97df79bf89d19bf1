// Key-value coding: values by name, through accessor methods or instance variables.
#include <objc/invocation.h>
#include <objc/string.h>

#include "internal.h"

#include <array>
#include <cstdio>
#include <cstring>
#include <vector>

namespace objc {
namespace {

// Set once when Foundation loads; two plain atomics avoid a 16-byte atomic.
std::atomic<id (*)(const void*, const char*)> gBox{nullptr};
std::atomic<bool (*)(id, void*, const char*)> gUnbox{nullptr};

bool isObjectType(const char* types) {
    std::string_view t(types);
    while (!t.empty() && std::string_view("rnNoORV").find(t.front()) != std::string_view::npos) {
        t.remove_prefix(1);
    }
    return !t.empty() && (t.front() == '@' || t.front() == '#');
}

std::string capitalized(std::string key) {
    if (!key.empty() && key[0] >= 'a' && key[0] <= 'z') key[0] = static_cast<char>(key[0] - 32);
    return key;
}

[[noreturn]] void notCompliant(id self, const char* what, NSString* key) {
    char address[32];
    std::snprintf(address, sizeof address, "%p", static_cast<void*>(self));
    raise(exception_name::UnknownKey,
          std::string("[<") + object_getClassName(self) + " " + address + "> " + what +
              "]: this class is not key value coding-compliant for the key " +
              (key != nullptr ? key->utf8() : std::string("(null)")) + ".");
}

id box(const void* value, const char* type) {
    const auto boxFn = gBox.load();
    if (boxFn == nullptr) {
        raise(exception_name::InvalidArgument, std::string("no boxing for values of type ") + type);
    }
    return boxFn(value, type);
}

void unbox(id value, void* out, const char* type) {
    const auto unboxFn = gUnbox.load();
    if (unboxFn == nullptr || !unboxFn(value, out, type)) {
        raise(exception_name::InvalidArgument, std::string("cannot store ") +
                                                   object_getClassName(value) +
                                                   " in a value of type " + type);
    }
}

std::vector<unsigned char> buffer(const char* type) {
    NSUInteger size = 0;
    getSizeAndAlignment(type, &size, nullptr);
    // Room for any scalar the boxing may write, whatever the declared size.
    return std::vector<unsigned char>(std::max<NSUInteger>(size, 16));
}

id valueForKey(id self, SEL, NSString* key) {
    if (key == nullptr) notCompliant(self, "valueForUndefinedKey:", key);
    const std::string k = key->utf8();
    const std::string K = capitalized(k);
    const Class cls = object_getClass(self);
    for (const std::string& name : {"get" + K, k, "is" + K, "_" + k}) {
        const SEL sel = sel_registerName(name.c_str());
        const Method m = class_getInstanceMethod(cls, sel);
        if (m == nullptr) continue;
        // Accessors are called through an invocation, never as id(id, SEL):
        // the implementation may return any object pointer type.
        NSMethodSignature* sig =
            NSMethodSignature::signatureWithObjCTypes(method_getTypeEncoding(m));
        if (sig->argumentCount() != 2) continue;
        NSInvocation* invocation = NSInvocation::invocationWithMethodSignature(sig);
        invocation->setSelector(sel);
        invocation->invokeWithTarget(self);
        auto result = buffer(sig->methodReturnType());
        invocation->getReturnValue(result.data());
        if (isObjectType(sig->methodReturnType())) {
            id object = nullptr;
            std::memcpy(&object, result.data(), sizeof object);
            return object;
        }
        return box(result.data(), sig->methodReturnType());
    }
    for (const std::string& name : {"_" + k, "_is" + K, k, "is" + K}) {
        const Ivar ivar = class_getInstanceVariable(cls, name.c_str());
        if (ivar == nullptr) continue;
        if (ivar->access.readObject != nullptr) return object_getIvar(self, ivar);
        return box(ivar->access.address(self), ivar_getTypeEncoding(ivar));
    }
    return msgSend<id>(self, sel<"valueForUndefinedKey:">(), key);
}

void setValueForKey(id self, SEL, id value, NSString* key) {
    if (key == nullptr) notCompliant(self, "setValue:forUndefinedKey:", key);
    const std::string k = key->utf8();
    const std::string K = capitalized(k);
    const Class cls = object_getClass(self);
    for (const std::string& name : {"set" + K + ":", "_set" + K + ":"}) {
        const SEL sel = sel_registerName(name.c_str());
        const Method m = class_getInstanceMethod(cls, sel);
        if (m == nullptr) continue;
        NSMethodSignature* sig =
            NSMethodSignature::signatureWithObjCTypes(method_getTypeEncoding(m));
        if (sig->argumentCount() != 3) continue;
        const char* argType = sig->getArgumentTypeAtIndex(2);
        if (value == nullptr && !isObjectType(argType)) {
            msgSend<void>(self, objc::sel<"setNilValueForKey:">(), key);
            return;
        }
        auto argument = buffer(argType);
        if (isObjectType(argType)) {
            std::memcpy(argument.data(), &value, sizeof value);
        } else {
            unbox(value, argument.data(), argType);
        }
        NSInvocation* invocation = NSInvocation::invocationWithMethodSignature(sig);
        invocation->setSelector(sel);
        invocation->setArgument(argument.data(), 2);
        invocation->invokeWithTarget(self);
        return;
    }
    for (const std::string& name : {"_" + k, "_is" + K, k, "is" + K}) {
        const Ivar ivar = class_getInstanceVariable(cls, name.c_str());
        if (ivar == nullptr) continue;
        if (ivar->access.writeObject != nullptr) {
            object_setIvar(self, ivar, value);
        } else if (value == nullptr) {
            msgSend<void>(self, objc::sel<"setNilValueForKey:">(), key);
        } else {
            unbox(value, ivar->access.address(self), ivar_getTypeEncoding(ivar));
        }
        return;
    }
    msgSend<void>(self, objc::sel<"setValue:forUndefinedKey:">(), value, key);
}

id valueForUndefinedKey(id self, SEL, NSString* key) {
    notCompliant(self, "valueForUndefinedKey:", key);
}
void setValueForUndefinedKey(id self, SEL, id, NSString* key) {
    notCompliant(self, "setValue:forUndefinedKey:", key);
}
void setNilValueForKey(id self, SEL, NSString* key) {
    raise(exception_name::InvalidArgument,
          std::string("[<") + object_getClassName(self) +
              "> setNilValueForKey]: could not set nil as the value "
              "for the key " +
              key->utf8() + ".");
}

}  // namespace

void setScalarBoxing(ScalarBoxing boxing) {
    gBox.store(boxing.box);
    gUnbox.store(boxing.unbox);
}

void detail::defineKeyValueCoding(Class root) {
    ClassBuilder<NSObject> b(root);
    b.imp<&valueForKey>("valueForKey:")
        .imp<&setValueForKey>("setValue:forKey:")
        .imp<&valueForUndefinedKey>("valueForUndefinedKey:")
        .imp<&setValueForUndefinedKey>("setValue:forUndefinedKey:")
        .imp<&setNilValueForKey>("setNilValueForKey:");
}

}  // namespace objc
