// NSString in bytes: encodings and percent escapes.
#include "percent_encoding.h"
#include "string_internal.h"

#include <Foundation/NSData.h>
#include <objc/image.h>

#include <bit>
#include <cstring>

namespace foundation::text {

bool isValidUtf8(std::string_view bytes) {
    const auto* s = reinterpret_cast<const unsigned char*>(bytes.data());
    const std::size_t n = bytes.size();
    for (std::size_t i = 0; i < n;) {
        const unsigned char c = s[i];
        std::size_t len = 0;
        char32_t cp = 0;
        if (c < 0x80) {
            ++i;
            continue;
        } else if (c >= 0xC2 && c < 0xE0) {
            len = 2;
            cp = c & 0x1F;
        } else if (c >= 0xE0 && c < 0xF0) {
            len = 3;
            cp = c & 0x0F;
        } else if (c >= 0xF0 && c < 0xF5) {
            len = 4;
            cp = c & 0x07;
        } else {
            return false;
        }
        if (i + len > n) return false;
        for (std::size_t k = 1; k < len; ++k) {
            if ((s[i + k] & 0xC0) != 0x80) return false;
            cp = (cp << 6) | (s[i + k] & 0x3F);
        }
        if ((len == 3 && (cp < 0x800 || (cp >= 0xD800 && cp < 0xE000))) ||
            (len == 4 && (cp < 0x10000 || cp > 0x10FFFF))) {
            return false;
        }
        i += len;
    }
    return true;
}

std::string percentEncode(std::string_view utf8, const NSCharacterSet& allowed) {
    static constexpr char kHex[] = "0123456789ABCDEF";
    const std::u16string units = objc::utf8ToUtf16(utf8);
    std::string out;
    out.reserve(utf8.size());
    std::size_t n = 0;
    for (std::size_t i = 0; i < units.size(); i += n) {
        const char32_t c = codePointAt(units, i, &n);
        const std::string bytes = objc::utf16ToUtf8(std::u16string_view(units).substr(i, n));
        if (allowed.contains(c)) {
            out += bytes;
            continue;
        }
        for (const char b : bytes) {
            const auto v = static_cast<unsigned char>(b);
            out.push_back('%');
            out.push_back(kHex[v >> 4]);
            out.push_back(kHex[v & 0xF]);
        }
    }
    return out;
}

std::optional<std::string> percentDecodeBytes(std::string_view text) {
    const auto hex = [](char c) -> int {
        if (c >= '0' && c <= '9') return c - '0';
        if (c >= 'a' && c <= 'f') return c - 'a' + 10;
        if (c >= 'A' && c <= 'F') return c - 'A' + 10;
        return -1;
    };
    std::string out;
    out.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '%') {
            out.push_back(text[i]);
            continue;
        }
        if (i + 2 >= text.size()) return std::nullopt;
        const int hi = hex(text[i + 1]), lo = hex(text[i + 2]);
        if (hi < 0 || lo < 0) return std::nullopt;
        out.push_back(static_cast<char>(hi * 16 + lo));
        i += 2;
    }
    return out;
}

std::optional<std::string> percentDecode(std::string_view text) {
    auto bytes = percentDecodeBytes(text);
    if (!bytes || !isValidUtf8(*bytes)) return std::nullopt;
    return bytes;
}

}  // namespace foundation::text

