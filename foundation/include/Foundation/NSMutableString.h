// Text that changes in place. Not thread-safe, as on the platform.
#pragma once

#include <Foundation/string_format.h>
#include <objc/string.h>

class PV_EXPORT NSMutableString : public NSString {
    OBJC_CLASS(NSMutableString)

    // An owned mutable string holding the UTF-8 text.
    static objc::Strong<NSMutableString> create(std::string_view utf8 = {});
    static NSMutableString* string() {
        return objc::msgSend<NSMutableString*>(objcClass(), objc::sel<"string">());
    }
    static NSMutableString* stringWithCapacity(NSUInteger capacity) {
        return objc::msgSend<NSMutableString*>(objcClass(), objc::sel<"stringWithCapacity:">(),
                                               capacity);
    }
    static NSMutableString* stringWithString(NSString* s) {
        return objc::msgSend<NSMutableString*>(objcClass(), objc::sel<"stringWithString:">(), s);
    }
    NSMutableString* initWithCapacity(NSUInteger capacity) {
        return objc::msgSend<NSMutableString*>(this, objc::sel<"initWithCapacity:">(), capacity);
    }

    void appendString(NSString* s) { objc::msgSend<void>(this, objc::sel<"appendString:">(), s); }
    // [self appendFormat:...]: formats, then sends appendString:.
    template <class... A>
    void appendFormat(NSString* format, const A&... args) {
        appendString(objc::format(format, args...));
    }
    void setString(NSString* s) { objc::msgSend<void>(this, objc::sel<"setString:">(), s); }
    void insertString(NSString* s, NSUInteger index) {
        objc::msgSend<void>(this, objc::sel<"insertString:atIndex:">(), s, index);
    }
    void deleteCharactersInRange(NSRange range) {
        objc::msgSend<void>(this, objc::sel<"deleteCharactersInRange:">(), range);
    }
    void replaceCharactersInRange(NSRange range, NSString* s) {
        objc::msgSend<void>(this, objc::sel<"replaceCharactersInRange:withString:">(), range, s);
    }
    // The number of replacements made.
    NSUInteger replaceOccurrencesOfString(NSString* target, NSString* replacement,
                                          NSStringCompareOptions options, NSRange range) {
        return objc::msgSend<NSUInteger>(
            this, objc::sel<"replaceOccurrencesOfString:withString:options:range:">(), target,
            replacement, options, range);
    }

    NSMutableString() = default;

  private:
    static NSMutableString* imp_stringWithCapacity(Class cls, NSUInteger capacity);
    NSMutableString* imp_initWithCapacity(NSUInteger capacity);
    void imp_appendString(NSString* s);
    void imp_setString(NSString* s);
    void imp_insertString(NSString* s, NSUInteger index);
    void imp_deleteCharactersInRange(NSRange range);
    void imp_replaceCharactersInRange(NSRange range, NSString* s);
    NSUInteger imp_replaceOccurrences(NSString* target, NSString* replacement,
                                      NSStringCompareOptions options, NSRange range);
    id imp_copyWithZone(void* zone);
    NSString* imp_description();
};
