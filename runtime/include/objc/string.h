// The string class at the root of the system: immutable text in UTF-16 code
// units, as the platform counts them. Foundation adds the rest of its methods.
#pragma once

#include <objc/geometry.h>
#include <objc/object.h>
#include <objc/options.h>

#include <limits>
#include <string>
#include <string_view>

// ---- Implemented by Foundation -------------------------------------------
// Types and constants of NSString's Foundation methods (declared below).
class NSArray;
class NSCharacterSet;
class NSData;

using unichar = char16_t;

enum NSComparisonResult : NSInteger {
    NSOrderedAscending = -1,
    NSOrderedSame = 0,
    NSOrderedDescending = 1,
};

// "Not found" in ranges and indexes.
inline constexpr NSInteger NSNotFound = std::numeric_limits<NSInteger>::max();

enum NSStringCompareOptions : NSUInteger {
    NSCaseInsensitiveSearch = 1,
    NSLiteralSearch = 2,
    NSBackwardsSearch = 4,
    NSAnchoredSearch = 8,
    NSNumericSearch = 64,
    NSDiacriticInsensitiveSearch = 128,
};
OBJC_OPTIONS(NSStringCompareOptions);

enum NSStringEncoding : NSUInteger {
    NSASCIIStringEncoding = 1,
    NSUTF8StringEncoding = 4,
    NSISOLatin1StringEncoding = 5,
    NSUTF16StringEncoding = 10,  // host byte order, with a BOM
    NSUnicodeStringEncoding = 10,
    NSUTF16BigEndianStringEncoding = 0x90000100,
    NSUTF16LittleEndianStringEncoding = 0x94000100,
};
// ---- end of Foundation's part --------------------------------------------

class PV_EXPORT NSString : public NSObject {
    OBJC_CLASS(NSString)

    // An owned string from UTF-8 text (invalid sequences become U+FFFD).
    static objc::Strong<NSString> create(std::string_view utf8);
    static objc::Strong<NSString> create(std::u16string units);
    // An autoreleased string, as +stringWithUTF8String: answers.
    static NSString* stringWithUTF8String(const char* utf8) {
        return objc::msgSend<NSString*>(objcClass(), objc::sel<"stringWithUTF8String:">(), utf8);
    }

    NSUInteger length() { return objc::msgSend<NSUInteger>(this, objc::sel<"length">()); }
    char16_t characterAtIndex(NSUInteger i) {
        return objc::msgSend<char16_t>(this, objc::sel<"characterAtIndex:">(), i);
    }
    const char* UTF8String() { return objc::msgSend<const char*>(this, objc::sel<"UTF8String">()); }
    bool isEqualToString(NSString* other) {
        return objc::msgSend<bool>(this, objc::sel<"isEqualToString:">(), other);
    }

    // ---- Implemented by Foundation -------------------------------------
    // Messages answered by the methods that the Foundation library attaches
    // to this class when it loads. Lengths and indexes count UTF-16 units.
    // Results are autoreleased unless the name says init.
    static NSString* string() {
        return objc::msgSend<NSString*>(objcClass(), objc::sel<"string">());
    }
    static NSString* stringWithString(NSString* s) {
        return objc::msgSend<NSString*>(objcClass(), objc::sel<"stringWithString:">(), s);
    }
    static NSString* stringWithCharacters(const unichar* chars, NSUInteger length) {
        return objc::msgSend<NSString*>(objcClass(), objc::sel<"stringWithCharacters:length:">(),
                                        chars, length);
    }
    // Type-safe formatting; defined in <Foundation/NSString.h>.
    template <class... A>
    static NSString* stringWithFormat(NSString* format, const A&... args);

    NSString* initWithString(NSString* s) {
        return objc::msgSend<NSString*>(this, objc::sel<"initWithString:">(), s);
    }
    NSString* initWithCharacters(const unichar* chars, NSUInteger length) {
        return objc::msgSend<NSString*>(this, objc::sel<"initWithCharacters:length:">(), chars,
                                        length);
    }
    // nil when the bytes are not valid in the encoding.
    NSString* initWithBytes(const void* bytes, NSUInteger length, NSStringEncoding encoding) {
        return objc::msgSend<NSString*>(this, objc::sel<"initWithBytes:length:encoding:">(), bytes,
                                        length, encoding);
    }
    NSString* initWithData(NSData* data, NSStringEncoding encoding) {
        return objc::msgSend<NSString*>(this, objc::sel<"initWithData:encoding:">(), data,
                                        encoding);
    }
    // nil when the text cannot be represented in the encoding.
    NSData* dataUsingEncoding(NSStringEncoding encoding) {
        return objc::msgSend<NSData*>(this, objc::sel<"dataUsingEncoding:">(), encoding);
    }

