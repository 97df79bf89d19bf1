// Searching NSString: ranges, prefixes, replacing and splitting.
#include "string_internal.h"

#include <Foundation/NSArray.h>
#include <objc/image.h>

#include <unicode/uchar.h>

#include <vector>

namespace foundation::text {
namespace {
// One-to-one case folding keeps every position of the folded text where it
// was in the original, so that found ranges apply to the original.
std::u16string simpleFold(std::u16string_view s) {
    std::u16string out;
    out.reserve(s.size());
    std::size_t n = 0;
    for (std::size_t i = 0; i < s.size(); i += n) {
        const char32_t c = codePointAt(s, i, &n);
        const char32_t f =
            static_cast<char32_t>(u_foldCase(static_cast<UChar32>(c), U_FOLD_CASE_DEFAULT));
        appendCodePoint(out, (f >= 0x10000) == (c >= 0x10000) ? f : c);
    }
    return out;
}
}  // namespace

NSRange find(std::u16string_view haystack, std::u16string_view needle,
             NSStringCompareOptions options, NSRange range) {
    const NSRange none{static_cast<NSUInteger>(NSNotFound), 0};
    if (needle.empty() || needle.size() > range.length) return none;
    std::u16string_view where = haystack.substr(range.location, range.length);
    std::u16string foldedWhere, foldedNeedle;
    if (options & NSCaseInsensitiveSearch) {
        foldedWhere = simpleFold(where);
        foldedNeedle = simpleFold(needle);
        where = foldedWhere;
        needle = foldedNeedle;
    }
    const bool backwards = options & NSBackwardsSearch;
    std::size_t at = std::u16string_view::npos;
    if (options & NSAnchoredSearch) {
        if (backwards) {
            if (where.ends_with(needle)) at = where.size() - needle.size();
        } else if (where.starts_with(needle)) {
            at = 0;
        }
    } else {
        at = backwards ? where.rfind(needle) : where.find(needle);
    }
    if (at == std::u16string_view::npos) return none;
    return {range.location + at, needle.size()};
}

}  // namespace foundation::text

