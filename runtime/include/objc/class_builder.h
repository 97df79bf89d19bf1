// Writing runtime classes in C++: the idiom.
//
// A C++ class holds an object's state. Its dynamically dispatched methods
// and properties are registered once, by name, in objcDefine; encodings,
// accessors and attribute strings are derived from the C++ types. C++
// callers use typed wrappers that send the message, so an implementation
// replaced at run time always runs.
//
//   // Tally.h
//   class Tally : public NSObject {
//       OBJC_CLASS(Tally)
//
//       NSInteger add(NSInteger n) {
//           return objc::msgSend<NSInteger>(this, objc::sel<"add:">(), n);
//       }
//       NSInteger count() { return objc::msgSend<NSInteger>(this, objc::sel<"count">()); }
//       NSString* name() { return objc::msgSend<NSString*>(this, objc::sel<"name">()); }
//       void setName(NSString* name) {
//           objc::msgSend<void>(this, objc::sel<"setName:">(), name);
//       }
//
//     private:
//       Tally* imp_init();
//       NSInteger imp_add(NSInteger n) { return count_ += n; }
//
//       NSInteger count_ = 0;
//       objc::Strong<NSString> name_;
//   };
//
//   // Tally.cpp
//   OBJC_DEFINE_CLASS(Tally, NSObject, "Tally")
//
//   void Tally::objcDefine(objc::ClassBuilder<Tally>& b) {
//       b.property<&Tally::count_>("count", objc::Readonly | objc::Nonatomic)
//           .property<&Tally::name_>("name", objc::Copy)
//           .method<&Tally::imp_init>("init")
//           .method<&Tally::imp_add>("add:");
//   }
//
//   Tally* Tally::imp_init() {
//       // [super init]: the lookup starts above Tally, the class defining this.
//       auto* self = static_cast<Tally*>(objc::superSend<id>(this, objc::sel<"init">()));
//       if (self != nullptr) self->count_ = 1;
//       return self;
//   }
//
// Properties: property<&T::member_>(name, options) adds the getter and the
// setter (setName:) and declares the property with the platform's attribute
// string ("T@\"NSString\",C,V_name"). A setter that must do more than store
// (lay out, notify) stays hand-written, registered with method<>.
//
// Raw sends: call the typed wrapper (tally->add(2)). A raw objc::msgSend at
// a call site means one of three things, and says which:
//   - the class is known only by name:
//       objc::Strong<objc_object> chat = objc::makeInstance("WAChat");
//       objc::msgSend<void>(chat.get(), objc::sel<"reload">());
//   - the receiver may be nil (a member call through a null pointer is
//     undefined, a message to nil answers zero):
//       objc::sendIfAny<void>(delegate_, objc::sel<"tallyDidChange:">(), this);
//   - a class-object send:
//       objc::msgSend<bool>(cls, objc::sel<"instancesRespondToSelector:">(), sel);
#pragma once

#include <objc/encoding.h>
#include <objc/message.h>
#include <objc/passing.h>
#include <objc/property_accessors.h>
#include <objc/strong.h>

#include <memory>
#include <type_traits>

namespace objc {

template <class T>
class ClassBuilder;

namespace detail {

using Allocator = id (*)(Class);

template <class T>
id allocateInstance(Class cls) {
    auto obj = std::make_unique<T>();
    obj->isa_.store(cls, std::memory_order_relaxed);
    return obj.release();
}

// Creates the class and its metaclass under the name; methods are added
// before the class is published for lookup by name.
PV_EXPORT Class createClass(const char* name, Class superclass, Allocator allocator);
PV_EXPORT void publishClass(Class cls);
// The class of that name when another image (a second copy of a library)
// has already defined it: as on the platform, the first one is used and the
// duplicate is reported. Null otherwise.
PV_EXPORT Class classOfAnotherImage(const char* name, Allocator allocator);

struct PV_EXPORT IvarAccess {
    void* (*address)(id self);
    id (*readObject)(void* slot);               // null for scalar ivars
    void (*writeObject)(void* slot, id value);  // null for scalar ivars
};
PV_EXPORT void addIvar(Class cls, const char* name, const char* types, IvarAccess access);

// Member and class-method implementations are reached through a thunk of
// the travelling function type (objc/passing.h).
template <auto Fn>
struct MemberThunk;
template <class T, class R, class... A, R (T::*F)(A...)>
struct MemberThunk<F> {
    static Travel<R> call(id self, SEL, Travel<A>... a) {
        return returnTravelling<R>(
            [&] { return (static_cast<T*>(self)->*F)(travelCast<A>(a)...); });
    }
    static const char* types() { return methodEncoding<R, A...>(); }
};
template <class T, class R, class... A, R (T::*F)(A...) const>
struct MemberThunk<F> {
    static Travel<R> call(id self, SEL, Travel<A>... a) {
        return returnTravelling<R>(
            [&] { return (static_cast<const T*>(self)->*F)(travelCast<A>(a)...); });
    }
    static const char* types() { return methodEncoding<R, A...>(); }
};

template <auto Fn>
struct ClassThunk;
template <class R, class... A, R (*F)(Class, A...)>
struct ClassThunk<F> {
    static Travel<R> call(id self, SEL, Travel<A>... a) {
        return returnTravelling<R>([&] { return F(travelCast<Class>(self), travelCast<A>(a)...); });
    }
    static const char* types() { return methodEncoding<R, A...>(); }
};

template <class M>
struct IvarTraits {
    static constexpr bool kObject = false;
};

}  // namespace detail

namespace detail {
template <class U>
struct IvarTraits<Strong<U>> {
    static constexpr bool kObject = true;
    static id read(void* slot) { return static_cast<Strong<U>*>(slot)->get(); }
    static void write(void* slot, id value) {
        *static_cast<Strong<U>*>(slot) = Strong<U>::retain(static_cast<U*>(value));
    }
};
}  // namespace detail

template <class T>
class ClassBuilder {
  public:
    explicit ClassBuilder(Class cls) : cls_(cls), meta_(object_getClass(cls)) {}

