// Message forwarding and the errors of unknown selectors.
#include <objc/exception.h>
#include <objc/invocation.h>
#include <objc/string.h>

#include "internal.h"

#include <cstdio>

namespace objc {

namespace detail {
namespace {

std::size_t encodedSize(const char* types) {
    NSUInteger size = 0;
    getSizeAndAlignment(types, &size, nullptr);
    return size;
}

std::string messageName(id self, SEL sel) {
    const bool isClass = class_isMetaClass(object_getClass(self));
    return std::string(isClass ? "+[" : "-[") + object_getClassName(self) + " " + sel_getName(sel) +
           "]";
}

// What class_getMethodImplementation answers for a selector nobody implements.
// Called through a plain pointer, it cannot see the call's other arguments, so
// it forwards messages that have none and refuses the others.
std::uintptr_t forwardWithoutArguments(id self, SEL sel) {
    NSMethodSignature* sig =
        msgSend<NSMethodSignature*>(self, objc::sel<"methodSignatureForSelector:">(), sel);
    if (sig == nullptr) unrecognizedSelector(self, sel);
    if (sig->argumentCount() != 2 || sig->returnInfo().size > sizeof(std::uintptr_t)) {
        raise(exception_name::InvalidArgument,
              messageName(self, sel) +
                  ": cannot forward a message with arguments through its implementation pointer");
    }
    std::uintptr_t result = 0;
    forwardMessage(self, sel, nullptr, nullptr, nullptr, 0,
                   sig->returnInfo().size > 0 ? &result : nullptr, sig->methodReturnType(),
                   sig->returnInfo().size);
    return result;
}

}  // namespace

void unrecognizedSelector(id self, SEL sel) {
    char address[32];
    std::snprintf(address, sizeof address, "%p", static_cast<void*>(self));
    const bool isClass = class_isMetaClass(object_getClass(self));
    raise(exception_name::InvalidArgument, messageName(self, sel) +
                                               ": unrecognized selector sent to " +
                                               (isClass ? "class " : "instance ") + address);
}

void forwardMessage(id self, SEL sel, const void* const* args, const char* const* argTypes,
                    const std::size_t* argSizes, std::size_t argCount, void* ret,
                    const char* retType, std::size_t retSize) {
    NSMethodSignature* sig =
        msgSend<NSMethodSignature*>(self, objc::sel<"methodSignatureForSelector:">(), sel);
    if (sig == nullptr) {
        msgSend<void>(self, objc::sel<"doesNotRecognizeSelector:">(), sel);
        unrecognizedSelector(self, sel);  // in case an override returned
    }
    if (sig->argumentCount() != argCount + 2) {
        raise(exception_name::InvalidArgument,
              messageName(self, sel) + ": sent with " + std::to_string(argCount) +
                  " arguments, its signature has " + std::to_string(sig->argumentCount() - 2));
    }
    NSInvocation* invocation = NSInvocation::invocationWithMethodSignature(sig);
    invocation->setTarget(self);
    invocation->setSelector(sel);
    for (std::size_t i = 0; i < argCount; ++i) {
        const NSInteger index = static_cast<NSInteger>(i + 2);
        const char* declared = sig->getArgumentTypeAtIndex(i + 2);
        if (encodedSize(declared) != argSizes[i]) {
            raise(exception_name::InvalidArgument,
                  messageName(self, sel) + ": argument " + std::to_string(i) + " sent as " +
                      argTypes[i] + ", the signature says " + declared);
        }
        invocation->setArgument(const_cast<void*>(args[i]), index);
    }
    msgSend<void>(self, objc::sel<"forwardInvocation:">(), invocation);
    if (ret != nullptr) {
        if (sig->returnInfo().size != retSize) {
            raise(exception_name::InvalidArgument,
                  messageName(self, sel) + ": result expected as " + retType +
                      ", the signature says " + sig->methodReturnType());
        }
        invocation->getReturnValue(ret);
    }
}

}  // namespace detail
}  // namespace objc

IMP class_getMethodImplementation(Class cls, SEL sel) {
    if (cls == nullptr || sel == nullptr) return nullptr;
    IMP imp = objc::detail::cacheLookup(cls, sel);
    if (imp == nullptr) imp = objc::detail::lookupAndCache(cls, sel);
    return imp != nullptr ? imp : reinterpret_cast<IMP>(&objc::detail::forwardWithoutArguments);
}
