// Object life: reference counting, autorelease pools, associated objects.
#include "internal.h"

#include <objc/exception.h>

#include <algorithm>

namespace objc::detail {

void disposeObject(id obj) {
    objc_removeAssociatedObjects(obj);
    delete obj->side_.exchange(nullptr);  // the runtime's own allocation
    delete obj;                           // the virtual destructor frees the C++ class
}

namespace {

SideTable& sideTable(id obj) {
    SideTable* table = obj->side_.load(std::memory_order_acquire);
    if (table != nullptr) return *table;
    auto fresh = std::make_unique<SideTable>();
    if (obj->side_.compare_exchange_strong(table, fresh.get(), std::memory_order_acq_rel)) {
        return *fresh.release();
    }
    return *table;  // another thread won; ours is dropped
}

bool isRetaining(objc_AssociationPolicy policy) {
    return policy == OBJC_ASSOCIATION_RETAIN || policy == OBJC_ASSOCIATION_RETAIN_NONATOMIC ||
           policy == OBJC_ASSOCIATION_COPY || policy == OBJC_ASSOCIATION_COPY_NONATOMIC;
}

bool isCopying(objc_AssociationPolicy policy) {
    return policy == OBJC_ASSOCIATION_COPY || policy == OBJC_ASSOCIATION_COPY_NONATOMIC;
}

// Objects autoreleased on this thread, oldest first. Whatever is left when
// the thread ends is released then, so a thread without a pool leaks nothing.
struct PoolStack {
    std::vector<id> objects;
    ~PoolStack() {
        while (!objects.empty()) {
            const id obj = objects.back();
            objects.pop_back();
            objc_release(obj);
        }
    }
};

PoolStack& poolStack() {
    // Initial-exec: the runtime is loaded with the program, and every
    // autorelease reaches this variable.
    [[gnu::tls_model("initial-exec")]] thread_local PoolStack stack;
    return stack;
}

}  // namespace
}  // namespace objc::detail

using namespace objc::detail;

objc_object::~objc_object() = default;

id objc_retain(id obj) {
    if (obj == nullptr) return nullptr;
    if (obj->refs_.load(std::memory_order_relaxed) >= objc_object::kImmortalRefs) return obj;
    obj->refs_.fetch_add(1, std::memory_order_relaxed);
    return obj;
}

void objc_release(id obj) {
    if (obj == nullptr) return;
    if (obj->refs_.load(std::memory_order_relaxed) >= objc_object::kImmortalRefs) return;
    if (obj->refs_.fetch_sub(1, std::memory_order_acq_rel) == 1) {
        objc::msgSend<void>(obj, objc::sel<"dealloc">());
    }
}

id objc_autorelease(id obj) {
    // An immortal object's release would do nothing: keep it out of the pool.
    if (obj != nullptr && obj->refs_.load(std::memory_order_relaxed) < objc_object::kImmortalRefs) {
        poolStack().objects.push_back(obj);
    }
    return obj;
}

std::uint32_t objc_retainCount(id obj) {
    return obj != nullptr ? obj->refs_.load(std::memory_order_relaxed) : 0;
}

void* objc_autoreleasePoolPush() {
    // The token is the depth of the stack, offset by one so it is never null.
    return reinterpret_cast<void*>(poolStack().objects.size() + 1);
}

void objc_autoreleasePoolPop(void* token) {
    const std::size_t depth = reinterpret_cast<std::size_t>(token) - 1;
    auto& objects = poolStack().objects;
    // A release may autorelease more objects; they belong to this pool too.
    while (objects.size() > depth) {
        const id obj = objects.back();
        objects.pop_back();
        objc_release(obj);
    }
}

void objc_setAssociatedObject(id object, const void* key, id value, objc_AssociationPolicy policy) {
    if (object == nullptr || key == nullptr) return;
    if (value != nullptr) {
        if (isCopying(policy)) {
            value = objc::msgSend<id>(value, objc::sel<"copy">());
        } else if (isRetaining(policy)) {
            objc_retain(value);
        }
    }
    Association old{};
    {
        SideTable& table = sideTable(object);
        std::lock_guard lock(table.lock);
        auto& list = table.associations;
        const auto it = std::find_if(list.begin(), list.end(),
                                     [&](const Association& a) { return a.key == key; });
        if (it != list.end()) {
            old = *it;
            if (value != nullptr) {
                *it = Association{key, value, policy};
            } else {
                list.erase(it);
            }
        } else if (value != nullptr) {
            list.push_back(Association{key, value, policy});
        }
    }
    // Released outside the lock: a dealloc may touch this object's table.
    if (old.value != nullptr && isRetaining(old.policy)) objc_release(old.value);
}

id objc_getAssociatedObject(id object, const void* key) {
    if (object == nullptr) return nullptr;
    SideTable* table = object->side_.load(std::memory_order_acquire);
    if (table == nullptr) return nullptr;
    std::lock_guard lock(table->lock);
    for (const Association& a : table->associations) {
        if (a.key == key) return a.value;
    }
    return nullptr;
}

void objc_removeAssociatedObjects(id object) {
    if (object == nullptr) return;
    SideTable* table = object->side_.load(std::memory_order_acquire);
    if (table == nullptr) return;
    std::vector<Association> removed;
    {
        std::lock_guard lock(table->lock);
        removed.swap(table->associations);
    }
    for (const Association& a : removed) {
        if (isRetaining(a.policy)) objc_release(a.value);
    }
}

id class_createInstance(Class cls, std::size_t /*extraBytes*/) {
    if (cls == nullptr) return nullptr;
    const Allocator allocate = cls->data_->allocator;
    if (allocate == nullptr) {
        objc::raise(objc::kInvalidArgumentException,
                    std::string("class cannot be instantiated: ") + class_getName(cls));
    }
    return allocate(cls);
}
