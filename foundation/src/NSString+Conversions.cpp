// NSString's numeric values, converted as the platform converts them: leading
// whitespace skipped, an optional sign, then the longest valid number prefix;
// integers saturate at the limits of their type.
#include "string_internal.h"

#include <objc/image.h>

#include <charconv>
#include <climits>
#include <cmath>
#include <limits>

namespace {

using namespace foundation::text;

bool isAsciiDigit(char16_t c) {
    return c >= u'0' && c <= u'9';
}

std::size_t skipWhitespace(std::u16string_view s) {
    NSCharacterSet* space = NSCharacterSet::whitespaceAndNewlineCharacterSet();
    std::size_t i = 0, n = 0;
    while (i < s.size() && space->contains(codePointAt(s, i, &n))) i += n;
    return i;
}

// The value of the integer prefix, clamped to [min, max].
long long integerPrefix(std::u16string_view s, long long min, long long max) {
    std::size_t i = skipWhitespace(s);
    bool negative = false;
    if (i < s.size() && (s[i] == u'+' || s[i] == u'-')) negative = s[i++] == u'-';
    // Accumulate as a negative number so that the minimum is representable.
    long long value = 0;
    bool saturated = false;
    for (; i < s.size() && isAsciiDigit(s[i]); ++i) {
        const int d = s[i] - u'0';
        if (value < (LLONG_MIN + d) / 10) {
            saturated = true;
            break;
        }
        value = value * 10 - d;
    }
    if (negative) return saturated ? min : std::max(value, min);
    if (saturated || value < -max) return max;
    return -value;
}

// The text of the longest decimal floating-point prefix, sign removed.
std::string floatPrefix(std::u16string_view s, bool* negative) {
    std::size_t i = skipWhitespace(s);
    *negative = false;
    if (i < s.size() && (s[i] == u'+' || s[i] == u'-')) *negative = s[i++] == u'-';
    std::string text;
    std::size_t digits = 0;
    for (; i < s.size() && isAsciiDigit(s[i]); ++i, ++digits)
        text.push_back(static_cast<char>(s[i]));
    if (i < s.size() && s[i] == u'.') {
        text.push_back('.');
        for (++i; i < s.size() && isAsciiDigit(s[i]); ++i, ++digits) {
            text.push_back(static_cast<char>(s[i]));
        }
    }
    if (digits == 0) return {};
    if (i < s.size() && (s[i] == u'e' || s[i] == u'E')) {
        std::size_t j = i + 1;
        std::string exponent = "e";
        if (j < s.size() && (s[j] == u'+' || s[j] == u'-'))
            exponent.push_back(static_cast<char>(s[j++]));
        const std::size_t first = j;
        for (; j < s.size() && isAsciiDigit(s[j]); ++j) exponent.push_back(static_cast<char>(s[j]));
        if (j > first) text += exponent;
    }
    return text;
}

template <class F>
F floatingValue(std::u16string_view s) {
    bool negative = false;
    const std::string text = floatPrefix(s, &negative);
    if (text.empty()) return 0;
    F value = 0;
    const auto [end, err] = std::from_chars(text.data(), text.data() + text.size(), value);
    (void)end;
    if (err == std::errc::result_out_of_range) {
        // Too large overflows to infinity; too small underflows to zero.
        const auto dot = text.find_first_of(".e");
        const bool huge = text.find("e-") == std::string::npos &&
                          (dot == std::string::npos || dot > 1 || text[0] != '0');
        value = huge ? std::numeric_limits<F>::infinity() : F(0);
    }
    return negative ? -value : value;
}

int intValue(NSString* self, SEL) {
    return static_cast<int>(integerPrefix(self->units(), INT_MIN, INT_MAX));
}
NSInteger integerValue(NSString* self, SEL) {
    return static_cast<NSInteger>(integerPrefix(self->units(), LONG_MIN, LONG_MAX));
}
long long longLongValue(NSString* self, SEL) {
    return integerPrefix(self->units(), LLONG_MIN, LLONG_MAX);
}
float floatValue(NSString* self, SEL) {
    return floatingValue<float>(self->units());
}
double doubleValue(NSString* self, SEL) {
    return floatingValue<double>(self->units());
}

// YES for "YES", "true", "1", "0012"...: after whitespace, a sign and zeros,
// the first character decides.
bool boolValue(NSString* self, SEL) {
    const std::u16string& s = self->units();
    std::size_t i = skipWhitespace(s);
    if (i < s.size() && (s[i] == u'+' || s[i] == u'-')) ++i;
    while (i < s.size() && s[i] == u'0') ++i;
    if (i >= s.size()) return false;
    const char16_t c = s[i];
    return c == u'Y' || c == u'y' || c == u'T' || c == u't' || (c >= u'1' && c <= u'9');
}

void attach(Class cls) {
    objc::ClassBuilder<NSString> b(cls);
    b.imp<&intValue>("intValue")
        .imp<&integerValue>("integerValue")
        .imp<&longLongValue>("longLongValue")
        .imp<&floatValue>("floatValue")
        .imp<&doubleValue>("doubleValue")
        .imp<&boolValue>("boolValue");
}

[[maybe_unused]] const bool kAttached =
    (objc::loadImage({}, {objc::Category{"NSString", "FoundationConversions", &attach}}), true);

}  // namespace
