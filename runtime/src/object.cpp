// Object life: reference counting, autorelease pools, creation and disposal.
#include "internal.h"

#include <objc/exception.h>

namespace objc::detail {

void disposeObject(id obj) {
    objc_removeAssociatedObjects(obj);
    delete obj->side_.exchange(nullptr);  // the runtime's own allocation
    delete obj;                           // the virtual destructor frees the C++ class
}

namespace {

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

id class_createInstance(Class cls, std::size_t /*extraBytes*/) {
    if (cls == nullptr) return nullptr;
    const Allocator allocate = cls->data_->allocator;
    if (allocate == nullptr) {
        objc::raise(objc::exception_name::InvalidArgument,
                    std::string("class cannot be instantiated: ") + class_getName(cls));
    }
    return allocate(cls);
}
