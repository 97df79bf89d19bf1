// Ownership of runtime objects from C++: a strong pointer and autorelease pools.
#pragma once

#include <objc/runtime.h>

#include <type_traits>
#include <utility>

namespace objc {

// A strong reference: retains on copy, releases on destruction. Converts to
// the raw pointer so that it can be handed to messages, which never take
// ownership of their arguments.
template <class T>
class Strong {
  public:
    Strong() noexcept = default;
    Strong(std::nullptr_t) noexcept {}  // NOLINT: implicit like a pointer

    // Takes over a reference the caller already owns (alloc, new, copy, init).
    static Strong adopt(T* p) noexcept {
        Strong s;
        s.p_ = p;
        return s;
    }
    // Adds a reference of its own.
    static Strong retain(T* p) noexcept {
        Strong s;
        s.p_ = p;
        if (p) objc_retain(p);
        return s;
    }

    Strong(const Strong& o) noexcept : p_(o.p_) {
        if (p_) objc_retain(p_);
    }
    Strong(Strong&& o) noexcept : p_(std::exchange(o.p_, nullptr)) {}
    template <class U, class = std::enable_if_t<std::is_convertible_v<U*, T*>>>
    Strong(const Strong<U>& o) noexcept : p_(o.get()) {  // NOLINT: implicit upcast
        if (p_) objc_retain(p_);
    }
    template <class U, class = std::enable_if_t<std::is_convertible_v<U*, T*>>>
    Strong(Strong<U>&& o) noexcept : p_(o.leak()) {}  // NOLINT: implicit upcast

    Strong& operator=(Strong o) noexcept {
        std::swap(p_, o.p_);
        return *this;
    }
    ~Strong() {
        if (p_) objc_release(p_);
    }

    T* get() const noexcept { return p_; }
    T* operator->() const noexcept { return p_; }
    T& operator*() const noexcept { return *p_; }
    operator T*() const noexcept { return p_; }  // NOLINT: implicit like a pointer
    explicit operator bool() const noexcept { return p_ != nullptr; }

    // Gives up ownership without releasing; the caller owns the reference.
    [[nodiscard]] T* leak() noexcept { return std::exchange(p_, nullptr); }
    void reset() noexcept { Strong().swap(*this); }
    void swap(Strong& o) noexcept { std::swap(p_, o.p_); }

  private:
    T* p_ = nullptr;
};

template <class T>
Strong<T> adopt(T* p) noexcept {
    return Strong<T>::adopt(p);
}
template <class T>
Strong<T> retained(T* p) noexcept {
    return Strong<T>::retain(p);
}

// Releases, at the end of its scope, every object autoreleased within it.
class PV_EXPORT AutoreleasePool {
  public:
    AutoreleasePool() : token_(objc_autoreleasePoolPush()) {}
    ~AutoreleasePool() { objc_autoreleasePoolPop(token_); }
    AutoreleasePool(const AutoreleasePool&) = delete;
    AutoreleasePool& operator=(const AutoreleasePool&) = delete;

  private:
    void* token_;
};

// Hands an owned reference to the current pool and answers the object.
template <class T>
T* autorelease(T* p) noexcept {
    objc_autorelease(p);
    return p;
}

}  // namespace objc
