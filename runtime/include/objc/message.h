// Message sending: a typed template over the per-class method cache.
#pragma once

#include <objc/encoding.h>
#include <objc/passing.h>
#include <objc/runtime.h>

#include <cstring>
#include <type_traits>

namespace objc {

namespace detail {

// One cache slot. A filled slot keeps its selector and method for the life of
// the table; only the implementation is updated in place, so a reader that
// matched the selector always reads an implementation of that method.
struct PV_EXPORT CacheEntry {
    std::atomic<SEL> sel{nullptr};
    std::atomic<IMP> imp{nullptr};
    Method method = nullptr;
};

struct PV_EXPORT Cache {
    std::uint32_t mask = 0;  // capacity - 1; capacity is a power of two
    std::uint32_t occupied = 0;
    CacheEntry* entries = nullptr;
};

inline std::size_t cacheIndex(SEL sel, std::uint32_t mask) noexcept {
    return (reinterpret_cast<std::uintptr_t>(sel) >> 4) & mask;
}

// The fast path: lock-free; tables are never more than three quarters full,
// so the probe ends on an empty slot.
inline IMP cacheLookup(Class cls, SEL sel) noexcept {
    const Cache* cache = cls->cache_.load(std::memory_order_acquire);
    const std::uint32_t mask = cache->mask;
    std::size_t i = cacheIndex(sel, mask);
    for (;;) {
        const CacheEntry& e = cache->entries[i];
        const SEL s = e.sel.load(std::memory_order_acquire);
        if (s == sel) return e.imp.load(std::memory_order_acquire);
        if (s == nullptr) return nullptr;
        i = (i + 1) & mask;
    }
}

// Slow path: finds the method in the class or a superclass and caches it.
// Answers null when no class in the chain implements the selector.
PV_EXPORT IMP lookupAndCache(Class cls, SEL sel);

// Hands a message that nobody implements to the receiver's forwarding
// machinery, with the call's own arguments described by their encodings.
PV_EXPORT void forwardMessage(id self, SEL sel, const void* const* args,
                              const char* const* argTypes, const std::size_t* argSizes,
                              std::size_t argCount, void* ret, const char* retType,
                              std::size_t retSize);

template <class R, class... A>
R forward(id self, SEL sel, A... args) {
    const void* values[sizeof...(A) + 1] = {static_cast<const void*>(&args)..., nullptr};
    const char* types[sizeof...(A) + 1] = {encodingOf<A>()..., nullptr};
    const std::size_t sizes[sizeof...(A) + 1] = {sizeof(A)..., 0};
    if constexpr (std::is_void_v<R>) {
        forwardMessage(self, sel, values, types, sizes, sizeof...(A), nullptr, "v", 0);
    } else {
        R result{};
        forwardMessage(self, sel, values, types, sizes, sizeof...(A), &result, encodingOf<R>(),
                       sizeof(R));
        return result;
    }
}

template <class R>
R zeroResult() {
    if constexpr (!std::is_void_v<R>) return R{};
}

template <class... A>
constexpr void checkArguments() {
    static_assert((std::is_trivially_copyable_v<A> && ...),
                  "message arguments travel by value as C types: pass raw pointers (.get()), "
                  "not smart pointers or C++ objects");
}

}  // namespace detail

// An interned selector, looked up once per name.
template <FixedString Name>
inline SEL sel() {
    static const SEL s = sel_registerName(Name.c_str());
    return s;
}

// Sends a message. Argument and result types must be those of the method's
// encoding; they cross as objc/passing.h describes.
template <class R = void, class... A>
inline R msgSend(id self, SEL sel, A... args) {
    detail::checkArguments<A...>();
    if (self == nullptr) [[unlikely]]
        return detail::zeroResult<R>();
    const Class cls = self->isa_.load(std::memory_order_relaxed);
    IMP imp = detail::cacheLookup(cls, sel);
    if (imp == nullptr) [[unlikely]] {
        imp = detail::lookupAndCache(cls, sel);
        if (imp == nullptr) {
            return detail::forward<R, detail::Passed<A>...>(self, sel, detail::Passed<A>(args)...);
        }
    }
    return detail::callTravelling<R>(imp, self, sel, args...);
}

// Sends a message to self, starting the lookup at the given class. Super
// sends go through superSend below; this is for a class known only by name.
template <class R = void, class... A>
inline R msgSendSuper(Class start, id self, SEL sel, A... args) {
    detail::checkArguments<A...>();
    if (self == nullptr || start == nullptr) [[unlikely]]
        return detail::zeroResult<R>();
    IMP imp = detail::cacheLookup(start, sel);
    if (imp == nullptr) [[unlikely]] {
        imp = detail::lookupAndCache(start, sel);
        if (imp == nullptr) {
            return detail::forward<R, detail::Passed<A>...>(self, sel, detail::Passed<A>(args)...);
        }
    }
    return detail::callTravelling<R>(imp, self, sel, args...);
}

// [super ...] in a method that class Defining defines: the lookup starts at
// Defining's superclass, whatever the receiver's class is. Defining is
// deduced from self, so `objc::superSend<void>(this, sel)` in a member
// implementation names the defining class without spelling it.
template <class R = void, class Defining, class... A>
inline R superSend(Defining* self, SEL sel, A... args) {
    static const Class start = class_getSuperclass(Defining::objcClass());
    return msgSendSuper<R>(start, self, sel, args...);
}

// A send whose receiver may be nil, where that is expected: nil answers the
// zero value and nothing runs. A typed wrapper cannot be called on nil (a
// member call through a null pointer is undefined), so this names the case.
template <class R = void, class... A>
inline R sendIfAny(id maybeNil, SEL sel, A... args) {
    return msgSend<R>(maybeNil, sel, args...);
}

// Calls an implementation directly, as a hook calls the one it replaced.
template <class R = void, class... A>
inline R callImp(IMP imp, id self, SEL sel, A... args) {
    detail::checkArguments<A...>();
    return detail::callTravelling<R>(imp, self, sel, args...);
}

}  // namespace objc
