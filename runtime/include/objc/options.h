// Option sets: enumerations whose values are bit masks. A type opts in once,
// after its declaration, and then combines with |, &, ^ and ~ into values of
// its own type, so a mask of one set cannot be handed to a parameter of
// another:
//   enum UIControlEvents : NSUInteger { UIControlEventTouchDown = 1 << 0, ... };
//   OBJC_OPTIONS(UIControlEvents);
#pragma once

#include <type_traits>

namespace objc {

template <class E>
struct IsOptionSet : std::false_type {};

template <class E>
concept OptionSet = std::is_enum_v<E> && IsOptionSet<E>::value;

// The mask as its integer, for code that tests or counts bits.
template <OptionSet E>
constexpr std::underlying_type_t<E> bits(E value) {
    return static_cast<std::underlying_type_t<E>>(value);
}

// Whether every bit of `wanted` is set in `value`.
template <OptionSet E>
constexpr bool contains(E value, E wanted) {
    return (bits(value) & bits(wanted)) == bits(wanted);
}

}  // namespace objc

// At global scope so that argument-dependent lookup finds them for option
// sets declared at global scope, as the platform's are.
template <objc::OptionSet E>
constexpr E operator|(E a, E b) {
    return static_cast<E>(objc::bits(a) | objc::bits(b));
}
template <objc::OptionSet E>
constexpr E operator&(E a, E b) {
    return static_cast<E>(objc::bits(a) & objc::bits(b));
}
template <objc::OptionSet E>
constexpr E operator^(E a, E b) {
    return static_cast<E>(objc::bits(a) ^ objc::bits(b));
}
template <objc::OptionSet E>
constexpr E operator~(E a) {
    return static_cast<E>(~objc::bits(a));
}
template <objc::OptionSet E>
constexpr E& operator|=(E& a, E b) {
    return a = a | b;
}
template <objc::OptionSet E>
constexpr E& operator&=(E& a, E b) {
    return a = a & b;
}
template <objc::OptionSet E>
constexpr E& operator^=(E& a, E b) {
    return a = a ^ b;
}

#define OBJC_OPTIONS(Type) \
    template <>            \
    struct objc::IsOptionSet<Type> : std::true_type {}
