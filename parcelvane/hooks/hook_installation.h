// Putting hooks into classes found by name. A hook is a free function taking
// the receiver and the selector first, then the method's own arguments; it
// is declared once, and everything else is derived from it: the slot it
// passes its calls on to, its fallback, and the type encoding it stands for.
// A table row names only the hook, its class and its selector.
#pragma once

#include <objc/encoding.h>
#include <objc/message.h>
#include <objc/passing.h>
#include <objc/runtime.h>

#include <span>
#include <utility>
#include <vector>

namespace parcelvane::hooks {

// What installing one row did. Only Installed changes the class.
enum class HookResult {
    Installed,
    ClassMissing,        // the host has no class of that name
    MethodMissing,       // a replacement for a method the class does not respond to
    EncodingMismatch,    // the method's types are not those of the replacement's signature
    AlreadyImplemented,  // an added method the class already has itself
};

template <auto Hook>
struct Original;

// One slot per replacement function, so that a hook can only ever pass its
// calls on to what it was installed in front of. Written at installation
// only, before any hooked method can run, and only read afterwards.
template <class R, class... A, R (*Hook)(id, SEL, A...)>
struct Original<Hook> {
    using Result = R;

    // What the hook passes its calls on to: the class's previous
    // implementation, or `fromSuperclass`. Empty while not installed.
    static inline IMP imp = nullptr;
    // The hooked class's superclass as it was at installation.
    static inline Class savedSuperclass = nullptr;

    // Stands in for the previous implementation of a class that only
    // inherited the method: asks the saved superclass at each call, so that
    // a later change to it is seen. The receiver's own superclass would not
    // do: for an instance of a subclass it is the hooked class again.
    static objc::detail::Travel<R> fromSuperclass(id self, SEL sel,
                                                  objc::detail::Travel<A>... args) {
        return objc::callImp<objc::detail::Travel<R>>(
            class_getMethodImplementation(savedSuperclass, sel), self, sel, args...);
    }

    static R call(id self, SEL sel, A... args) { return objc::callImp<R>(imp, self, sel, args...); }
};

// The type encoding of a method implemented by a free function: "v@:@" for
// void(id, SEL, id).
template <class R, class... A>
constexpr const char* methodTypes(R (*)(id, SEL, A...)) {
    return objc::methodEncoding<R, A...>();
}

// Passes a call on from inside `Hook`, with the hook's own argument types.
template <auto Hook, class... Given>
typename Original<Hook>::Result callOriginal(id self, SEL sel, Given&&... args) {
    return Original<Hook>::call(self, sel, std::forward<Given>(args)...);
}

struct HookRow {
    const char* className;
    const char* selector;
    IMP implementation;  // the replacement, or the added method
    const char* types;   // from the function's C++ signature
    // A replacement's slots; null for an added method.
    IMP* original;
    Class* savedSuperclass;
    IMP fromSuperclass;
};

// Stands in front of a method the class has, itself or inherited.
template <auto Hook>
HookRow replace(const char* className, const char* selector) {
    using Slots = Original<Hook>;
    return HookRow{.className = className,
                   .selector = selector,
                   .implementation = objc::implementationOf<Hook>(),
                   .types = methodTypes(Hook),
                   .original = &Slots::imp,
                   .savedSuperclass = &Slots::savedSuperclass,
                   .fromSuperclass = reinterpret_cast<IMP>(&Slots::fromSuperclass)};
}

// A new method; a class that has its own of that name keeps it.
template <auto Method>
HookRow add(const char* className, const char* selector) {
    return HookRow{.className = className,
                   .selector = selector,
                   .implementation = objc::implementationOf<Method>(),
                   .types = methodTypes(Method),
                   .original = nullptr,
                   .savedSuperclass = nullptr,
                   .fromSuperclass = nullptr};
}

// Installs the rows in order and answers one result per row. A row whose
// class or method is missing, or whose types differ, changes nothing.
[[nodiscard]] std::vector<HookResult> installHooks(std::span<const HookRow> rows);

}  // namespace parcelvane::hooks