namespace {

using namespace foundation::text;

bool hasLoneSurrogate(std::u16string_view s) {
    std::size_t n = 0;
    for (std::size_t i = 0; i < s.size(); i += n) {
        const char32_t c = codePointAt(s, i, &n);
        if (c >= 0xD800 && c < 0xE000) return true;
    }
    return false;
}

NSString* stringByAddingPercentEncoding(NSString* self, SEL, NSCharacterSet* allowed) {
    if (allowed == nullptr) {
        objc::raise(
            objc::exception_name::InvalidArgument,
            "-[NSString stringByAddingPercentEncodingWithAllowedCharacters:]: nil argument");
    }
    if (hasLoneSurrogate(self->units())) return nullptr;
    return makeString(std::string_view(percentEncode(self->utf8(), *allowed)));
}

NSString* stringByRemovingPercentEncoding(NSString* self, SEL) {
    const auto decoded = percentDecode(self->utf8());
    return decoded ? makeString(std::string_view(*decoded)) : nullptr;
}

// The units of bytes in an encoding; nullopt when they are not valid in it.
std::optional<std::u16string> decode(const unsigned char* p, std::size_t n,
                                     NSStringEncoding encoding) {
    switch (encoding) {
        case NSASCIIStringEncoding: {
            std::u16string out;
            for (std::size_t i = 0; i < n; ++i) {
                if (p[i] >= 0x80) return std::nullopt;
                out.push_back(p[i]);
            }
            return out;
        }
        case NSISOLatin1StringEncoding:
            return std::u16string(p, p + n);
        case NSUTF8StringEncoding: {
            std::string_view bytes(reinterpret_cast<const char*>(p), n);
            if (bytes.starts_with("\xEF\xBB\xBF")) bytes.remove_prefix(3);
            if (!isValidUtf8(bytes)) return std::nullopt;
            return objc::utf8ToUtf16(bytes);
        }
        case NSUTF16StringEncoding:
        case NSUTF16BigEndianStringEncoding:
        case NSUTF16LittleEndianStringEncoding: {
            if (n % 2 != 0) return std::nullopt;
            bool big =
                encoding == NSUTF16BigEndianStringEncoding ||
                (encoding == NSUTF16StringEncoding && std::endian::native == std::endian::big);
            std::size_t i = 0;
            if (encoding == NSUTF16StringEncoding && n >= 2) {
                // A byte-order mark decides, and is not part of the text.
                if ((p[0] == 0xFE && p[1] == 0xFF) || (p[0] == 0xFF && p[1] == 0xFE)) {
                    big = p[0] == 0xFE;
                    i = 2;
                }
            }
            std::u16string out;
            out.reserve(n / 2);
            for (; i < n; i += 2) {
                out.push_back(
                    static_cast<char16_t>(big ? (p[i] << 8) | p[i + 1] : (p[i + 1] << 8) | p[i]));
            }
            return out;
        }
        default:
            return std::nullopt;
    }
}

std::optional<std::string> encode(const NSString* s, NSStringEncoding encoding) {
    const std::u16string& u = s->units();
    std::string out;
    switch (encoding) {
        case NSASCIIStringEncoding:
        case NSISOLatin1StringEncoding: {
            const char16_t limit = encoding == NSASCIIStringEncoding ? 0x80 : 0x100;
            for (const char16_t c : u) {
                if (c >= limit) return std::nullopt;
                out.push_back(static_cast<char>(c));
            }
            return out;
        }
        case NSUTF8StringEncoding:
            if (hasLoneSurrogate(u)) return std::nullopt;
            return s->utf8();
        case NSUTF16StringEncoding:
        case NSUTF16BigEndianStringEncoding:
        case NSUTF16LittleEndianStringEncoding: {
            const bool big =
                encoding == NSUTF16BigEndianStringEncoding ||
                (encoding == NSUTF16StringEncoding && std::endian::native == std::endian::big);
            if (encoding == NSUTF16StringEncoding) out += big ? "\xFE\xFF" : "\xFF\xFE";
            for (const char16_t c : u) {
                const char hi = static_cast<char>(c >> 8), lo = static_cast<char>(c & 0xFF);
                out.push_back(big ? hi : lo);
                out.push_back(big ? lo : hi);
            }
            return out;
        }
        default:
            return std::nullopt;
    }
}

NSString* initWithBytes(NSString* self, SEL, const void* bytes, NSUInteger length,
                        NSStringEncoding encoding) {
    const auto units = bytes != nullptr || length == 0
                           ? decode(static_cast<const unsigned char*>(bytes), length, encoding)
                           : std::nullopt;
    if (!units) {
        objc_release(self);
        return nullptr;
    }
    assignUnits(self, *units);
    return self;
}

NSString* initWithData(NSString* self, SEL, NSData* data, NSStringEncoding encoding) {
    if (data == nullptr) {
        objc_release(self);
        objc::raise(objc::exception_name::InvalidArgument,
                    "-[NSString initWithData:encoding:]: nil data");
    }
    return objc::msgSend<NSString*>(self, objc::sel<"initWithBytes:length:encoding:">(),
                                    data->bytes(), data->length(), encoding);
}

NSData* dataUsingEncoding(NSString* self, SEL, NSStringEncoding encoding) {
    const auto bytes = encode(self, encoding);
    if (!bytes) return nullptr;
    return objc::autorelease(NSData::create(std::string_view(*bytes)).leak());
}

void attach(Class cls) {
    objc::ClassBuilder<NSString> b(cls);
    b.imp<&stringByAddingPercentEncoding>("stringByAddingPercentEncodingWithAllowedCharacters:")
        .imp<&stringByRemovingPercentEncoding>("stringByRemovingPercentEncoding")
        .imp<&initWithBytes>("initWithBytes:length:encoding:")
        .imp<&initWithData>("initWithData:encoding:")
        .imp<&dataUsingEncoding>("dataUsingEncoding:");
}

[[maybe_unused]] const bool kAttached =
    (objc::loadImage({}, {objc::Category{"NSString", "FoundationEncoding", &attach}}), true);

}  // namespace
