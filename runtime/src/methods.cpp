// Methods: adding, replacing, exchanging and finding implementations.
#include "internal.h"

#include <algorithm>
#include <cstdlib>

namespace objc::detail {

Method findMethodLocked(Class cls, SEL sel) {
    for (Class c = cls; c != nullptr; c = c->data_->superclass) {
        const auto& methods = c->data_->methodsBySelector;
        const auto it = methods.find(sel);
        if (it != methods.end()) return it->second;
    }
    return nullptr;
}

}  // namespace objc::detail

using namespace objc::detail;

Method class_getInstanceMethod(Class cls, SEL sel) {
    if (cls == nullptr || sel == nullptr) return nullptr;
    std::lock_guard lock(runtimeLock());
    return findMethodLocked(cls, sel);
}

Method class_getClassMethod(Class cls, SEL sel) {
    if (cls == nullptr) return nullptr;
    return class_getInstanceMethod(cls->isa_.load(), sel);
}

namespace {

struct AddResult {
    bool added;
    IMP previous;  // the implementation before the call, when the method existed
};

// One step under the lock, so that a method added by another thread between
// a lookup and an add can never make a replacement vanish.
AddResult addMethod(Class cls, SEL sel, IMP imp, const char* types, bool replace) {
    std::lock_guard lock(runtimeLock());
    ClassData& d = *cls->data_;
    if (const auto it = d.methodsBySelector.find(sel); it != d.methodsBySelector.end()) {
        const Method m = it->second;
        if (!replace) return {false, m->imp.load(std::memory_order_relaxed)};
        const IMP old = m->imp.exchange(imp);
        updateCachedImpLocked(m);
        return {false, old};
    }
    auto m = std::make_unique<objc_method>();
    m->name = sel;
    m->imp.store(imp, std::memory_order_relaxed);
    m->types = types != nullptr ? types : "";
    m->owner = cls;
    d.methodsBySelector.emplace(sel, m.get());
    d.methods.push_back(std::move(m));
    flushCachesLocked(cls);
    return {true, nullptr};
}

}  // namespace

bool class_addMethod(Class cls, SEL sel, IMP imp, const char* types) {
    if (cls == nullptr || sel == nullptr) return false;
    return addMethod(cls, sel, imp, types, false).added;
}

IMP class_replaceMethod(Class cls, SEL sel, IMP imp, const char* types) {
    if (cls == nullptr || sel == nullptr) return nullptr;
    return addMethod(cls, sel, imp, types, true).previous;
}

bool class_respondsToSelector(Class cls, SEL sel) {
    return class_getInstanceMethod(cls, sel) != nullptr;
}

Method* class_copyMethodList(Class cls, unsigned int* outCount) {
    if (outCount != nullptr) *outCount = 0;
    if (cls == nullptr) return nullptr;
    std::lock_guard lock(runtimeLock());
    const auto& methods = cls->data_->methods;
    // The caller frees the list with free(), as on the platform.
    auto* list = static_cast<Method*>(std::calloc(methods.size() + 1, sizeof(Method)));
    if (list == nullptr) return nullptr;
    std::transform(methods.begin(), methods.end(), list, [](const auto& m) { return m.get(); });
    if (outCount != nullptr) *outCount = static_cast<unsigned int>(methods.size());
    return list;
}

SEL method_getName(Method m) {
    return m != nullptr ? m->name : nullptr;
}

IMP method_getImplementation(Method m) {
    return m != nullptr ? m->imp.load(std::memory_order_acquire) : nullptr;
}

IMP method_setImplementation(Method m, IMP imp) {
    if (m == nullptr || imp == nullptr) return nullptr;
    std::lock_guard lock(runtimeLock());
    const IMP old = m->imp.exchange(imp);
    updateCachedImpLocked(m);
    return old;
}

void method_exchangeImplementations(Method m1, Method m2) {
    if (m1 == nullptr || m2 == nullptr) return;
    std::lock_guard lock(runtimeLock());
    const IMP i1 = m1->imp.load();
    m1->imp.store(m2->imp.load());
    m2->imp.store(i1);
    updateCachedImpLocked(m1);
    updateCachedImpLocked(m2);
}

const char* method_getTypeEncoding(Method m) {
    return m != nullptr ? m->types.c_str() : nullptr;
}
