// Declared properties from C++ members: ClassBuilder::property registers a
// member's getter and setter and publishes the property with the platform's
// attribute string, so plain accessors are never written by hand.
#pragma once

#include <objc/encoding.h>
#include <objc/message.h>
#include <objc/property.h>
#include <objc/strong.h>

#include <mutex>
#include <string>
#include <type_traits>

namespace objc {

// How a property's accessors treat the value; combine with |. The member's
// type says the rest: an objc::Strong member is retained (or copied, with
// Copy), a raw object pointer is not owned (Assign, or Weak: reported as
// weak, cleared by its owner), a scalar is stored as it is. Accessors are atomic unless Nonatomic:
// a getter never sees half of a concurrent set, and an object it answers stays alive until the
// caller's autorelease pool drains.
struct PropertyOptions {
    enum : unsigned { kCopy = 1, kWeak = 2, kAssign = 4, kNonatomic = 8, kReadonly = 16 };
    unsigned flags = 0;
    const char* getter = nullptr;  // the getter's selector when it is not the name
    const char* setter = nullptr;  // the setter's selector when it is not setName:

    constexpr bool has(unsigned flag) const { return (flags & flag) != 0; }
};

constexpr PropertyOptions operator|(PropertyOptions a, PropertyOptions b) {
    return {a.flags | b.flags, b.getter != nullptr ? b.getter : a.getter,
            b.setter != nullptr ? b.setter : a.setter};
}

inline constexpr PropertyOptions Copy{PropertyOptions::kCopy};
inline constexpr PropertyOptions Weak{PropertyOptions::kWeak};
inline constexpr PropertyOptions Assign{PropertyOptions::kAssign};
inline constexpr PropertyOptions Nonatomic{PropertyOptions::kNonatomic};
inline constexpr PropertyOptions Readonly{PropertyOptions::kReadonly};
// A BOOL property `on` read as isOn: objc::getter("isOn").
constexpr PropertyOptions getter(const char* selector) {
    return {0, selector, nullptr};
}
constexpr PropertyOptions setter(const char* selector) {
    return {0, nullptr, selector};
}

namespace detail {

// The lock that makes an atomic accessor's access to one slot whole; slots
// share a small set of locks, chosen by address.
PV_EXPORT std::mutex& propertyLock(const void* slot) noexcept;

// Adds the accessors and the declared property. `type` is the attribute's
// type text (`@"NSString"`, `q`); a null setter makes it read-only.
PV_EXPORT void addProperty(Class cls, const char* name, const std::string& type,
                           PropertyOptions options, IMP getter, const char* getterTypes, IMP setter,
                           const char* setterTypes);

template <class U>
std::string objectTypeAttribute() {
    if constexpr (Complete<U>) {
        if constexpr (IsBlock<U>::value) {
            return "@?";
        } else if constexpr (requires { U::objcClassName(); }) {
            // The name alone: asking for the class could define it in the
            // middle of defining this one.
            return std::string("@\"") + U::objcClassName() + "\"";
        }
    }
    return "@";
}

// A member as a property value: what the accessors pass and how they store it.
template <class M>
struct PropertySlot {
    static_assert(DeclaredEncoding<std::remove_cv_t<M>>,
                  "a property member is an objc::Strong, an object pointer or a scalar with an "
                  "encoding");
    using Value = M;
    static constexpr bool kOwning = false;
    static constexpr bool kObject = kEncoding<M>.view().starts_with("@");
    static std::string typeAttribute() {
        if constexpr (std::is_pointer_v<M> && kObject) {
            return objectTypeAttribute<std::remove_cv_t<std::remove_pointer_t<M>>>();
        } else {
            return encodingOf<M>();
        }
    }
    static Value read(const M& slot) { return slot; }
};

template <class U>
struct PropertySlot<Strong<U>> {
    using Value = U*;
    static constexpr bool kOwning = true;
    static constexpr bool kObject = true;
    static std::string typeAttribute() { return objectTypeAttribute<U>(); }
    static Value read(const Strong<U>& slot) { return slot.get(); }
};

template <class T, auto Member, bool Atomic>
struct PropertyGetter {
    using M = std::remove_reference_t<decltype(std::declval<T&>().*Member)>;
    using Slot = PropertySlot<M>;
    using Value = typename Slot::Value;

