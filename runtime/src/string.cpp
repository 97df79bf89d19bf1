#include <objc/string.h>

#include "internal.h"

#include <unordered_map>

namespace objc {

std::u16string utf8ToUtf16(std::string_view in) {
    std::u16string out;
    out.reserve(in.size());
    const auto* s = reinterpret_cast<const unsigned char*>(in.data());
    const std::size_t n = in.size();
    std::size_t i = 0;
    const auto continuation = [&](std::size_t k) { return k < n && (s[k] & 0xC0) == 0x80; };
    while (i < n) {
        const unsigned char c = s[i];
        char32_t cp = 0xFFFD;
        std::size_t len = 1;
        if (c < 0x80) {
            cp = c;
        } else if (c >= 0xC2 && c < 0xE0 && continuation(i + 1)) {
            cp = ((c & 0x1Fu) << 6) | (s[i + 1] & 0x3Fu);
            len = 2;
        } else if (c >= 0xE0 && c < 0xF0 && continuation(i + 1) && continuation(i + 2)) {
            cp = ((c & 0x0Fu) << 12) | ((s[i + 1] & 0x3Fu) << 6) | (s[i + 2] & 0x3Fu);
            len = 3;
            if (cp < 0x800 || (cp >= 0xD800 && cp < 0xE000)) cp = 0xFFFD;
        } else if (c >= 0xF0 && c < 0xF5 && continuation(i + 1) && continuation(i + 2) &&
                   continuation(i + 3)) {
            cp = ((c & 0x07u) << 18) | ((s[i + 1] & 0x3Fu) << 12) | ((s[i + 2] & 0x3Fu) << 6) |
                 (s[i + 3] & 0x3Fu);
            len = 4;
            if (cp < 0x10000 || cp > 0x10FFFF) cp = 0xFFFD;
        }
        if (cp >= 0x10000) {
            cp -= 0x10000;
            out.push_back(static_cast<char16_t>(0xD800 + (cp >> 10)));
            out.push_back(static_cast<char16_t>(0xDC00 + (cp & 0x3FF)));
        } else {
            out.push_back(static_cast<char16_t>(cp));
        }
        i += len;
    }
    return out;
}

std::string utf16ToUtf8(std::u16string_view in) {
    std::string out;
    out.reserve(in.size());
    for (std::size_t i = 0; i < in.size(); ++i) {
        char32_t cp = in[i];
        if (cp >= 0xD800 && cp < 0xDC00 && i + 1 < in.size() && in[i + 1] >= 0xDC00 &&
            in[i + 1] < 0xE000) {
            cp = 0x10000 + ((cp - 0xD800) << 10) + (in[i + 1] - 0xDC00);
            ++i;
        } else if (cp >= 0xD800 && cp < 0xE000) {
            cp = 0xFFFD;  // a lone surrogate has no UTF-8 form
        }
        if (cp < 0x80) {
            out.push_back(static_cast<char>(cp));
        } else if (cp < 0x800) {
            out.push_back(static_cast<char>(0xC0 | (cp >> 6)));
            out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
        } else if (cp < 0x10000) {
            out.push_back(static_cast<char>(0xE0 | (cp >> 12)));
            out.push_back(static_cast<char>(0x80 | ((cp >> 6) & 0x3F)));
            out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
        } else {
            out.push_back(static_cast<char>(0xF0 | (cp >> 18)));
            out.push_back(static_cast<char>(0x80 | ((cp >> 12) & 0x3F)));
            out.push_back(static_cast<char>(0x80 | ((cp >> 6) & 0x3F)));
            out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
        }
    }
    return out;
}

NSString* constantString(const char* literal) {
    static auto* table = new std::unordered_map<std::string, NSString*>;
    static auto* lock = new std::mutex;
    std::lock_guard guard(*lock);
    auto& slot = (*table)[literal];
    if (slot == nullptr) {
        slot = NSString::create(literal).leak();
        slot->refs_.store(objc_object::kImmortalRefs, std::memory_order_relaxed);
    }
    return slot;
}

}  // namespace objc

OBJC_DEFINE_CLASS(NSString, NSObject, "NSString")

void NSString::objcDefine(objc::ClassBuilder<NSString>& b) {
    b.method<&NSString::imp_length>("length")
        .method<&NSString::imp_characterAtIndex>("characterAtIndex:")
        .method<&NSString::imp_UTF8String>("UTF8String")
        .method<&NSString::imp_isEqual>("isEqual:")
        .method<&NSString::imp_isEqualToString>("isEqualToString:")
        .method<&NSString::imp_hash>("hash")
        .method<&NSString::imp_description>("description")
        .method<&NSString::imp_copyWithZone>("copyWithZone:")
        .method<&NSString::imp_initWithUTF8String>("initWithUTF8String:")
        .classMethod<&NSString::imp_stringWithUTF8String>("stringWithUTF8String:");
}

objc::Strong<NSString> NSString::create(std::string_view utf8) {
    return create(objc::utf8ToUtf16(utf8));
}

objc::Strong<NSString> NSString::create(std::u16string units) {
    auto s = objc::adopt(objc::alloc<NSString>());
    s->assign(std::move(units));
    return s;
}

void NSString::assign(std::u16string units) {
    units_ = std::move(units);
    utf8_ = objc::utf16ToUtf8(units_);
    // FNV-1a over the code units: equal strings hash equal.
    std::uint64_t h = 1469598103934665603ull;
    for (const char16_t u : units_) {
        h = (h ^ static_cast<std::uint64_t>(u)) * 1099511628211ull;
    }
    hash_ = h;
}

char16_t NSString::imp_characterAtIndex(NSUInteger i) const {
    if (i >= units_.size()) {
        objc::raise(objc::exception_name::Range, "-[NSString characterAtIndex:]: index " +
                                                     std::to_string(i) + " beyond bounds " +
                                                     std::to_string(units_.size()));
    }
    return units_[i];
}

bool NSString::imp_isEqual(id other) {
    if (other == this) return true;
    NSString* s = objc::cast<NSString>(other);
    return s != nullptr && s->units_ == units_;
}

bool NSString::imp_isEqualToString(NSString* other) const {
    return other != nullptr && other->units_ == units_;
}

// Immutable strings are their own copies.
id NSString::imp_copyWithZone(void*) {
    return objc_retain(this);
}

NSString* NSString::imp_stringWithUTF8String(Class cls, const char* utf8) {
    if (utf8 == nullptr) return nullptr;
    id s = objc::msgSend<id>(cls, objc::sel<"alloc">());
    return static_cast<NSString*>(
        objc_autorelease(objc::msgSend<id>(s, objc::sel<"initWithUTF8String:">(), utf8)));
}

NSString* NSString::imp_initWithUTF8String(const char* utf8) {
    if (utf8 == nullptr) {
        objc_release(this);
        return nullptr;
    }
    assign(objc::utf8ToUtf16(utf8));
    return this;
}
