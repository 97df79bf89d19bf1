// The runtime's basic types, named as the Objective-C runtime names them.
#pragma once

#include <objc/export.h>

#include <atomic>
#include <cstddef>
#include <cstdint>

struct objc_object;
struct objc_class;
struct objc_selector;
struct objc_method;
struct objc_ivar;

using id = objc_object*;
using Class = objc_class*;
using SEL = const objc_selector*;
using Method = objc_method*;
using Ivar = objc_ivar*;
// Type-erased implementation; called only through the function type its
// encoding gives it (objc/passing.h).
using IMP = void (*)();
using BOOL = bool;
using NSInteger = long;
using NSUInteger = unsigned long;

inline constexpr std::nullptr_t nil = nullptr;
inline constexpr bool YES = true;
inline constexpr bool NO = false;

namespace objc::detail {
struct SideTable;
struct Cache;
struct ClassData;
}  // namespace objc::detail

// Every object starts with these fields. The C++ destructor is virtual so
// that the runtime can destroy any object through its base.
struct PV_EXPORT objc_object {
    objc_object() = default;
    objc_object(const objc_object&) = delete;
    objc_object& operator=(const objc_object&) = delete;
    virtual ~objc_object();

    std::atomic<Class> isa_{nullptr};
    // Strong references; the object dies when the last one is released.
    // Counts at or above kImmortalRefs mark objects that never die (classes,
    // constant strings).
    std::atomic<std::uint32_t> refs_{1};
    static constexpr std::uint32_t kImmortalRefs = 1u << 31;
    // Associated objects, created on first use.
    std::atomic<objc::detail::SideTable*> side_{nullptr};
};

// A class is an object too: its isa is its metaclass.
struct PV_EXPORT objc_class : objc_object {
    std::atomic<const objc::detail::Cache*> cache_;
    objc::detail::ClassData* data_ = nullptr;
    objc_class();
    ~objc_class() override;
};

// Selector: interned, compared by pointer.
struct PV_EXPORT objc_selector {
    const char* name;
};
