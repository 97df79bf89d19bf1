// Instance variables: their descriptions and object access through them.
#include "internal.h"

namespace objc::detail {

void addIvar(Class cls, const char* name, const char* types, IvarAccess access) {
    std::lock_guard lock(runtimeLock());
    auto ivar = std::make_unique<objc_ivar>();
    ivar->name = name;
    ivar->types = types;
    ivar->access = access;
    cls->data_->ivars.push_back(std::move(ivar));
}

}  // namespace objc::detail

using namespace objc::detail;

Ivar class_getInstanceVariable(Class cls, const char* name) {
    if (name == nullptr) return nullptr;
    std::lock_guard lock(runtimeLock());
    for (Class c = cls; c != nullptr; c = c->data_->superclass) {
        for (const auto& ivar : c->data_->ivars) {
            if (ivar->name == name) return ivar.get();
        }
    }
    return nullptr;
}

const char* ivar_getName(Ivar v) {
    return v != nullptr ? v->name.c_str() : nullptr;
}
const char* ivar_getTypeEncoding(Ivar v) {
    return v != nullptr ? v->types.c_str() : nullptr;
}

id object_getIvar(id obj, Ivar v) {
    if (obj == nullptr || v == nullptr || v->access.readObject == nullptr) return nullptr;
    return v->access.readObject(v->access.address(obj));
}

void object_setIvar(id obj, Ivar v, id value) {
    if (obj == nullptr || v == nullptr || v->access.writeObject == nullptr) return;
    v->access.writeObject(v->access.address(obj), value);
}