    static Travel<Value> call(id self, SEL) { return travelCast<Travel<Value>>(read(self)); }

    static Value read(id self) {
        const M& slot = static_cast<T*>(self)->*Member;
        if constexpr (!Atomic) {
            return Slot::read(slot);
        } else if constexpr (Slot::kOwning) {
            Value value;
            {
                const std::lock_guard lock(propertyLock(&slot));
                value = Slot::read(slot);
                objc_retain(value);
            }
            return autorelease(value);
        } else {
            const std::lock_guard lock(propertyLock(&slot));
            return Slot::read(slot);
        }
    }
};

template <class T, auto Member, bool Atomic, bool CopyValue>
struct PropertySetter {
    using M = std::remove_reference_t<decltype(std::declval<T&>().*Member)>;
    using Slot = PropertySlot<M>;
    using Value = typename Slot::Value;

    static void call(id self, SEL, Travel<Value> value) { write(self, travelCast<Value>(value)); }

    static void write(id self, Value value) {
        M& slot = static_cast<T*>(self)->*Member;
        if constexpr (Slot::kOwning) {
            M next;
            if constexpr (CopyValue) {
                next = M::adopt(static_cast<Value>(msgSend<id>(value, sel<"copy">())));
            } else {
                next = M::retain(value);
            }
            // The old value goes when `next` does: after the lock, so that
            // its dealloc may touch this object.
            if constexpr (Atomic) {
                const std::lock_guard lock(propertyLock(&slot));
                slot.swap(next);
            } else {
                slot.swap(next);
            }
        } else if constexpr (Atomic) {
            const std::lock_guard lock(propertyLock(&slot));
            slot = value;
        } else {
            slot = value;
        }
    }
};

[[noreturn]] PV_EXPORT void badPropertyOptions(Class cls, const char* name, const char* why);

template <class T, auto Member>
void defineProperty(Class cls, const char* name, PropertyOptions options) {
    using M = std::remove_reference_t<decltype(std::declval<T&>().*Member)>;
    using Slot = PropertySlot<M>;
    using Value = typename Slot::Value;
    if (options.has(PropertyOptions::kCopy) && !Slot::kOwning) {
        badPropertyOptions(cls, name, "only an objc::Strong member can be copied");
    }
    if (options.has(PropertyOptions::kWeak | PropertyOptions::kAssign) && Slot::kOwning) {
        badPropertyOptions(cls, name, "an objc::Strong member owns its value");
    }
    if (options.has(PropertyOptions::kWeak) && !Slot::kObject) {
        badPropertyOptions(cls, name, "only an object can be weak");
    }
    const bool atomic = !options.has(PropertyOptions::kNonatomic);
    const bool copy = options.has(PropertyOptions::kCopy);
    const IMP get = atomic ? reinterpret_cast<IMP>(&PropertyGetter<T, Member, true>::call)
                           : reinterpret_cast<IMP>(&PropertyGetter<T, Member, false>::call);
    IMP set = nullptr;
    if (!options.has(PropertyOptions::kReadonly)) {
        if (atomic) {
            set = copy ? reinterpret_cast<IMP>(&PropertySetter<T, Member, true, true>::call)
                       : reinterpret_cast<IMP>(&PropertySetter<T, Member, true, false>::call);
        } else {
            set = copy ? reinterpret_cast<IMP>(&PropertySetter<T, Member, false, true>::call)
                       : reinterpret_cast<IMP>(&PropertySetter<T, Member, false, false>::call);
        }
    }
    addProperty(cls, name, Slot::typeAttribute(), options, get, methodEncoding<Value>(), set,
                methodEncoding<void, Value>());
}

}  // namespace detail

}  // namespace objc
