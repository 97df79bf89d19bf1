// Associated objects, kept in each object's side table.
#include "internal.h"

#include <objc/message.h>

#include <algorithm>

namespace objc::detail {
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

}  // namespace
}  // namespace objc::detail

using namespace objc::detail;

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
