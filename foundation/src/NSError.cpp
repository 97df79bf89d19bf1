#include <Foundation/NSDictionary.h>
#include <Foundation/NSError.h>
#include <Foundation/string_format.h>

#include <objc/image.h>

NSString* const NSCocoaErrorDomain = objc::constantString("NSCocoaErrorDomain");
NSString* const NSPOSIXErrorDomain = objc::constantString("NSPOSIXErrorDomain");
NSString* const NSLocalizedDescriptionKey = objc::constantString("NSLocalizedDescription");
NSString* const NSLocalizedFailureReasonErrorKey = objc::constantString("NSLocalizedFailureReason");
NSString* const NSUnderlyingErrorKey = objc::constantString("NSUnderlyingError");
NSString* const NSFilePathErrorKey = objc::constantString("NSFilePath");

OBJC_DEFINE_CLASS(NSError, NSObject, "NSError")
OBJC_REGISTER_CLASS(NSError)

void NSError::objcDefine(objc::ClassBuilder<NSError>& b) {
    b.classMethod<&NSError::imp_errorWithDomain>("errorWithDomain:code:userInfo:")
        .method<&NSError::imp_initWithDomain>("initWithDomain:code:userInfo:")
        .property<&NSError::domain_>("domain", objc::Readonly | objc::Copy | objc::Nonatomic)
        .property<&NSError::code_>("code", objc::Readonly | objc::Nonatomic)
        .property<&NSError::userInfo_>("userInfo", objc::Readonly | objc::Copy | objc::Nonatomic)
        .method<&NSError::imp_localizedDescription>("localizedDescription")
        .method<&NSError::imp_localizedFailureReason>("localizedFailureReason")
        .method<&NSError::imp_description>("description")
        .method<&NSError::imp_isEqual>("isEqual:")
        .method<&NSError::imp_hash>("hash")
        .method<&NSError::imp_copyWithZone>("copyWithZone:");
}

objc::Strong<NSError> NSError::create(NSString* domain, NSInteger code,
                                      const std::string& description) {
    objc::Strong<NSDictionary> info;
    if (!description.empty()) {
        info = NSDictionary::create({{NSLocalizedDescriptionKey, NSString::create(description)}});
    }
    return objc::adopt(objc::alloc<NSError>()->initWithDomain(domain, code, info));
}

NSError* NSError::imp_errorWithDomain(Class cls, NSString* domain, NSInteger code,
                                      NSDictionary* userInfo) {
    id error = objc::msgSend<id>(cls, objc::sel<"alloc">());
    error = objc::msgSend<id>(error, objc::sel<"initWithDomain:code:userInfo:">(), domain, code,
                              userInfo);
    return static_cast<NSError*>(objc_autorelease(error));
}

NSError* NSError::imp_initWithDomain(NSString* domain, NSInteger code, NSDictionary* userInfo) {
    if (domain == nullptr) {
        objc_release(this);
        objc::raise(objc::exception_name::InvalidArgument,
                    "-[NSError initWithDomain:code:userInfo:]: nil domain");
    }
    domain_ = objc::adopt(static_cast<NSString*>(domain->copy()));
    code_ = code;
    userInfo_ = userInfo != nullptr ? objc::adopt(static_cast<NSDictionary*>(userInfo->copy()))
                                    : NSDictionary::create({});
    return this;
}

NSString* NSError::imp_localizedDescription() {
    if (auto* text = objc::cast<NSString>(userInfo_->objectForKey(NSLocalizedDescriptionKey))) {
        return text;
    }
    return objc::format(NSSTR("The operation couldn\u2019t be completed. (%@ error %ld.)"),
                        domain_.get(), code_);
}

NSString* NSError::imp_localizedFailureReason() {
    return objc::cast<NSString>(userInfo_->objectForKey(NSLocalizedFailureReasonErrorKey));
}

NSString* NSError::imp_description() {
    return objc::format(NSSTR("Error Domain=%@ Code=%ld \"%@\" UserInfo=%@"), domain_.get(), code_,
                        localizedDescription(), userInfo_.get());
}

bool NSError::imp_isEqual(id other) {
    if (other == this) return true;
    auto* error = objc::cast<NSError>(other);
    return error != nullptr && error->code() == code_ && domain_->isEqual(error->domain()) &&
           userInfo_->isEqual(error->userInfo());
}

NSUInteger NSError::imp_hash() const {
    return static_cast<NSUInteger>(code_) ^ domain_->hash();
}

namespace foundation {

void setError(NSError** out, NSString* domain, NSInteger code, const std::string& description) {
    if (out == nullptr) return;
    *out = objc::autorelease(NSError::create(domain, code, description).leak());
}

}  // namespace foundation
