// Type encodings computed from C++ types at compile time, in the notation that
// method and instance-variable descriptions use ("v@:@", "{CGPoint=dd}").
#pragma once

#include <objc/fixed_string.h>
#include <objc/types.h>

#include <cstddef>
#include <string_view>
#include <type_traits>

namespace objc {

class BlockBase;

// Whether pointers to T are blocks ("@?") rather than plain objects ("@").
// Classes derived from BlockBase are blocks; specialise this to mark another
// callable object type. Only consulted for complete class types.
template <class T>
struct IsBlock : std::is_base_of<BlockBase, T> {};

namespace detail {
template <class T>
concept Complete = requires {
    sizeof(T);
};
}  // namespace detail

// The encoding of T as `value`. Specialise it for a struct that crosses message
// sends, in one line:
//   template <> struct objc::TypeEncoding<S> : objc::StructEncoding<"S", int, double> {};
template <class T>
struct TypeEncoding {
    // Marks the absence of a declared encoding; specialisations lack it.
    static constexpr bool kUndeclared = true;
    static constexpr FixedString<0> value{};
};

namespace detail {
template <class T>
concept DeclaredEncoding = !requires {
    TypeEncoding<T>::kUndeclared;
};

template <class T>
constexpr auto checkedEncoding() {
    static_assert(DeclaredEncoding<T>,
                  "objc::TypeEncoding: no encoding for this type. Objects travel by pointer; a "
                  "struct declares its encoding with objc::StructEncoding; references and class "
                  "types without a declared encoding cannot cross a message send");
    return TypeEncoding<T>::value;
}
}  // namespace detail

// Every encoding lookup goes through here so that top-level const and volatile
// never matter.
template <class T>
inline constexpr auto kEncoding = detail::checkedEncoding<std::remove_cv_t<T>>();

#define OBJC_SCALAR_ENCODING(type, text)          \
    template <>                                   \
    struct TypeEncoding<type> {                   \
        static constexpr FixedString value{text}; \
    }

OBJC_SCALAR_ENCODING(void, "v");
OBJC_SCALAR_ENCODING(bool, "B");
OBJC_SCALAR_ENCODING(char, "c");
OBJC_SCALAR_ENCODING(signed char, "c");
OBJC_SCALAR_ENCODING(unsigned char, "C");
OBJC_SCALAR_ENCODING(short, "s");
OBJC_SCALAR_ENCODING(unsigned short, "S");
OBJC_SCALAR_ENCODING(char16_t, "S");
OBJC_SCALAR_ENCODING(int, "i");
OBJC_SCALAR_ENCODING(unsigned int, "I");
OBJC_SCALAR_ENCODING(char32_t, "I");
// "l" and "L" mean 32-bit in encodings, so LP64 long is written as long long.
OBJC_SCALAR_ENCODING(long, "q");
OBJC_SCALAR_ENCODING(unsigned long, "Q");
OBJC_SCALAR_ENCODING(long long, "q");
OBJC_SCALAR_ENCODING(unsigned long long, "Q");
OBJC_SCALAR_ENCODING(float, "f");
OBJC_SCALAR_ENCODING(double, "d");
OBJC_SCALAR_ENCODING(long double, "D");
OBJC_SCALAR_ENCODING(char*, "*");
OBJC_SCALAR_ENCODING(const char*, "r*");

#undef OBJC_SCALAR_ENCODING

// Enumerations travel as their underlying integer.
template <class T>
requires std::is_enum_v<T>
struct TypeEncoding<T> : TypeEncoding<std::underlying_type_t<T>> {
};

namespace detail {
template <class P>
constexpr auto plainPointerEncoding() {
    // "r" marks a pointer to const.
    if constexpr (std::is_const_v<P>) {
        return FixedString("r^") + kEncoding<P>;
    } else {
        return FixedString("^") + kEncoding<P>;
    }
}

template <class P>
constexpr auto pointerEncoding() {
    using U = std::remove_cv_t<P>;
    if constexpr (std::is_function_v<U>) {
        return FixedString("^?");
    } else if constexpr (std::is_same_v<U, objc_selector>) {
        return FixedString(":");
    } else if constexpr (std::is_class_v<U> && Complete<U>) {
        // Tested most specific first: a class is an object, a block may be too.
        if constexpr (std::is_base_of_v<objc_class, U>) {
            return FixedString("#");
        } else if constexpr (IsBlock<U>::value) {
            return FixedString("@?");
        } else if constexpr (std::is_base_of_v<objc_object, U>) {
            return FixedString("@");
        } else {
            return plainPointerEncoding<P>();
        }
    } else if constexpr (std::is_class_v<U> && !DeclaredEncoding<U>) {
        // Object classes are often only declared where their pointers are
        // passed on; an opaque C struct declares its encoding instead.
        return FixedString("@");
    } else {
        return plainPointerEncoding<P>();
    }
}
}  // namespace detail

template <class P>
struct TypeEncoding<P*> {
    static constexpr auto value = detail::pointerEncoding<P>();
};

template <class T, std::size_t N>
struct TypeEncoding<T[N]> {
    static constexpr auto value =
        concat(FixedString("["), decimal<N>(), kEncoding<T>, FixedString("]"));
};

namespace detail {
template <FixedString Name>
constexpr bool validTag() {
    for (const char c : Name.view()) {
        if (c == '=' || c == '{' || c == '}' || c == '(' || c == ')' || c == '[' || c == ']' ||
            c == '"') {
            return false;
        }
    }
    return Name.size() > 0;
}
}  // namespace detail

// "{Name=fields...}"; with no fields it also describes an opaque struct.
template <FixedString Name, class... Fields>
struct StructEncoding {
    static_assert(detail::validTag<Name>(), "a struct tag is non-empty and has no brackets or '='");
    static constexpr auto value =
        concat(FixedString("{"), Name, FixedString("="), kEncoding<Fields>..., FixedString("}"));
};

// "(Name=members...)".
template <FixedString Name, class... Members>
struct UnionEncoding {
    static_assert(detail::validTag<Name>(), "a union tag is non-empty and has no brackets or '='");
    static constexpr auto value =
        concat(FixedString("("), Name, FixedString("="), kEncoding<Members>..., FixedString(")"));
};

// The encoding of one type, as a terminated string with static storage.
template <class T>
constexpr const char* encodingOf() {
    return kEncoding<std::remove_cv_t<T>>.chars;
}

template <class R, class... Args>
inline constexpr auto kMethodEncoding = concat(kEncoding<R>, FixedString("@:"), kEncoding<Args>...);

// A method's encoding: the result, the receiver "@", the selector ":", then
// each argument. methodEncoding<void, id>() is "v@:@".
template <class R, class... Args>
constexpr const char* methodEncoding() {
    return kMethodEncoding<R, Args...>.chars;
}

}  // namespace objc
