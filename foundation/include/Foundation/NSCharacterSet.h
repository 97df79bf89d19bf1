// Immutable sets of Unicode code points, held as sorted ranges so that
// membership is a binary search and inclusion between any two sets is exact.
#pragma once

#include <objc/string.h>

#include <span>
#include <vector>

using UTF32Char = char32_t;

class PV_EXPORT NSCharacterSet : public NSObject {
    OBJC_CLASS(NSCharacterSet)

    // The shared standard sets, as the platform defines them.
    static NSCharacterSet* whitespaceCharacterSet() { return standard<"whitespaceCharacterSet">(); }
    static NSCharacterSet* whitespaceAndNewlineCharacterSet() {
        return standard<"whitespaceAndNewlineCharacterSet">();
    }
    static NSCharacterSet* newlineCharacterSet() { return standard<"newlineCharacterSet">(); }
    // Unicode's decimal digits (category Nd), not only 0-9.
    static NSCharacterSet* decimalDigitCharacterSet() {
        return standard<"decimalDigitCharacterSet">();
    }
    static NSCharacterSet* letterCharacterSet() { return standard<"letterCharacterSet">(); }
    static NSCharacterSet* lowercaseLetterCharacterSet() {
        return standard<"lowercaseLetterCharacterSet">();
    }
    static NSCharacterSet* uppercaseLetterCharacterSet() {
        return standard<"uppercaseLetterCharacterSet">();
    }
    static NSCharacterSet* alphanumericCharacterSet() {
        return standard<"alphanumericCharacterSet">();
    }
    static NSCharacterSet* punctuationCharacterSet() {
        return standard<"punctuationCharacterSet">();
    }
    static NSCharacterSet* symbolCharacterSet() { return standard<"symbolCharacterSet">(); }
    static NSCharacterSet* controlCharacterSet() { return standard<"controlCharacterSet">(); }
    // What may stay unescaped in each part of a URL.
    static NSCharacterSet* URLUserAllowedCharacterSet() {
        return standard<"URLUserAllowedCharacterSet">();
    }
    static NSCharacterSet* URLPasswordAllowedCharacterSet() {
        return standard<"URLPasswordAllowedCharacterSet">();
    }
    static NSCharacterSet* URLHostAllowedCharacterSet() {
        return standard<"URLHostAllowedCharacterSet">();
    }
    static NSCharacterSet* URLPathAllowedCharacterSet() {
        return standard<"URLPathAllowedCharacterSet">();
    }
    static NSCharacterSet* URLQueryAllowedCharacterSet() {
        return standard<"URLQueryAllowedCharacterSet">();
    }
    static NSCharacterSet* URLFragmentAllowedCharacterSet() {
        return standard<"URLFragmentAllowedCharacterSet">();
    }

    // Autoreleased sets.
    static NSCharacterSet* characterSetWithCharactersInString(NSString* s) {
        return objc::msgSend<NSCharacterSet*>(
            objcClass(), objc::sel<"characterSetWithCharactersInString:">(), s);
    }
    // Code points location ..< location + length.
    static NSCharacterSet* characterSetWithRange(NSRange range) {
        return objc::msgSend<NSCharacterSet*>(objcClass(), objc::sel<"characterSetWithRange:">(),
                                              range);
    }

    NSCharacterSet* invertedSet() {
        return objc::msgSend<NSCharacterSet*>(this, objc::sel<"invertedSet">());
    }
    bool characterIsMember(unichar c) {
        return objc::msgSend<bool>(this, objc::sel<"characterIsMember:">(), c);
    }
    bool longCharacterIsMember(UTF32Char c) {
        return objc::msgSend<bool>(this, objc::sel<"longCharacterIsMember:">(), c);
    }
    // Every member of other is a member of this; the empty set is a subset of every set.
    bool isSupersetOfSet(NSCharacterSet* other) {
        return objc::msgSend<bool>(this, objc::sel<"isSupersetOfSet:">(), other);
    }

    // For C++ code: inclusive code point ranges, sorted, disjoint and not adjacent.
    struct Range {
        char32_t first;
        char32_t last;
        friend constexpr bool operator==(const Range&, const Range&) = default;
    };
    // An owned set of the ranges, in any order, overlapping or not.
    static objc::Strong<NSCharacterSet> create(std::vector<Range> ranges);
    std::span<const Range> ranges() const noexcept { return ranges_; }
    // Membership without a message.
    bool contains(char32_t c) const noexcept;

    NSCharacterSet() = default;

  private:
    template <objc::FixedString Name>
    static NSCharacterSet* standard() {
        return objc::msgSend<NSCharacterSet*>(objcClass(), objc::sel<Name>());
    }

    static NSCharacterSet* imp_withCharactersInString(Class cls, NSString* s);
    static NSCharacterSet* imp_withRange(Class cls, NSRange range);
    NSCharacterSet* imp_invertedSet();
    bool imp_characterIsMember(unichar c) const { return contains(c); }
    bool imp_longCharacterIsMember(UTF32Char c) const { return contains(c); }
    bool imp_isSupersetOfSet(NSCharacterSet* other) const;
    bool imp_isEqual(id other) const;
    NSUInteger imp_hash() const;
    id imp_copyWithZone(void* zone);

    std::vector<Range> ranges_;
};