namespace {

using namespace foundation::text;

NSRange rangeOfStringOptionsRange(NSString* self, SEL, NSString* s, NSStringCompareOptions options,
                                  NSRange range) {
    const std::u16string& needle = unitsOf(s, "-[NSString rangeOfString:options:range:]");
    checkRange(range, self->units().size(), "-[NSString rangeOfString:options:range:]");
    return find(self->units(), needle, options, range);
}

NSRange rangeOfStringOptions(NSString* self, SEL, NSString* s, NSStringCompareOptions options) {
    return find(self->units(), unitsOf(s, "-[NSString rangeOfString:options:]"), options,
                {0, self->units().size()});
}

NSRange rangeOfString(NSString* self, SEL, NSString* s) {
    return find(self->units(), unitsOf(s, "-[NSString rangeOfString:]"), NSStringCompareOptions{},
                {0, self->units().size()});
}

NSRange rangeOfCharacterFromSet(NSString* self, SEL, NSCharacterSet* set) {
    if (set == nullptr) {
        objc::raise(objc::exception_name::InvalidArgument,
                    "-[NSString rangeOfCharacterFromSet:]: nil argument");
    }
    const std::u16string& u = self->units();
    std::size_t n = 0;
    for (std::size_t i = 0; i < u.size(); i += n) {
        if (set->contains(codePointAt(u, i, &n))) return {i, n};
    }
    return {static_cast<NSUInteger>(NSNotFound), 0};
}

bool hasPrefix(NSString* self, SEL, NSString* s) {
    return s != nullptr && self->units().starts_with(s->units());
}

bool hasSuffix(NSString* self, SEL, NSString* s) {
    return s != nullptr && self->units().ends_with(s->units());
}

bool containsString(NSString* self, SEL, NSString* s) {
    const std::u16string& needle = unitsOf(s, "-[NSString containsString:]");
    return !needle.empty() && self->units().find(needle) != std::u16string::npos;
}

NSString* stringByReplacingOccurrences(NSString* self, SEL, NSString* target,
                                       NSString* replacement) {
    const std::u16string& t =
        unitsOf(target, "-[NSString stringByReplacingOccurrencesOfString:withString:]");
    const std::u16string& r =
        unitsOf(replacement, "-[NSString stringByReplacingOccurrencesOfString:withString:]");
    const std::u16string& u = self->units();
    if (t.empty()) return makeString(u);
    std::u16string out;
    std::size_t from = 0;
    for (std::size_t at = u.find(t); at != std::u16string::npos; at = u.find(t, from)) {
        out.append(u, from, at - from).append(r);
        from = at + t.size();
    }
    out.append(u, from);
    return makeString(std::move(out));
}

NSString* stringByReplacingCharactersInRange(NSString* self, SEL, NSRange range,
                                             NSString* replacement) {
    const std::u16string& r =
        unitsOf(replacement, "-[NSString stringByReplacingCharactersInRange:withString:]");
    std::u16string u = self->units();
    checkRange(range, u.size(), "-[NSString stringByReplacingCharactersInRange:withString:]");
    u.replace(range.location, range.length, r);
    return makeString(std::move(u));
}

NSArray* arrayOf(const std::vector<std::u16string>& parts) {
    std::vector<objc::Strong<NSString>> strings;
    std::vector<id> objects;
    strings.reserve(parts.size());
    objects.reserve(parts.size());
    for (const std::u16string& p : parts) {
        strings.push_back(NSString::create(p));
        objects.push_back(strings.back().get());
    }
    return objc::autorelease(NSArray::create(std::move(objects)).leak());
}

NSArray* componentsSeparatedByString(NSString* self, SEL, NSString* separator) {
    const std::u16string& sep = unitsOf(separator, "-[NSString componentsSeparatedByString:]");
    const std::u16string& u = self->units();
    std::vector<std::u16string> parts;
    if (sep.empty()) {
        parts.push_back(u);
        return arrayOf(parts);
    }
    std::size_t from = 0;
    for (std::size_t at = u.find(sep); at != std::u16string::npos; at = u.find(sep, from)) {
        parts.push_back(u.substr(from, at - from));
        from = at + sep.size();
    }
    parts.push_back(u.substr(from));
    return arrayOf(parts);
}

NSArray* componentsSeparatedByCharactersInSet(NSString* self, SEL, NSCharacterSet* set) {
    if (set == nullptr) {
        objc::raise(objc::exception_name::InvalidArgument,
                    "-[NSString componentsSeparatedByCharactersInSet:]: nil argument");
    }
    const std::u16string& u = self->units();
    std::vector<std::u16string> parts;
    std::size_t from = 0, n = 0;
    for (std::size_t i = 0; i < u.size(); i += n) {
        if (set->contains(codePointAt(u, i, &n))) {
            parts.push_back(u.substr(from, i - from));
            from = i + n;
        }
    }
    parts.push_back(u.substr(from));
    return arrayOf(parts);
}

void attach(Class cls) {
    objc::ClassBuilder<NSString> b(cls);
    b.imp<&rangeOfString>("rangeOfString:")
        .imp<&rangeOfStringOptions>("rangeOfString:options:")
        .imp<&rangeOfStringOptionsRange>("rangeOfString:options:range:")
        .imp<&rangeOfCharacterFromSet>("rangeOfCharacterFromSet:")
        .imp<&hasPrefix>("hasPrefix:")
        .imp<&hasSuffix>("hasSuffix:")
        .imp<&containsString>("containsString:")
        .imp<&stringByReplacingOccurrences>("stringByReplacingOccurrencesOfString:withString:")
        .imp<&stringByReplacingCharactersInRange>("stringByReplacingCharactersInRange:withString:")
        .imp<&componentsSeparatedByString>("componentsSeparatedByString:")
        .imp<&componentsSeparatedByCharactersInSet>("componentsSeparatedByCharactersInSet:");
}

[[maybe_unused]] const bool kAttached =
    (objc::loadImage({}, {objc::Category{"NSString", "FoundationSearch", &attach}}), true);

}  // namespace
