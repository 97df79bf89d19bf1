// Putting hooks into classes found by name: a hook is one row of data, and
// one function installs a list of rows in order.
#pragma once

#include <objc/message.h>
#include <objc/runtime.h>

#include <span>

namespace parcelvane::hooks {

enum class HookKind {
    Replaced,  // stands in front of a method the class has (itself or inherited)
    Added,     // a new method, kept out when the class already has its own
};

struct HookRow {
    const char* className;
    Class* savedSuperclass;  // the class's slot, filled when its first row is reached
    const char* selector;
    HookKind kind;
    IMP implementation;  // the replacement, or the added method
    IMP fallback;        // Replaced: passes on to the saved superclass
    IMP* slot;           // Replaced: what the replacement passes its calls on to
    const char* types;   // Added: the method's fixed type encoding
};

// Passes a call on to the implementation that the saved superclass has at
// the moment of the call, so that a later change to the superclass is seen.
// It stands in for the replaced implementation of a class that only
// inherited the method.
template <Class* Saved, class R, class... A>
R fallback(id self, SEL sel, A... args) {
    return objc::callImp<R>(class_getMethodImplementation(*Saved, sel), self, sel, args...);
}

namespace detail {
template <Class* Saved, auto Replacement>
struct FallbackFor;
template <Class* Saved, class R, class... A, R (*F)(id, SEL, A...)>
struct FallbackFor<Saved, F> {
    static IMP imp() { return reinterpret_cast<IMP>(&fallback<Saved, R, A...>); }
};
}  // namespace detail

// A replaced method; its fallback is made from the replacement's own
// signature, so the two always take the same arguments.
template <auto Replacement, Class* Saved, IMP* Slot>
HookRow replacedMethod(const char* className, const char* selector) {
    return HookRow{.className = className,
                   .savedSuperclass = Saved,
                   .selector = selector,
                   .kind = HookKind::Replaced,
                   .implementation = reinterpret_cast<IMP>(Replacement),
                   .fallback = detail::FallbackFor<Saved, Replacement>::imp(),
                   .slot = Slot,
                   .types = nullptr};
}

template <auto Method, Class* Saved>
HookRow addedMethod(const char* className, const char* selector, const char* types) {
    return HookRow{.className = className,
                   .savedSuperclass = Saved,
                   .selector = selector,
                   .kind = HookKind::Added,
                   .implementation = reinterpret_cast<IMP>(Method),
                   .fallback = nullptr,
                   .slot = nullptr,
                   .types = types};
}

// Installs the rows in order. Rows of one class follow each other; the
// class is looked up, and its superclass saved, at the first of them. A
// class that does not exist is skipped with all its rows.
void installHooks(std::span<const HookRow> rows);

}  // namespace parcelvane::hooks
