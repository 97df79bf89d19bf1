// The printf-style formatter behind stringWithFormat:, appendFormat: and NSLog.
#include <Foundation/string_format.h>

#include <objc/exception.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <limits>
#include <optional>

namespace objc::detail {
namespace {

using Kind = FormatArg::Kind;

// A width, or the precision of a number, counts at most this many characters:
// more than any text meant for a person, and a bound on what one directive
// allocates and computes. Larger ones, written or passed to '*', are clamped.
constexpr int kMaxField = 10000;

struct Spec {
    std::string flags;
    std::optional<int> width;
    std::optional<int> precision;
    int lengthBits = 32;  // the size the length modifier names, for unsigned conversions
    char conversion = 0;
};

class Formatter {
  public:
    Formatter(std::string_view format, std::span<const FormatArg> args)
        : format_(format), args_(args) {}

    std::string run() {
        std::string out;
        out.reserve(format_.size() + 16 * args_.size());
        std::size_t i = 0;
        while (i < format_.size()) {
            const std::size_t percent = format_.find('%', i);
            if (percent == std::string_view::npos) {
                out.append(format_.substr(i));
                break;
            }
            out.append(format_.substr(i, percent - i));
            i = directive(percent + 1, out);
        }
        return out;
    }

  private:
    static bool isDigit(char c) { return c >= '0' && c <= '9'; }

    int number(std::size_t& i) const {
        long long n = 0;
        while (i < format_.size() && isDigit(format_[i])) {
            n = std::min<long long>(n * 10 + (format_[i] - '0'), std::numeric_limits<int>::max());
            ++i;
        }
        return static_cast<int>(n);
    }

    const FormatArg& take(std::optional<std::size_t> position) {
        const std::size_t index = position ? *position : next_++;
        if (index >= args_.size()) {
            raise(exception_name::InvalidArgument,
                  "format \"" + std::string(format_) + "\" needs more than " +
                      std::to_string(args_.size()) + " argument(s)");
        }
        return args_[index];
    }

    // The argument of a '*', within ±INT_MAX so that its negation is defined.
    long long takeCount() {
        constexpr long long kLimit = std::numeric_limits<int>::max();
        const FormatArg& a = take(std::nullopt);
        switch (a.kind) {
            case Kind::Signed:
                return std::clamp(a.i, -kLimit, kLimit);
            case Kind::Unsigned:
                return static_cast<long long>(std::min<unsigned long long>(a.u, kLimit));
            case Kind::Double:
                if (std::isnan(a.d)) return 0;
                return static_cast<long long>(std::clamp<double>(a.d, -kLimit, kLimit));
            default:
                return 0;
        }
    }

    // Parses one directive after '%'; answers the position after it.
    std::size_t directive(std::size_t i, std::string& out) {
        const std::size_t start = i;
        if (i < format_.size() && format_[i] == '%') {
            out.push_back('%');
            return i + 1;
        }
        std::optional<std::size_t> position;
        {
            std::size_t j = i;
            const int n = number(j);
            if (j > i && j < format_.size() && format_[j] == '$' && n > 0) {
                position = static_cast<std::size_t>(n - 1);
                i = j + 1;
            }
        }
        Spec spec;
        while (i < format_.size() &&
               std::string_view("-+ #0'").find(format_[i]) != std::string_view::npos) {
            spec.flags.push_back(format_[i++]);
        }
        if (i < format_.size() && format_[i] == '*') {
            ++i;
            long long w = takeCount();
            if (w < 0) {
                spec.flags.push_back('-');
                w = -w;
            }
            spec.width = static_cast<int>(std::min<long long>(w, kMaxField));
        } else if (i < format_.size() && isDigit(format_[i])) {
            spec.width = std::min(number(i), kMaxField);
        }
        if (i < format_.size() && format_[i] == '.') {
            ++i;
            if (i < format_.size() && format_[i] == '*') {
                ++i;
                // Text takes any precision: it only cuts, never pads.
                const long long p = takeCount();
                if (p >= 0) spec.precision = static_cast<int>(p);
            } else {
                spec.precision = number(i);
            }
        }
        i = lengthModifier(i, spec);
        if (i >= format_.size()) {
            out.append("%").append(format_.substr(start));  // a dangling '%' stays as written
            return format_.size();
        }
        spec.conversion = format_[i++];
        if (!convert(spec, position, out)) {
            out.append("%").append(format_.substr(start, i - start));
        }
        return i;
    }

    std::size_t lengthModifier(std::size_t i, Spec& spec) const {
        const auto at = [&](std::size_t k) { return k < format_.size() ? format_[k] : '\0'; };
        switch (at(i)) {
            case 'h':
                if (at(i + 1) == 'h') {
                    spec.lengthBits = 8;
                    return i + 2;
                }
                spec.lengthBits = 16;
                return i + 1;
            case 'l':
                spec.lengthBits = 64;
                return at(i + 1) == 'l' ? i + 2 : i + 1;
            case 'q':
            case 'z':
            case 't':
            case 'j':
            case 'L':
                spec.lengthBits = 64;
                return i + 1;
            default:
                return i;
        }
    }

