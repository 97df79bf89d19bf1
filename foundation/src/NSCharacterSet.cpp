#include <Foundation/NSCharacterSet.h>

#include "string_internal.h"

#include <objc/image.h>

#include <unicode/uchar.h>

#include <algorithm>

OBJC_DEFINE_CLASS(NSCharacterSet, NSObject, "NSCharacterSet")
OBJC_REGISTER_CLASS(NSCharacterSet)

namespace {

using Range = NSCharacterSet::Range;
constexpr char32_t kMaxCodePoint = 0x10FFFF;

// Sorted, with overlapping and adjacent ranges merged.
std::vector<Range> normalized(std::vector<Range> ranges) {
    std::erase_if(ranges,
                  [](const Range& r) { return r.first > r.last || r.first > kMaxCodePoint; });
    for (Range& r : ranges) r.last = std::min(r.last, kMaxCodePoint);
    std::sort(ranges.begin(), ranges.end(),
              [](const Range& a, const Range& b) { return a.first < b.first; });
    std::vector<Range> out;
    for (const Range& r : ranges) {
        if (!out.empty() && r.first <= out.back().last + 1) {
            out.back().last = std::max(out.back().last, r.last);
        } else {
            out.push_back(r);
        }
    }
    return out;
}

// Code points whose general category is in the mask, plus extra ranges.
std::vector<Range> categories(std::uint32_t mask, std::vector<Range> extra = {}) {
    struct Context {
        std::uint32_t mask;
        std::vector<Range>* ranges;
    } context{mask, &extra};
    u_enumCharTypes(
        [](const void* c, UChar32 start, UChar32 limit, UCharCategory type) -> UBool {
            const auto* ctx = static_cast<const Context*>(c);
            if ((U_MASK(type) & ctx->mask) != 0) {
                ctx->ranges->push_back(
                    {static_cast<char32_t>(start), static_cast<char32_t>(limit - 1)});
            }
            return true;
        },
        &context);
    return extra;
}

std::vector<Range> ascii(std::string_view chars) {
    std::vector<Range> out;
    for (const char c : chars) out.push_back({static_cast<char32_t>(c), static_cast<char32_t>(c)});
    return out;
}

constexpr std::string_view kAlnum =
    "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";

enum class Standard {
    Whitespace,
    WhitespaceAndNewline,
    Newline,
    DecimalDigit,
    Letter,
    Lowercase,
    Uppercase,
    Alphanumeric,
    Punctuation,
    Symbol,
    Control,
    URLUser,
    URLPassword,
    URLHost,
    URLPath,
    URLQuery,
    URLFragment,
};

std::vector<Range> rangesOf(Standard which) {
    const std::string_view kSubDelims = "!$&'()*+,;=";
    const std::string base = std::string(kAlnum) + "-._~" + std::string(kSubDelims);
    switch (which) {
        case Standard::Whitespace:
            return categories(U_GC_ZS_MASK, {{0x09, 0x09}});
        case Standard::WhitespaceAndNewline:
            return categories(U_GC_Z_MASK, {{0x09, 0x0D}, {0x85, 0x85}});
        case Standard::Newline:
            return {{0x0A, 0x0D}, {0x85, 0x85}, {0x2028, 0x2029}};
        case Standard::DecimalDigit:
            return categories(U_GC_ND_MASK);
        case Standard::Letter:
            return categories(U_GC_L_MASK | U_GC_M_MASK);
        case Standard::Lowercase:
            return categories(U_GC_LL_MASK);
        case Standard::Uppercase:
            return categories(U_GC_LU_MASK | U_GC_LT_MASK);
        case Standard::Alphanumeric:
            return categories(U_GC_L_MASK | U_GC_M_MASK | U_GC_N_MASK);
        case Standard::Punctuation:
            return categories(U_GC_P_MASK);
        case Standard::Symbol:
            return categories(U_GC_S_MASK);
        case Standard::Control:
            return categories(U_GC_CC_MASK | U_GC_CF_MASK);
        case Standard::URLUser:
        case Standard::URLPassword:
            return ascii(base);
        case Standard::URLHost:
            return ascii(base + ":[]");
        case Standard::URLPath:
            return ascii(std::string(kAlnum) + "-._~!$&'()*+,=:@/");
        case Standard::URLQuery:
        case Standard::URLFragment:
            return ascii(base + ":@/?");
    }
    return {};
}

// The standard sets are made once and never die, as the platform's shared sets.
template <Standard Which>
NSCharacterSet* standardSet(Class, SEL) {
    static NSCharacterSet* const set = [] {
        NSCharacterSet* s = NSCharacterSet::create(rangesOf(Which)).leak();
        s->refs_.store(objc_object::kImmortalRefs, std::memory_order_relaxed);
        return s;
    }();
    return set;
}

}  // namespace

