// Type-safe printf-style formatting, as +[NSString stringWithFormat:] formats.
//
// Variadic Objective-C selectors (stringWithFormat:, appendFormat:, NSLog)
// cannot travel through a typed message send safely: the callee would not
// know the arguments' types. Formatting is therefore a C++ variadic template
// that records each argument's type; the conversions follow printf's: %@ an
// object's description, %d %i %u %x %X %o %c %C integers, %f %e %g %a
// doubles (flags, width and precision as in "%.1f" or "%-8s"), %s C strings,
// %p pointers, %% a percent sign, "%1$@" positional arguments. Length
// modifiers (l, ll, q, z, h...) are accepted; the value printed is always the
// argument's own, never a truncated or misread one. Widths, and the
// precisions of numbers, are clamped to 10,000 characters.
#pragma once

#include <objc/string.h>

#include <array>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>

namespace objc {

namespace detail {

// One argument, with its kind.
struct PV_EXPORT FormatArg {
    enum class Kind : unsigned char { Object, Signed, Unsigned, Double, CString, Text, Pointer };
    Kind kind = Kind::Object;
    unsigned char size = 0;  // bytes of an integer argument, for %u/%x of a negative value
    union {
        id object;
        long long i;
        unsigned long long u;
        double d;
        const char* cstr;
        const void* ptr;
    };
    std::string_view text;

    FormatArg() : object(nullptr) {}
};

template <class T>
struct IsStrong : std::false_type {};
template <class U>
struct IsStrong<Strong<U>> : std::true_type {};

template <class T>
constexpr bool isObjectPointer() {
    if constexpr (std::is_pointer_v<T>) {
        using P = std::remove_cv_t<std::remove_pointer_t<T>>;
        if constexpr (std::is_class_v<P> && Complete<P>) {
            return std::is_base_of_v<objc_object, P>;
        } else {
            // Object classes are often only declared where they are passed on.
            return std::is_class_v<P> && !std::is_same_v<P, objc_selector>;
        }
    } else {
        return false;
    }
}

template <class T>
FormatArg formatArg(const T& value) {
    FormatArg a;
    using V = std::remove_cv_t<T>;
    if constexpr (std::is_enum_v<V>) {
        return formatArg(static_cast<std::underlying_type_t<V>>(value));
    } else if constexpr (std::is_integral_v<V>) {
        a.size = sizeof(V);
        if constexpr (std::is_signed_v<V>) {
            a.kind = FormatArg::Kind::Signed;
            a.i = value;
        } else {
            a.kind = FormatArg::Kind::Unsigned;
            a.u = value;
        }
    } else if constexpr (std::is_floating_point_v<V>) {
        a.kind = FormatArg::Kind::Double;
        a.d = static_cast<double>(value);
    } else if constexpr (std::is_null_pointer_v<V>) {
        a.kind = FormatArg::Kind::Object;
        a.object = nullptr;
    } else if constexpr (std::is_array_v<V> &&
                         std::is_same_v<std::remove_cv_t<std::remove_extent_t<V>>, char>) {
        a.kind = FormatArg::Kind::CString;
        a.cstr = value;
    } else if constexpr (std::is_same_v<V, const char*> || std::is_same_v<V, char*>) {
        a.kind = FormatArg::Kind::CString;
        a.cstr = value;
    } else if constexpr (std::is_same_v<V, std::string> || std::is_same_v<V, std::string_view>) {
        a.kind = FormatArg::Kind::Text;
        a.text = value;
    } else if constexpr (IsStrong<V>::value) {
        a.kind = FormatArg::Kind::Object;
        a.object = value.get();
    } else if constexpr (isObjectPointer<V>()) {
        a.kind = FormatArg::Kind::Object;
        a.object =
            reinterpret_cast<id>(const_cast<std::remove_cv_t<std::remove_pointer_t<V>>*>(value));
    } else if constexpr (std::is_pointer_v<V>) {
        a.kind = FormatArg::Kind::Pointer;
        a.ptr = reinterpret_cast<const void*>(value);
    } else {
        static_assert(std::is_pointer_v<V>,
                      "objc::format: arguments are numbers, C strings, std::string(_view), "
                      "objects or pointers");
    }
    return a;
}

// The formatted text as UTF-8. Raises NSInvalidArgumentException when the
// format asks for more arguments than it was given.
PV_EXPORT std::string formatToUtf8(std::string_view format, std::span<const FormatArg> args);
// An autoreleased NSString; nil format answers nil.
PV_EXPORT NSString* formatToString(NSString* format, std::span<const FormatArg> args);

}  // namespace detail

// [NSString stringWithFormat:format, args...], autoreleased.
template <class... A>
NSString* format(NSString* format, const A&... args) {
    const std::array<detail::FormatArg, sizeof...(A)> list{detail::formatArg(args)...};
    return detail::formatToString(format, list);
}

// The same formatting from a UTF-8 format, for C++ text.
template <class... A>
std::string formatUtf8(std::string_view format, const A&... args) {
    const std::array<detail::FormatArg, sizeof...(A)> list{detail::formatArg(args)...};
    return detail::formatToUtf8(format, list);
}

}  // namespace objc

template <class... A>
NSString* NSString::stringWithFormat(NSString* format, const A&... args) {
    return objc::format(format, args...);
}
