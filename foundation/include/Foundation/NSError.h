// Errors handed back through NSError** out-parameters: a domain, a code and
// a dictionary of details.
#pragma once

#include <objc/object.h>
#include <objc/string.h>

class NSDictionary;

PV_EXPORT extern NSString* const NSCocoaErrorDomain;
PV_EXPORT extern NSString* const NSPOSIXErrorDomain;
// userInfo keys
PV_EXPORT extern NSString* const NSLocalizedDescriptionKey;
PV_EXPORT extern NSString* const NSLocalizedFailureReasonErrorKey;
PV_EXPORT extern NSString* const NSUnderlyingErrorKey;
PV_EXPORT extern NSString* const NSFilePathErrorKey;

// Codes of NSCocoaErrorDomain, with the platform's values.
inline constexpr NSInteger NSFileNoSuchFileError = 4;
inline constexpr NSInteger NSFileReadUnknownError = 256;
inline constexpr NSInteger NSFileReadNoSuchFileError = 260;
inline constexpr NSInteger NSFileWriteUnknownError = 512;
inline constexpr NSInteger NSPropertyListReadCorruptError = 3840;
inline constexpr NSInteger NSPropertyListReadUnknownVersionError = 3841;
inline constexpr NSInteger NSPropertyListWriteStreamError = 3851;
inline constexpr NSInteger NSPropertyListWriteInvalidError = 3852;

class PV_EXPORT NSError : public NSObject {
    OBJC_CLASS(NSError)

    // An autoreleased error; the details are copied.
    static NSError* errorWithDomain(NSString* domain, NSInteger code, NSDictionary* userInfo) {
        return objc::msgSend<NSError*>(objcClass(), objc::sel<"errorWithDomain:code:userInfo:">(),
                                       domain, code, userInfo);
    }
    // An owned error whose userInfo holds just a description (when given).
    static objc::Strong<NSError> create(NSString* domain, NSInteger code,
                                        const std::string& description = {});
    NSError* initWithDomain(NSString* domain, NSInteger code, NSDictionary* userInfo) {
        return objc::msgSend<NSError*>(this, objc::sel<"initWithDomain:code:userInfo:">(), domain,
                                       code, userInfo);
    }

    NSString* domain() { return objc::msgSend<NSString*>(this, objc::sel<"domain">()); }
    NSInteger code() { return objc::msgSend<NSInteger>(this, objc::sel<"code">()); }
    // Never nil: an empty dictionary when the error has no details.
    NSDictionary* userInfo() { return objc::msgSend<NSDictionary*>(this, objc::sel<"userInfo">()); }
    // userInfo[NSLocalizedDescriptionKey], else a sentence naming domain and code.
    NSString* localizedDescription() {
        return objc::msgSend<NSString*>(this, objc::sel<"localizedDescription">());
    }
    NSString* localizedFailureReason() {
        return objc::msgSend<NSString*>(this, objc::sel<"localizedFailureReason">());
    }

    NSError() = default;

  private:
    static NSError* imp_errorWithDomain(Class cls, NSString* domain, NSInteger code,
                                        NSDictionary* userInfo);
    NSError* imp_initWithDomain(NSString* domain, NSInteger code, NSDictionary* userInfo);
    NSString* imp_localizedDescription();
    NSString* imp_localizedFailureReason();
    NSString* imp_description();
    bool imp_isEqual(id other);
    NSUInteger imp_hash() const;
    id imp_copyWithZone(void*) { return objc_retain(this); }

    objc::Strong<NSString> domain_;
    NSInteger code_ = 0;
    objc::Strong<NSDictionary> userInfo_;
};

namespace foundation {
// Stores the error through an NSError** out-parameter when the caller passed
// one; the error is autoreleased, as the platform's are.
PV_EXPORT void setError(NSError** out, NSString* domain, NSInteger code,
                        const std::string& description);
}  // namespace foundation