    NSString* substringToIndex(NSUInteger to) {
        return objc::msgSend<NSString*>(this, objc::sel<"substringToIndex:">(), to);
    }
    NSString* substringFromIndex(NSUInteger from) {
        return objc::msgSend<NSString*>(this, objc::sel<"substringFromIndex:">(), from);
    }
    NSString* substringWithRange(NSRange range) {
        return objc::msgSend<NSString*>(this, objc::sel<"substringWithRange:">(), range);
    }
    NSString* stringByTrimmingCharactersInSet(NSCharacterSet* set) {
        return objc::msgSend<NSString*>(this, objc::sel<"stringByTrimmingCharactersInSet:">(), set);
    }
    NSString* uppercaseString() {
        return objc::msgSend<NSString*>(this, objc::sel<"uppercaseString">());
    }
    NSString* lowercaseString() {
        return objc::msgSend<NSString*>(this, objc::sel<"lowercaseString">());
    }
    NSString* capitalizedString() {
        return objc::msgSend<NSString*>(this, objc::sel<"capitalizedString">());
    }
    bool hasPrefix(NSString* s) { return objc::msgSend<bool>(this, objc::sel<"hasPrefix:">(), s); }
    bool hasSuffix(NSString* s) { return objc::msgSend<bool>(this, objc::sel<"hasSuffix:">(), s); }
    bool containsString(NSString* s) {
        return objc::msgSend<bool>(this, objc::sel<"containsString:">(), s);
    }
    // {NSNotFound, 0} when absent.
    NSRange rangeOfString(NSString* s) {
        return objc::msgSend<NSRange>(this, objc::sel<"rangeOfString:">(), s);
    }
    NSRange rangeOfString(NSString* s, NSStringCompareOptions options) {
        return objc::msgSend<NSRange>(this, objc::sel<"rangeOfString:options:">(), s, options);
    }
    NSRange rangeOfString(NSString* s, NSStringCompareOptions options, NSRange range) {
        return objc::msgSend<NSRange>(this, objc::sel<"rangeOfString:options:range:">(), s, options,
                                      range);
    }
    NSRange rangeOfCharacterFromSet(NSCharacterSet* set) {
        return objc::msgSend<NSRange>(this, objc::sel<"rangeOfCharacterFromSet:">(), set);
    }
    NSString* stringByAppendingString(NSString* s) {
        return objc::msgSend<NSString*>(this, objc::sel<"stringByAppendingString:">(), s);
    }
    NSString* stringByReplacingOccurrencesOfString(NSString* target, NSString* replacement) {
        return objc::msgSend<NSString*>(
            this, objc::sel<"stringByReplacingOccurrencesOfString:withString:">(), target,
            replacement);
    }
    NSString* stringByReplacingCharactersInRange(NSRange range, NSString* replacement) {
        return objc::msgSend<NSString*>(
            this, objc::sel<"stringByReplacingCharactersInRange:withString:">(), range,
            replacement);
    }
    NSArray* componentsSeparatedByString(NSString* separator) {
        return objc::msgSend<NSArray*>(this, objc::sel<"componentsSeparatedByString:">(),
                                       separator);
    }
    NSArray* componentsSeparatedByCharactersInSet(NSCharacterSet* set) {
        return objc::msgSend<NSArray*>(this, objc::sel<"componentsSeparatedByCharactersInSet:">(),
                                       set);
    }

    NSComparisonResult compare(NSString* other) {
        return objc::msgSend<NSComparisonResult>(this, objc::sel<"compare:">(), other);
    }
    NSComparisonResult compare(NSString* other, NSStringCompareOptions options) {
        return objc::msgSend<NSComparisonResult>(this, objc::sel<"compare:options:">(), other,
                                                 options);
    }
    NSComparisonResult caseInsensitiveCompare(NSString* other) {
        return objc::msgSend<NSComparisonResult>(this, objc::sel<"caseInsensitiveCompare:">(),
                                                 other);
    }
    NSComparisonResult localizedCaseInsensitiveCompare(NSString* other) {
        return objc::msgSend<NSComparisonResult>(
            this, objc::sel<"localizedCaseInsensitiveCompare:">(), other);
    }
    // As file browsers sort names: case-insensitive, digits by value.
    NSComparisonResult localizedStandardCompare(NSString* other) {
        return objc::msgSend<NSComparisonResult>(this, objc::sel<"localizedStandardCompare:">(),
                                                 other);
    }