    bool convert(const Spec& spec, std::optional<std::size_t> position, std::string& out) {
        switch (spec.conversion) {
            case 'd':
            case 'i':
            case 'D':
                signedInteger(spec, take(position), out);
                return true;
            case 'u':
            case 'U':
            case 'x':
            case 'X':
            case 'o':
            case 'O':
                unsignedInteger(spec, take(position), out);
                return true;
            case 'f':
            case 'F':
            case 'e':
            case 'E':
            case 'g':
            case 'G':
            case 'a':
            case 'A':
                floating(spec, toDouble(take(position)), out);
                return true;
            case 'c':
            case 'C':
                character(spec, take(position), out);
                return true;
            case 's':
            case 'S':
            case '@':
                text(spec, take(position), out);
                return true;
            case 'p':
                pointer(spec, take(position), out);
                return true;
            default:
                return false;
        }
    }

    static std::string cSpec(const Spec& spec, std::string_view length, char conversion) {
        std::string s = "%" + spec.flags;
        if (spec.width) s += std::to_string(*spec.width);
        if (spec.precision) s += "." + std::to_string(std::min(*spec.precision, kMaxField));
        s.append(length);
        s.push_back(conversion);
        return s;
    }

    template <class T>
    static void print(std::string& out, const std::string& cformat, T value) {
        char buffer[128];
        const int n = std::snprintf(buffer, sizeof buffer, cformat.c_str(), value);
        if (n < 0) return;
        if (static_cast<std::size_t>(n) < sizeof buffer) {
            out.append(buffer, static_cast<std::size_t>(n));
            return;
        }
        std::string big(static_cast<std::size_t>(n) + 1, '\0');
        std::snprintf(big.data(), big.size(), cformat.c_str(), value);
        big.resize(static_cast<std::size_t>(n));
        out.append(big);
    }

    // A double given to an integer conversion, saturated: out of range, the
    // plain conversion is undefined.
    static long long integerOf(double d) {
        if (std::isnan(d)) return 0;
        if (d >= 0x1p63) return std::numeric_limits<long long>::max();
        if (d < -0x1p63) return std::numeric_limits<long long>::min();
        return static_cast<long long>(d);
    }

    static long long objectInteger(id object) {
        if (object == nullptr) return 0;
        if (msgSend<bool>(object, sel<"respondsToSelector:">(), sel<"longLongValue">())) {
            return msgSend<long long>(object, sel<"longLongValue">());
        }
        return 0;
    }

    static double toDouble(const FormatArg& a) {
        switch (a.kind) {
            case Kind::Signed:
                return static_cast<double>(a.i);
            case Kind::Unsigned:
                return static_cast<double>(a.u);
            case Kind::Double:
                return a.d;
            case Kind::Object:
                if (objc::sendIfAny<bool>(a.object, sel<"respondsToSelector:">(),
                                          sel<"doubleValue">())) {
                    return msgSend<double>(a.object, sel<"doubleValue">());
                }
                return 0;
            default:
                return 0;
        }
    }

    void signedInteger(const Spec& spec, const FormatArg& a, std::string& out) {
        switch (a.kind) {
            case Kind::Unsigned:
                print(out, cSpec(spec, "ll", 'u'), a.u);
                return;
            case Kind::Signed:
                print(out, cSpec(spec, "ll", 'd'), a.i);
                return;
            case Kind::Double:
                print(out, cSpec(spec, "ll", 'd'), integerOf(a.d));
                return;
            case Kind::Object:
                print(out, cSpec(spec, "ll", 'd'), objectInteger(a.object));
                return;
            default:
                print(out, cSpec(spec, "ll", 'd'), 0LL);
                return;
        }
    }

    void unsignedInteger(const Spec& spec, const FormatArg& a, std::string& out) {
        unsigned long long value = 0;
        switch (a.kind) {
            case Kind::Unsigned:
                value = a.u;
                break;
            case Kind::Signed:
                value = static_cast<unsigned long long>(a.i);
                if (a.i < 0) {
                    // A negative value reads as the unsigned number of the
                    // size printf would have read: -1 with %x is ffffffff.
                    const int bits = std::min(spec.lengthBits, std::max<int>(a.size, 4) * 8);
                    if (bits < 64) value &= (1ULL << bits) - 1;
                }
                break;
            case Kind::Double:
                value = static_cast<unsigned long long>(integerOf(a.d));
                break;
            case Kind::Object:
                value = static_cast<unsigned long long>(objectInteger(a.object));
                break;
            default:
                break;
        }
        char conversion = spec.conversion;
        if (conversion == 'U') conversion = 'u';
        if (conversion == 'O') conversion = 'o';
        print(out, cSpec(spec, "ll", conversion), value);
    }

