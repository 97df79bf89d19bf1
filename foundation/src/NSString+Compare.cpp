// Comparing NSStrings, and case mapping through ICU.
#include "string_internal.h"

#include <objc/image.h>

#include <unicode/uchar.h>
#include <unicode/ucol.h>
#include <unicode/uloc.h>
#include <unicode/unorm2.h>
#include <unicode/ustring.h>

#include <memory>

namespace foundation::text {
namespace {

const UChar* u(std::u16string_view s) {
    return reinterpret_cast<const UChar*>(s.data());
}

// Runs an ICU string transform that may change the length, sized by preflight.
template <class F>
std::u16string transform(std::u16string_view s, F&& f) {
    if (s.empty()) return {};
    std::u16string out(s.size() + 8, u'\0');
    UErrorCode err = U_ZERO_ERROR;
    int32_t n = f(reinterpret_cast<UChar*>(out.data()), static_cast<int32_t>(out.size()), err);
    if (err == U_BUFFER_OVERFLOW_ERROR) {
        out.assign(static_cast<std::size_t>(n), u'\0');
        err = U_ZERO_ERROR;
        n = f(reinterpret_cast<UChar*>(out.data()), static_cast<int32_t>(out.size()), err);
    }
    if (U_FAILURE(err)) return std::u16string(s);
    out.resize(static_cast<std::size_t>(n));
    return out;
}

}  // namespace

// The root locale: the platform's uppercaseString does not vary by language.
std::u16string toUpper(std::u16string_view s) {
    return transform(s, [&](UChar* d, int32_t cap, UErrorCode& e) {
        return u_strToUpper(d, cap, u(s), static_cast<int32_t>(s.size()), "", &e);
    });
}

std::u16string toLower(std::u16string_view s) {
    return transform(s, [&](UChar* d, int32_t cap, UErrorCode& e) {
        return u_strToLower(d, cap, u(s), static_cast<int32_t>(s.size()), "", &e);
    });
}

std::u16string foldCase(std::u16string_view s) {
    return transform(s, [&](UChar* d, int32_t cap, UErrorCode& e) {
        return u_strFoldCase(d, cap, u(s), static_cast<int32_t>(s.size()), U_FOLD_CASE_DEFAULT, &e);
    });
}

}  // namespace foundation::text

