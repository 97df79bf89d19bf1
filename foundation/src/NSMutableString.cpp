// NSMutableString: every change goes through the runtime string's assign(), which
// keeps the units, the UTF-8 form and the hash in step.
#include "string_internal.h"

#include <objc/image.h>

#include <algorithm>
#include <vector>

OBJC_DEFINE_CLASS(NSMutableString, NSString, "NSMutableString")
OBJC_REGISTER_CLASS(NSMutableString)

using foundation::text::checkRange;
using foundation::text::unitsOf;

void NSMutableString::objcDefine(objc::ClassBuilder<NSMutableString>& b) {
    b.classMethod<&NSMutableString::imp_stringWithCapacity>("stringWithCapacity:")
        .method<&NSMutableString::imp_initWithCapacity>("initWithCapacity:")
        .method<&NSMutableString::imp_appendString>("appendString:")
        .method<&NSMutableString::imp_setString>("setString:")
        .method<&NSMutableString::imp_insertString>("insertString:atIndex:")
        .method<&NSMutableString::imp_deleteCharactersInRange>("deleteCharactersInRange:")
        .method<&NSMutableString::imp_replaceCharactersInRange>(
            "replaceCharactersInRange:withString:")
        .method<&NSMutableString::imp_replaceOccurrences>(
            "replaceOccurrencesOfString:withString:options:range:")
        .method<&NSMutableString::imp_copyWithZone>("copyWithZone:")
        .method<&NSMutableString::imp_description>("description");
}

objc::Strong<NSMutableString> NSMutableString::create(std::string_view utf8) {
    auto s = objc::make<NSMutableString>();
    if (!utf8.empty()) s->assign(objc::utf8ToUtf16(utf8));
    return s;
}

NSMutableString* NSMutableString::imp_stringWithCapacity(Class cls, NSUInteger capacity) {
    id s = objc::msgSend<id>(cls, objc::sel<"alloc">());
    return static_cast<NSMutableString*>(
        objc_autorelease(objc::msgSend<id>(s, objc::sel<"initWithCapacity:">(), capacity)));
}

// The capacity is only a hint.
NSMutableString* NSMutableString::imp_initWithCapacity(NSUInteger) {
    return this;
}

void NSMutableString::imp_appendString(NSString* s) {
    assign(units() + unitsOf(s, "-[NSMutableString appendString:]"));
}

void NSMutableString::imp_setString(NSString* s) {
    // Copied first: s may be this very string.
    std::u16string text = unitsOf(s, "-[NSMutableString setString:]");
    assign(std::move(text));
}

void NSMutableString::imp_insertString(NSString* s, NSUInteger index) {
    const std::u16string& inserted = unitsOf(s, "-[NSMutableString insertString:atIndex:]");
    checkRange({index, 0}, units().size(), "-[NSMutableString insertString:atIndex:]");
    std::u16string text = units();
    text.insert(index, inserted);
    assign(std::move(text));
}

void NSMutableString::imp_deleteCharactersInRange(NSRange range) {
    checkRange(range, units().size(), "-[NSMutableString deleteCharactersInRange:]");
    std::u16string text = units();
    text.erase(range.location, range.length);
    assign(std::move(text));
}

void NSMutableString::imp_replaceCharactersInRange(NSRange range, NSString* s) {
    const std::u16string& replacement =
        unitsOf(s, "-[NSMutableString replaceCharactersInRange:withString:]");
    checkRange(range, units().size(), "-[NSMutableString replaceCharactersInRange:withString:]");
    std::u16string text = units();
    text.replace(range.location, range.length, replacement);
    assign(std::move(text));
}

NSUInteger NSMutableString::imp_replaceOccurrences(NSString* target, NSString* replacement,
                                                   NSStringCompareOptions options, NSRange range) {
    const char* method = "-[NSMutableString replaceOccurrencesOfString:withString:options:range:]";
    const std::u16string t = unitsOf(target, method);
    const std::u16string r = unitsOf(replacement, method);
    checkRange(range, units().size(), method);
    // Found forwards (or backwards) in the original text, then replaced from
    // the end so that earlier positions stay valid.
    std::vector<NSRange> found;
    NSRange rest = range;
    const bool backwards = options & NSBackwardsSearch;
    while (rest.length > 0) {
        const NSRange hit = foundation::text::find(units(), t, options, rest);
        if (hit.location == static_cast<NSUInteger>(NSNotFound)) break;
        found.push_back(hit);
        if (options & NSAnchoredSearch) break;
        if (backwards) {
            rest.length = hit.location - rest.location;
        } else {
            rest.length -= hit.location + hit.length - rest.location;
            rest.location = hit.location + hit.length;
        }
    }
    if (found.empty()) return 0;
    std::u16string text = units();
    if (!backwards) std::reverse(found.begin(), found.end());
    for (const NSRange& hit : found) text.replace(hit.location, hit.length, r);
    assign(std::move(text));
    return found.size();
}

// An immutable snapshot: later changes to this string do not reach it.
id NSMutableString::imp_copyWithZone(void*) {
    return NSString::create(units()).leak();
}

// A snapshot too, so that a description outlives later changes.
NSString* NSMutableString::imp_description() {
    return objc::autorelease(NSString::create(units()).leak());
}
