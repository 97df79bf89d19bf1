// How values cross a message send. A caller knows the method by its encoding
// only ("@@:@"), while the implementation was written with C++ types
// (`NSString* f(id, SEL, NSURL*)`, an enumeration where the encoding says
// "q"). Both sides therefore agree on one plain function type per encoding:
// every object, class and block pointer travels as `id`, every enumeration
// as its underlying integer, and implementations written with other types
// are reached through a thunk. No function is ever called through a type
// other than its own (clang's -fsanitize=function checks exactly that).
#pragma once

#include <objc/encoding.h>

#include <bit>
#include <type_traits>

namespace objc::detail {

// A literal nullptr travels as a nil object: nullptr_t has no defined
// register value, so it is never passed as itself.
template <class A>
using Passed = std::conditional_t<std::is_null_pointer_v<A>, id, A>;

template <class T>
struct Travelling {
    using type = T;
};
template <class T>
requires std::is_enum_v<T>
struct Travelling<T> {
    using type = std::underlying_type_t<T>;
};
// Decided by the encoding, so that a class seen complete on one side and only
// declared on the other still travels the same way.
template <class P>
requires(kEncoding<P*>.chars[0] == '@' || kEncoding<P*>.chars[0] == '#') struct Travelling<P*> {
    using type = id;
};

template <class T>
using Travel = typename Travelling<std::remove_cv_t<Passed<T>>>::type;

// Converts between a C++ type and the type it travels as, both ways.
template <class To, class From>
To travelCast(From value) {
    if constexpr (std::is_same_v<To, From>) {
        return value;
    } else if constexpr (std::is_pointer_v<To> && std::is_pointer_v<From>) {
        // Object classes derive from objc_object alone, so the address is
        // the same whichever pointer type carries it.
        return std::bit_cast<To>(value);
    } else {
        return static_cast<To>(value);
    }
}

// Answers what `call` answers, as the type it travels as.
template <class R, class Call>
Travel<R> returnTravelling(Call&& call) {
    if constexpr (std::is_void_v<R>) {
        call();
    } else {
        return travelCast<Travel<R>>(call());
    }
}

template <class R, class... A>
using TravelFunction = Travel<R> (*)(id, SEL, Travel<A>...);

// Calls an implementation with the types its encoding gives it.
template <class R, class... A>
R callTravelling(IMP imp, id self, SEL sel, A... args) {
    const auto fn = reinterpret_cast<TravelFunction<R, A...>>(imp);
    if constexpr (std::is_void_v<R>) {
        fn(self, sel, travelCast<Travel<A>>(static_cast<Passed<A>>(args))...);
    } else {
        return travelCast<R>(fn(self, sel, travelCast<Travel<A>>(static_cast<Passed<A>>(args))...));
    }
}

template <auto Fn>
struct ImpThunk;
// An implementation as a free function taking the receiver first (as `id`, a
// class or a subclass pointer): installed as itself when its type is already
// the travelling one, else through `call`.
template <class Self, class R, class... A, R (*F)(Self, SEL, A...)>
struct ImpThunk<F> {
    static_assert(std::is_pointer_v<Self>, "an implementation takes the receiver first");
    static Travel<R> call(id self, SEL cmd, Travel<A>... a) {
        return returnTravelling<R>(
            [&] { return F(travelCast<Self>(self), cmd, travelCast<A>(a)...); });
    }
    static IMP imp() {
        if constexpr (std::is_same_v<R (*)(Self, SEL, A...), TravelFunction<R, A...>>) {
            return reinterpret_cast<IMP>(F);
        } else {
            return reinterpret_cast<IMP>(&call);
        }
    }
    static const char* types() { return methodEncoding<R, A...>(); }
};

}  // namespace objc::detail

namespace objc {
// The implementation to install for a free function `R f(Self, SEL, A...)`.
template <auto Fn>
IMP implementationOf() {
    return detail::ImpThunk<Fn>::imp();
}
}  // namespace objc