    Class cls() const { return cls_; }

    // An instance method implemented by a member function of T.
    template <auto Fn>
    ClassBuilder& method(const char* selector) {
        using Thunk = detail::MemberThunk<Fn>;
        class_replaceMethod(cls_, sel_registerName(selector), reinterpret_cast<IMP>(&Thunk::call),
                            Thunk::types());
        return *this;
    }
    // A class method implemented by a static function taking the class first.
    template <auto Fn>
    ClassBuilder& classMethod(const char* selector) {
        using Thunk = detail::ClassThunk<Fn>;
        class_replaceMethod(meta_, sel_registerName(selector), reinterpret_cast<IMP>(&Thunk::call),
                            Thunk::types());
        return *this;
    }
    // An instance method implemented by a function taking (receiver, SEL, args...).
    template <auto Fn>
    ClassBuilder& imp(const char* selector) {
        using Thunk = detail::ImpThunk<Fn>;
        class_replaceMethod(cls_, sel_registerName(selector), Thunk::imp(), Thunk::types());
        return *this;
    }
    // A class method implemented by a function taking (class, SEL, args...).
    template <auto Fn>
    ClassBuilder& classImp(const char* selector) {
        using Thunk = detail::ImpThunk<Fn>;
        class_replaceMethod(meta_, sel_registerName(selector), Thunk::imp(), Thunk::types());
        return *this;
    }
    // A declared property over a member, with its getter and (unless
    // Readonly) its setter; see PropertyOptions for the options.
    template <auto Member>
    ClassBuilder& property(const char* name, PropertyOptions options = {}) {
        detail::defineProperty<T, Member>(cls_, name, options);
        return *this;
    }
    // An instance variable readable by key-value coding and object_getIvar.
    template <auto Member>
    ClassBuilder& ivar(const char* name) {
        using M = std::remove_reference_t<decltype(std::declval<T&>().*Member)>;
        using Traits = detail::IvarTraits<M>;
        detail::IvarAccess access{};
        access.address = [](id self) -> void* { return &(static_cast<T*>(self)->*Member); };
        const char* types = nullptr;
        if constexpr (Traits::kObject) {
            access.readObject = &Traits::read;
            access.writeObject = &Traits::write;
            types = "@";
        } else {
            types = encodingOf<M>();
        }
        detail::addIvar(cls_, name, types, access);
        return *this;
    }

  private:
    Class cls_;
    Class meta_;
};

namespace detail {
template <class T, class Super>
Class defineClass(const char* name) {
    static_assert(std::is_base_of_v<Super, T>, "a class derives from its superclass");
    if (const Class first = classOfAnotherImage(name, &allocateInstance<T>)) return first;
    const Class cls = createClass(name, Super::objcClass(), &allocateInstance<T>);
    ClassBuilder<T> builder(cls);
    T::objcDefine(builder);
    publishClass(cls);
    return cls;
}
template <class T>
Class defineRootClass(const char* name) {
    if (const Class first = classOfAnotherImage(name, &allocateInstance<T>)) return first;
    const Class cls = createClass(name, nullptr, &allocateInstance<T>);
    ClassBuilder<T> builder(cls);
    T::objcDefine(builder);
    publishClass(cls);
    return cls;
}
}  // namespace detail

}  // namespace objc

// Declares the runtime class of a C++ class.
#define OBJC_CLASS(T)                                             \
  public:                                                         \
    static Class objcClass() noexcept;                            \
    [[maybe_unused]] static const char* objcClassName() noexcept; \
    static void objcDefine(::objc::ClassBuilder<T>& builder);     \
                                                                  \
  public:

// Defines it in one translation unit; the class is created on first use.
#define OBJC_DEFINE_CLASS(T, Super, Name)                                     \
    const char* T::objcClassName() noexcept {                                 \
        return Name;                                                          \
    }                                                                         \
    Class T::objcClass() noexcept {                                           \
        static const Class cls = ::objc::detail::defineClass<T, Super>(Name); \
        return cls;                                                           \
    }

#define OBJC_DEFINE_ROOT_CLASS(T, Name)                                    \
    const char* T::objcClassName() noexcept {                              \
        return Name;                                                       \
    }                                                                      \
    Class T::objcClass() noexcept {                                        \
        static const Class cls = ::objc::detail::defineRootClass<T>(Name); \
        return cls;                                                        \
    }
