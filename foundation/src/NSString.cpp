// NSString's Foundation methods: creation, substrings, trimming, appending.
#include "string_internal.h"

#include <objc/image.h>

#include <algorithm>

namespace foundation::text {
namespace {
// Reaches the runtime's protected assign() for strings being initialised.
struct StringAccess : NSString {
    static void set(NSString* s, std::u16string units) {
        (s->*(&StringAccess::assign))(std::move(units));
    }
};
}  // namespace

NSString* makeString(std::u16string units) {
    return objc::autorelease(NSString::create(std::move(units)).leak());
}

NSString* makeString(std::string_view utf8) {
    return objc::autorelease(NSString::create(utf8).leak());
}

void assignUnits(NSString* s, std::u16string units) {
    StringAccess::set(s, std::move(units));
}

const std::u16string& unitsOf(NSString* s, const char* method) {
    if (s == nullptr)
        objc::raise(objc::exception_name::InvalidArgument, std::string(method) + ": nil argument");
    return s->units();
}

void checkRange(NSRange range, std::size_t length, const char* method) {
    if (range.location > length || range.length > length - range.location) {
        objc::raise(objc::exception_name::Range,
                    std::string(method) + ": range {" + std::to_string(range.location) + ", " +
                        std::to_string(range.length) + "} out of bounds; string length " +
                        std::to_string(length));
    }
}

char32_t codePointAt(std::u16string_view s, std::size_t i, std::size_t* units) {
    const char16_t c = s[i];
    if (c >= 0xD800 && c < 0xDC00 && i + 1 < s.size() && s[i + 1] >= 0xDC00 && s[i + 1] < 0xE000) {
        *units = 2;
        return 0x10000 + ((static_cast<char32_t>(c) - 0xD800) << 10) + (s[i + 1] - 0xDC00);
    }
    *units = 1;
    return c;
}

char32_t codePointBefore(std::u16string_view s, std::size_t end, std::size_t* units) {
    const char16_t c = s[end - 1];
    if (c >= 0xDC00 && c < 0xE000 && end >= 2 && s[end - 2] >= 0xD800 && s[end - 2] < 0xDC00) {
        *units = 2;
        return 0x10000 + ((static_cast<char32_t>(s[end - 2]) - 0xD800) << 10) + (c - 0xDC00);
    }
    *units = 1;
    return c;
}

void appendCodePoint(std::u16string& out, char32_t c) {
    if (c >= 0x10000) {
        c -= 0x10000;
        out.push_back(static_cast<char16_t>(0xD800 + (c >> 10)));
        out.push_back(static_cast<char16_t>(0xDC00 + (c & 0x3FF)));
    } else {
        out.push_back(static_cast<char16_t>(c));
    }
}

}  // namespace foundation::text

namespace {

using namespace foundation::text;

NSString* string(Class cls, SEL) {
    id s = objc::msgSend<id>(objc::msgSend<id>(cls, objc::sel<"alloc">()), objc::sel<"init">());
    return static_cast<NSString*>(objc_autorelease(s));
}

NSString* stringWithString(Class cls, SEL, NSString* other) {
    id s = objc::msgSend<id>(cls, objc::sel<"alloc">());
    return static_cast<NSString*>(
        objc_autorelease(objc::msgSend<id>(s, objc::sel<"initWithString:">(), other)));
}

NSString* stringWithCharacters(Class cls, SEL, const unichar* chars, NSUInteger length) {
    id s = objc::msgSend<id>(cls, objc::sel<"alloc">());
    return static_cast<NSString*>(objc_autorelease(
        objc::msgSend<id>(s, objc::sel<"initWithCharacters:length:">(), chars, length)));
}

NSString* initWithString(NSString* self, SEL, NSString* other) {
    if (other == nullptr) {
        objc_release(self);
        objc::raise(objc::exception_name::InvalidArgument,
                    "-[NSString initWithString:]: nil argument");
    }
    assignUnits(self, other->units());
    return self;
}

NSString* initWithCharacters(NSString* self, SEL, const unichar* chars, NSUInteger length) {
    if (chars == nullptr && length > 0) {
        objc_release(self);
        objc::raise(objc::exception_name::InvalidArgument,
                    "-[NSString initWithCharacters:length:]: null characters");
    }
    assignUnits(self, length > 0 ? std::u16string(chars, length) : std::u16string());
    return self;
}

NSString* substringFromIndex(NSString* self, SEL, NSUInteger from) {
    const std::u16string& u = self->units();
    if (from > u.size()) {
        objc::raise(objc::exception_name::Range,
                    "-[NSString substringFromIndex:]: index " + std::to_string(from) +
                        " out of bounds; string length " + std::to_string(u.size()));
    }
    return makeString(u.substr(from));
}

NSString* substringToIndex(NSString* self, SEL, NSUInteger to) {
    const std::u16string& u = self->units();
    if (to > u.size()) {
        objc::raise(objc::exception_name::Range,
                    "-[NSString substringToIndex:]: index " + std::to_string(to) +
                        " out of bounds; string length " + std::to_string(u.size()));
    }
    return makeString(u.substr(0, to));
}

NSString* substringWithRange(NSString* self, SEL, NSRange range) {
    const std::u16string& u = self->units();
    checkRange(range, u.size(), "-[NSString substringWithRange:]");
    return makeString(u.substr(range.location, range.length));
}

NSString* stringByTrimmingCharactersInSet(NSString* self, SEL, NSCharacterSet* set) {
    if (set == nullptr) {
        objc::raise(objc::exception_name::InvalidArgument,
                    "-[NSString stringByTrimmingCharactersInSet:]: nil argument");
    }
    const std::u16string& u = self->units();
    std::size_t begin = 0, end = u.size(), n = 0;
    while (begin < end && set->contains(codePointAt(u, begin, &n))) begin += n;
    while (end > begin && set->contains(codePointBefore(u, end, &n))) end -= n;
    return makeString(u.substr(begin, end - begin));
}

NSString* stringByAppendingString(NSString* self, SEL, NSString* other) {
    return makeString(self->units() + unitsOf(other, "-[NSString stringByAppendingString:]"));
}

id mutableCopyWithZone(NSString* self, SEL, void*) {
    auto copy = NSMutableString::create();
    copy->setString(self);
    return copy.leak();
}

void attach(Class cls) {
    objc::ClassBuilder<NSString> b(cls);
    b.classImp<&string>("string")
        .classImp<&stringWithString>("stringWithString:")
        .classImp<&stringWithCharacters>("stringWithCharacters:length:")
        .imp<&initWithString>("initWithString:")
        .imp<&initWithCharacters>("initWithCharacters:length:")
        .imp<&substringFromIndex>("substringFromIndex:")
        .imp<&substringToIndex>("substringToIndex:")
        .imp<&substringWithRange>("substringWithRange:")
        .imp<&stringByTrimmingCharactersInSet>("stringByTrimmingCharactersInSet:")
        .imp<&stringByAppendingString>("stringByAppendingString:")
        .imp<&mutableCopyWithZone>("mutableCopyWithZone:");
}

[[maybe_unused]] const bool kAttached =
    (objc::loadImage({}, {objc::Category{"NSString", "Foundation", &attach}}), true);

}  // namespace