namespace {

using namespace foundation::text;

std::u16string titleCase(std::u16string_view s) {
    return transform(s, [&](UChar* d, int32_t cap, UErrorCode& e) {
        return u_strToTitle(d, cap, u(s), static_cast<int32_t>(s.size()), nullptr, "", &e);
    });
}

// Decomposes, drops combining marks, recomposes: "é" compares as "e".
std::u16string withoutDiacritics(std::u16string_view s) {
    UErrorCode err = U_ZERO_ERROR;
    const UNormalizer2* nfd = unorm2_getNFDInstance(&err);
    const UNormalizer2* nfc = unorm2_getNFCInstance(&err);
    if (U_FAILURE(err)) return std::u16string(s);
    const std::u16string decomposed = transform(s, [&](UChar* d, int32_t cap, UErrorCode& e) {
        return unorm2_normalize(nfd, u(s), static_cast<int32_t>(s.size()), d, cap, &e);
    });
    std::u16string bare;
    std::size_t n = 0;
    for (std::size_t i = 0; i < decomposed.size(); i += n) {
        const char32_t c = codePointAt(decomposed, i, &n);
        if (u_charType(static_cast<UChar32>(c)) != U_NON_SPACING_MARK) appendCodePoint(bare, c);
    }
    return transform(bare, [&](UChar* d, int32_t cap, UErrorCode& e) {
        return unorm2_normalize(nfc, u(bare), static_cast<int32_t>(bare.size()), d, cap, &e);
    });
}

int digitValue(char16_t c) {
    if (c >= u'0' && c <= u'9') return c - u'0';
    if (c < 0x80) return -1;
    return u_charType(c) == U_DECIMAL_DIGIT_NUMBER ? u_charDigitValue(c) : -1;
}

NSComparisonResult order(int c) {
    return c < 0 ? NSOrderedAscending : c > 0 ? NSOrderedDescending : NSOrderedSame;
}

// Runs of decimal digits compare by value ("9" < "10", "2.9" < "2.12.5");
// everything else unit by unit.
NSComparisonResult numericCompare(std::u16string_view a, std::u16string_view b) {
    std::size_t i = 0, j = 0;
    while (i < a.size() && j < b.size()) {
        if (digitValue(a[i]) >= 0 && digitValue(b[j]) >= 0) {
            std::size_t ie = i, je = j;
            while (ie < a.size() && digitValue(a[ie]) >= 0) ++ie;
            while (je < b.size() && digitValue(b[je]) >= 0) ++je;
            while (i + 1 < ie && digitValue(a[i]) == 0) ++i;  // leading zeros carry no value
            while (j + 1 < je && digitValue(b[j]) == 0) ++j;
            if (ie - i != je - j) return ie - i < je - j ? NSOrderedAscending : NSOrderedDescending;
            for (; i < ie; ++i, ++j) {
                if (const int d = digitValue(a[i]) - digitValue(b[j]); d != 0) return order(d);
            }
            j = je;
            continue;
        }
        if (a[i] != b[j]) return a[i] < b[j] ? NSOrderedAscending : NSOrderedDescending;
        ++i;
        ++j;
    }
    if (i < a.size()) return NSOrderedDescending;
    if (j < b.size()) return NSOrderedAscending;
    return NSOrderedSame;
}

NSComparisonResult compareOptions(NSString* self, SEL, NSString* other,
                                  NSStringCompareOptions options) {
    if (other == nullptr) return NSOrderedDescending;
    std::u16string a = self->units();
    std::u16string b = other->units();
    if (options & NSDiacriticInsensitiveSearch) {
        a = withoutDiacritics(a);
        b = withoutDiacritics(b);
    }
    if (options & NSCaseInsensitiveSearch) {
        a = foldCase(a);
        b = foldCase(b);
    }
    if (options & NSNumericSearch) return numericCompare(a, b);
    return order(a.compare(b));
}

NSComparisonResult compare(NSString* self, SEL, NSString* other) {
    return compareOptions(self, nullptr, other, NSStringCompareOptions{});
}

NSComparisonResult caseInsensitiveCompare(NSString* self, SEL, NSString* other) {
    return compareOptions(self, nullptr, other, NSCaseInsensitiveSearch);
}

// Collators of the current locale, shared: comparing through a collator is
// thread-safe once it is set up.
struct CollatorClose {
    void operator()(UCollator* c) const { ucol_close(c); }
};
using Collator = std::unique_ptr<UCollator, CollatorClose>;

Collator openCollator(bool numeric) {
    // The POSIX locale collates by code point; a user's locale never does,
    // so it falls back to the root collation.
    const std::string_view locale = uloc_getDefault();
    const bool posix = locale.find("POSIX") != std::string_view::npos;
    UErrorCode err = U_ZERO_ERROR;
    Collator c(ucol_open(posix ? "" : uloc_getDefault(), &err));
    if (U_FAILURE(err) || !c) {
        err = U_ZERO_ERROR;
        c.reset(ucol_open("", &err));
    }
    if (!c) return c;
    ucol_setStrength(c.get(), UCOL_SECONDARY);
    if (numeric) ucol_setAttribute(c.get(), UCOL_NUMERIC_COLLATION, UCOL_ON, &err);
    return c;
}

NSComparisonResult collate(const Collator& c, NSString* self, NSString* other,
                           NSStringCompareOptions fallback) {
    if (other == nullptr) return NSOrderedDescending;
    if (!c) return compareOptions(self, nullptr, other, fallback);
    const std::u16string& a = self->units();
    const std::u16string& b = other->units();
    switch (ucol_strcoll(c.get(), u(a), static_cast<int32_t>(a.size()), u(b),
                         static_cast<int32_t>(b.size()))) {
        case UCOL_LESS:
            return NSOrderedAscending;
        case UCOL_GREATER:
            return NSOrderedDescending;
        default:
            return NSOrderedSame;
    }
}

NSComparisonResult localizedCaseInsensitiveCompare(NSString* self, SEL, NSString* other) {
    static const Collator collator = openCollator(false);
    return collate(collator, self, other, NSCaseInsensitiveSearch);
}

NSComparisonResult localizedStandardCompare(NSString* self, SEL, NSString* other) {
    static const Collator collator = openCollator(true);
    return collate(collator, self, other, NSCaseInsensitiveSearch | NSNumericSearch);
}

NSString* uppercaseString(NSString* self, SEL) {
    return makeString(toUpper(self->units()));
}
NSString* lowercaseString(NSString* self, SEL) {
    return makeString(toLower(self->units()));
}
NSString* capitalizedString(NSString* self, SEL) {
    return makeString(titleCase(self->units()));
}

void attach(Class cls) {
    objc::ClassBuilder<NSString> b(cls);
    b.imp<&compare>("compare:")
        .imp<&compareOptions>("compare:options:")
        .imp<&caseInsensitiveCompare>("caseInsensitiveCompare:")
        .imp<&localizedCaseInsensitiveCompare>("localizedCaseInsensitiveCompare:")
        .imp<&localizedStandardCompare>("localizedStandardCompare:")
        .imp<&uppercaseString>("uppercaseString")
        .imp<&lowercaseString>("lowercaseString")
        .imp<&capitalizedString>("capitalizedString");
}

[[maybe_unused]] const bool kAttached =
    (objc::loadImage({}, {objc::Category{"NSString", "FoundationCompare", &attach}}), true);

}  // namespace