    static void floating(const Spec& spec, double value, std::string& out) {
        print(out, cSpec(spec, "", spec.conversion), value);
    }

    static std::size_t codePoints(std::string_view utf8) {
        std::size_t n = 0;
        for (const char c : utf8) n += (static_cast<unsigned char>(c) & 0xC0) != 0x80;
        return n;
    }

    // Applies precision (a maximum length in characters) and width to text.
    static void pad(const Spec& spec, std::string_view text, std::string& out) {
        if (spec.precision) {
            std::size_t count = 0, cut = 0;
            for (; cut < text.size(); ++cut) {
                if ((static_cast<unsigned char>(text[cut]) & 0xC0) != 0x80) {
                    if (count == static_cast<std::size_t>(*spec.precision)) break;
                    ++count;
                }
            }
            text = text.substr(0, cut);
        }
        const std::size_t length = codePoints(text);
        const std::size_t width = spec.width ? static_cast<std::size_t>(*spec.width) : 0;
        const bool left = spec.flags.find('-') != std::string::npos;
        if (!left && length < width) out.append(width - length, ' ');
        out.append(text);
        if (left && length < width) out.append(width - length, ' ');
    }

    static std::string encode(char32_t c) {
        if (c > 0x10FFFF || (c >= 0xD800 && c < 0xE000)) c = 0xFFFD;
        std::u16string units;
        if (c >= 0x10000) {
            units.push_back(static_cast<char16_t>(0xD800 + ((c - 0x10000) >> 10)));
            units.push_back(static_cast<char16_t>(0xDC00 + ((c - 0x10000) & 0x3FF)));
        } else {
            units.push_back(static_cast<char16_t>(c));
        }
        return utf16ToUtf8(units);
    }

    static void character(const Spec& spec, const FormatArg& a, std::string& out) {
        long long v = 0;
        if (a.kind == Kind::Signed) v = a.i;
        if (a.kind == Kind::Unsigned) v = static_cast<long long>(a.u);
        if (a.kind == Kind::Double) v = integerOf(a.d);
        // %c prints one byte's character; %C a UTF-16 unit; both as UTF-8 here.
        const char32_t c = spec.conversion == 'c' ? static_cast<unsigned char>(v)
                                                  : static_cast<char32_t>(v & 0x1FFFFF);
        Spec plain = spec;
        plain.precision.reset();
        pad(plain, encode(c), out);
    }

    static std::string describe(id object) {
        if (object == nullptr) return "(null)";
        NSString* d = msgSend<NSString*>(object, sel<"description">());
        return d != nullptr ? d->utf8() : std::string("(null)");
    }

    void text(const Spec& spec, const FormatArg& a, std::string& out) {
        std::string value;
        switch (a.kind) {
            case Kind::Object:
                value = describe(a.object);
                break;
            case Kind::CString:
                value = a.cstr != nullptr ? a.cstr : "(null)";
                break;
            case Kind::Text:
                value = std::string(a.text);
                break;
            case Kind::Signed:
                value = std::to_string(a.i);
                break;
            case Kind::Unsigned:
                value = std::to_string(a.u);
                break;
            case Kind::Double:
                print(value, "%g", a.d);
                break;
            case Kind::Pointer:
                print(value, "%p", a.ptr);
                break;
        }
        pad(spec, value, out);
    }

    static void pointer(const Spec& spec, const FormatArg& a, std::string& out) {
        std::uintptr_t address = 0;
        switch (a.kind) {
            case Kind::Object:
                address = reinterpret_cast<std::uintptr_t>(a.object);
                break;
            case Kind::Pointer:
                address = reinterpret_cast<std::uintptr_t>(a.ptr);
                break;
            case Kind::CString:
                address = reinterpret_cast<std::uintptr_t>(a.cstr);
                break;
            case Kind::Signed:
            case Kind::Unsigned:
                address = static_cast<std::uintptr_t>(a.u);
                break;
            default:
                break;
        }
        std::string value;
        print(value, "0x%llx", static_cast<unsigned long long>(address));
        Spec plain = spec;
        plain.precision.reset();
        pad(plain, value, out);
    }

    std::string_view format_;
    std::span<const FormatArg> args_;
    std::size_t next_ = 0;
};

}  // namespace

std::string formatToUtf8(std::string_view format, std::span<const FormatArg> args) {
    return Formatter(format, args).run();
}

NSString* formatToString(NSString* format, std::span<const FormatArg> args) {
    if (format == nullptr) return nullptr;
    return autorelease(NSString::create(formatToUtf8(format->utf8(), args)).leak());
}

}  // namespace objc::detail