void NSCharacterSet::objcDefine(objc::ClassBuilder<NSCharacterSet>& b) {
    b.classImp<&standardSet<Standard::Whitespace>>("whitespaceCharacterSet")
        .classImp<&standardSet<Standard::WhitespaceAndNewline>>("whitespaceAndNewlineCharacterSet")
        .classImp<&standardSet<Standard::Newline>>("newlineCharacterSet")
        .classImp<&standardSet<Standard::DecimalDigit>>("decimalDigitCharacterSet")
        .classImp<&standardSet<Standard::Letter>>("letterCharacterSet")
        .classImp<&standardSet<Standard::Lowercase>>("lowercaseLetterCharacterSet")
        .classImp<&standardSet<Standard::Uppercase>>("uppercaseLetterCharacterSet")
        .classImp<&standardSet<Standard::Alphanumeric>>("alphanumericCharacterSet")
        .classImp<&standardSet<Standard::Punctuation>>("punctuationCharacterSet")
        .classImp<&standardSet<Standard::Symbol>>("symbolCharacterSet")
        .classImp<&standardSet<Standard::Control>>("controlCharacterSet")
        .classImp<&standardSet<Standard::URLUser>>("URLUserAllowedCharacterSet")
        .classImp<&standardSet<Standard::URLPassword>>("URLPasswordAllowedCharacterSet")
        .classImp<&standardSet<Standard::URLHost>>("URLHostAllowedCharacterSet")
        .classImp<&standardSet<Standard::URLPath>>("URLPathAllowedCharacterSet")
        .classImp<&standardSet<Standard::URLQuery>>("URLQueryAllowedCharacterSet")
        .classImp<&standardSet<Standard::URLFragment>>("URLFragmentAllowedCharacterSet")
        .classMethod<&NSCharacterSet::imp_withCharactersInString>(
            "characterSetWithCharactersInString:")
        .classMethod<&NSCharacterSet::imp_withRange>("characterSetWithRange:")
        .method<&NSCharacterSet::imp_invertedSet>("invertedSet")
        .method<&NSCharacterSet::imp_characterIsMember>("characterIsMember:")
        .method<&NSCharacterSet::imp_longCharacterIsMember>("longCharacterIsMember:")
        .method<&NSCharacterSet::imp_isSupersetOfSet>("isSupersetOfSet:")
        .method<&NSCharacterSet::imp_isEqual>("isEqual:")
        .method<&NSCharacterSet::imp_hash>("hash")
        .method<&NSCharacterSet::imp_copyWithZone>("copyWithZone:");
}

objc::Strong<NSCharacterSet> NSCharacterSet::create(std::vector<Range> ranges) {
    auto set = objc::make<NSCharacterSet>();
    set->ranges_ = normalized(std::move(ranges));
    return set;
}

bool NSCharacterSet::contains(char32_t c) const noexcept {
    // The last range starting at or before c.
    const auto it = std::upper_bound(ranges_.begin(), ranges_.end(), c,
                                     [](char32_t v, const Range& r) { return v < r.first; });
    return it != ranges_.begin() && c <= std::prev(it)->last;
}

NSCharacterSet* NSCharacterSet::imp_withCharactersInString(Class, NSString* s) {
    std::vector<Range> ranges;
    if (s != nullptr) {
        const std::u16string& u = s->units();
        std::size_t n = 0;
        for (std::size_t i = 0; i < u.size(); i += n) {
            const char32_t c = foundation::text::codePointAt(u, i, &n);
            ranges.push_back({c, c});
        }
    }
    return objc::autorelease(create(std::move(ranges)).leak());
}

NSCharacterSet* NSCharacterSet::imp_withRange(Class, NSRange range) {
    std::vector<Range> ranges;
    if (range.length > 0 && range.location <= kMaxCodePoint) {
        const NSUInteger last =
            std::min<NSUInteger>(range.location + (range.length - 1), kMaxCodePoint);
        ranges.push_back({static_cast<char32_t>(range.location), static_cast<char32_t>(last)});
    }
    return objc::autorelease(create(std::move(ranges)).leak());
}

NSCharacterSet* NSCharacterSet::imp_invertedSet() {
    std::vector<Range> gaps;
    char32_t next = 0;
    for (const Range& r : ranges_) {
        if (r.first > next) gaps.push_back({next, r.first - 1});
        next = r.last + 1;
    }
    if (next <= kMaxCodePoint) gaps.push_back({next, kMaxCodePoint});
    return objc::autorelease(create(std::move(gaps)).leak());
}

bool NSCharacterSet::imp_isSupersetOfSet(NSCharacterSet* other) const {
    if (other == nullptr) return true;
    // Ranges are maximal, so each range of the other set must lie inside one of ours.
    for (const Range& r : other->ranges_) {
        const auto it = std::upper_bound(ranges_.begin(), ranges_.end(), r.first,
                                         [](char32_t v, const Range& x) { return v < x.first; });
        if (it == ranges_.begin() || std::prev(it)->last < r.last) return false;
    }
    return true;
}

bool NSCharacterSet::imp_isEqual(id other) const {
    const NSCharacterSet* set = objc::cast<NSCharacterSet>(other);
    return set != nullptr && set->ranges_ == ranges_;
}

NSUInteger NSCharacterSet::imp_hash() const {
    NSUInteger h = ranges_.size();
    for (const Range& r : ranges_) h = h * 31 + r.first * 7 + r.last;
    return h;
}

// Immutable: a copy is the set itself.
id NSCharacterSet::imp_copyWithZone(void*) {
    return objc_retain(this);
}
