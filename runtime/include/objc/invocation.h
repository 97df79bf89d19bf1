// Method signatures and invocations: a message as an object, called through libffi.
#pragma once

#include <objc/object.h>
#include <objc/type_info.h>

#include <memory>
#include <string>
#include <vector>

#include <ffi.h>

class PV_EXPORT NSMethodSignature : public NSObject {
    OBJC_CLASS(NSMethodSignature)

    // Autoreleased; throws objc::EncodingError on a malformed encoding.
    static NSMethodSignature* signatureWithObjCTypes(const char* types) {
        return objc::msgSend<NSMethodSignature*>(objcClass(),
                                                 objc::sel<"signatureWithObjCTypes:">(), types);
    }
    NSUInteger numberOfArguments() {
        return objc::msgSend<NSUInteger>(this, objc::sel<"numberOfArguments">());
    }
    const char* getArgumentTypeAtIndex(NSUInteger i) {
        return objc::msgSend<const char*>(this, objc::sel<"getArgumentTypeAtIndex:">(), i);
    }
    const char* methodReturnType() {
        return objc::msgSend<const char*>(this, objc::sel<"methodReturnType">());
    }
    NSUInteger methodReturnLength() {
        return objc::msgSend<NSUInteger>(this, objc::sel<"methodReturnLength">());
    }
    NSUInteger frameLength() { return objc::msgSend<NSUInteger>(this, objc::sel<"frameLength">()); }

    // For the runtime's own use, without messages.
    const objc::TypeInfo& returnInfo() const { return types_->front(); }
    const objc::TypeInfo& argumentInfo(std::size_t i) const { return (*types_)[i + 1]; }
    std::size_t argumentCount() const { return types_->size() - 1; }
    ffi_cif* cif() { return &cif_; }

    NSMethodSignature() = default;

  private:
    static NSMethodSignature* imp_signatureWithObjCTypes(Class cls, const char* types);
    NSUInteger imp_numberOfArguments() const { return argumentCount(); }
    const char* imp_getArgumentTypeAtIndex(NSUInteger i) const;
    const char* imp_methodReturnType() const;
    NSUInteger imp_methodReturnLength() const { return returnInfo().size; }
    NSUInteger imp_frameLength() const;
    bool imp_isEqual(id other) const;
    NSUInteger imp_hash() const { return hash_; }
    void prepare(std::shared_ptr<const std::vector<objc::TypeInfo>> types);

    // Parsed once per distinct encoding and shared; each type keeps its own text.
    std::shared_ptr<const std::vector<objc::TypeInfo>> types_;
    std::vector<ffi_type*> ffiArgs_;
    std::string encoding_;  // every type with its qualifiers, without offsets
    NSUInteger hash_ = 0;
    ffi_cif cif_{};
};

class PV_EXPORT NSInvocation : public NSObject {
    OBJC_CLASS(NSInvocation)

    // Autoreleased, with every argument and the result zeroed.
    static NSInvocation* invocationWithMethodSignature(NSMethodSignature* sig) {
        return objc::msgSend<NSInvocation*>(objcClass(),
                                            objc::sel<"invocationWithMethodSignature:">(), sig);
    }
    NSMethodSignature* methodSignature() {
        return objc::msgSend<NSMethodSignature*>(this, objc::sel<"methodSignature">());
    }
    id target() { return objc::msgSend<id>(this, objc::sel<"target">()); }
    void setTarget(id t) { objc::msgSend<void>(this, objc::sel<"setTarget:">(), t); }
    SEL selector() { return objc::msgSend<SEL>(this, objc::sel<"selector">()); }
    void setSelector(SEL s) { objc::msgSend<void>(this, objc::sel<"setSelector:">(), s); }
    void getArgument(void* buffer, NSInteger index) {
        objc::msgSend<void>(this, objc::sel<"getArgument:atIndex:">(), buffer, index);
    }
    void setArgument(void* buffer, NSInteger index) {
        objc::msgSend<void>(this, objc::sel<"setArgument:atIndex:">(), buffer, index);
    }
    void retainArguments() { objc::msgSend<void>(this, objc::sel<"retainArguments">()); }
    bool argumentsRetained() { return objc::msgSend<bool>(this, objc::sel<"argumentsRetained">()); }
    void invoke() { objc::msgSend<void>(this, objc::sel<"invoke">()); }
    void invokeWithTarget(id t) { objc::msgSend<void>(this, objc::sel<"invokeWithTarget:">(), t); }
    void getReturnValue(void* buffer) {
        objc::msgSend<void>(this, objc::sel<"getReturnValue:">(), buffer);
    }
    void setReturnValue(void* buffer) {
        objc::msgSend<void>(this, objc::sel<"setReturnValue:">(), buffer);
    }

    NSInvocation() = default;
    ~NSInvocation() override;

  private:
    // (implementation members are the invocation helper's to define)
    friend struct InvocationAccess;
    struct State;
    std::unique_ptr<State> state_;
};