    // Numeric prefixes, converted as the platform converts them.
    int intValue() { return objc::msgSend<int>(this, objc::sel<"intValue">()); }
    NSInteger integerValue() { return objc::msgSend<NSInteger>(this, objc::sel<"integerValue">()); }
    long long longLongValue() {
        return objc::msgSend<long long>(this, objc::sel<"longLongValue">());
    }
    float floatValue() { return objc::msgSend<float>(this, objc::sel<"floatValue">()); }
    double doubleValue() { return objc::msgSend<double>(this, objc::sel<"doubleValue">()); }
    bool boolValue() { return objc::msgSend<bool>(this, objc::sel<"boolValue">()); }

    // Paths.
    NSString* pathExtension() {
        return objc::msgSend<NSString*>(this, objc::sel<"pathExtension">());
    }
    NSString* lastPathComponent() {
        return objc::msgSend<NSString*>(this, objc::sel<"lastPathComponent">());
    }
    NSArray* pathComponents() {
        return objc::msgSend<NSArray*>(this, objc::sel<"pathComponents">());
    }
    bool isAbsolutePath() { return objc::msgSend<bool>(this, objc::sel<"isAbsolutePath">()); }
    NSString* stringByDeletingLastPathComponent() {
        return objc::msgSend<NSString*>(this, objc::sel<"stringByDeletingLastPathComponent">());
    }
    NSString* stringByAppendingPathComponent(NSString* component) {
        return objc::msgSend<NSString*>(this, objc::sel<"stringByAppendingPathComponent:">(),
                                        component);
    }
    NSString* stringByDeletingPathExtension() {
        return objc::msgSend<NSString*>(this, objc::sel<"stringByDeletingPathExtension">());
    }
    // nil when the extension cannot be appended (an empty name, say).
    NSString* stringByAppendingPathExtension(NSString* extension) {
        return objc::msgSend<NSString*>(this, objc::sel<"stringByAppendingPathExtension:">(),
                                        extension);
    }
    NSString* stringByStandardizingPath() {
        return objc::msgSend<NSString*>(this, objc::sel<"stringByStandardizingPath">());
    }
    NSString* stringByExpandingTildeInPath() {
        return objc::msgSend<NSString*>(this, objc::sel<"stringByExpandingTildeInPath">());
    }

    // Percent encoding, as URLs use it.
    NSString* stringByAddingPercentEncodingWithAllowedCharacters(NSCharacterSet* allowed) {
        return objc::msgSend<NSString*>(
            this, objc::sel<"stringByAddingPercentEncodingWithAllowedCharacters:">(), allowed);
    }
    // nil when a percent sequence is malformed or does not decode as UTF-8.
    NSString* stringByRemovingPercentEncoding() {
        return objc::msgSend<NSString*>(this, objc::sel<"stringByRemovingPercentEncoding">());
    }
    // ---- end of Foundation's part ----------------------------------------

    // The text itself, for C++ code that reads strings without messages.
    const std::u16string& units() const noexcept { return units_; }
    const std::string& utf8() const noexcept { return utf8_; }

    NSString() = default;

  protected:
    // Subclasses that change the text keep both forms and the hash in step.
    void assign(std::u16string units);

  private:
    NSUInteger imp_length() const { return units_.size(); }
    char16_t imp_characterAtIndex(NSUInteger i) const;
    const char* imp_UTF8String() const { return utf8_.c_str(); }
    bool imp_isEqual(id other);
    bool imp_isEqualToString(NSString* other) const;
    NSUInteger imp_hash() const { return hash_; }
    NSString* imp_description() { return this; }
    id imp_copyWithZone(void* zone);
    static NSString* imp_stringWithUTF8String(Class cls, const char* utf8);
    NSString* imp_initWithUTF8String(const char* utf8);

    std::u16string units_;
    std::string utf8_;
    NSUInteger hash_ = 0;
};

namespace objc {

PV_EXPORT std::u16string utf8ToUtf16(std::string_view utf8);
PV_EXPORT std::string utf16ToUtf8(std::u16string_view units);

// An immortal, interned string for a literal: what @"..." is on the platform.
PV_EXPORT NSString* constantString(const char* literal);

}  // namespace objc

// @"text"
#define NSSTR(literal)                                                     \
    ([]() -> NSString* {                                                   \
        static NSString* const constant = ::objc::constantString(literal); \
        return constant;                                                   \
    }())
