// The runtime's own structures; not visible to its users.
#pragma once

#include <objc/class_builder.h>
#include <objc/runtime.h>

#include "method_cache.h"

#include <memory>
#include <mutex>
#include <string>
#include <unordered_map>
#include <vector>

struct objc_method {
    SEL name = nullptr;
    std::atomic<IMP> imp{nullptr};
    std::string types;
    Class owner = nullptr;
};

struct objc_ivar {
    std::string name;
    std::string types;
    objc::detail::IvarAccess access{};
};

struct objc_property {
    std::string name;
    std::string attributes;  // "T@?,C,N": each attribute's name then its value
};

namespace objc::detail {

struct ClassData {
    std::string name;
    Class superclass = nullptr;
    bool isMeta = false;
    bool published = false;
    bool loaded = false;
    Allocator allocator = nullptr;
    std::vector<std::unique_ptr<objc_method>> methods;  // in order of addition
    std::unordered_map<SEL, Method> methodsBySelector;
    std::vector<std::unique_ptr<objc_ivar>> ivars;
    std::vector<std::unique_ptr<objc_property>> properties;  // in order of addition
    std::vector<Class> subclasses;
    std::vector<std::unique_ptr<CacheStorage>> caches;  // the last one is current
};

// Guards every change of classes, methods and caches, and the slow lookups.
// The fast path of a send takes no lock.
std::mutex& runtimeLock();

// The registry of published classes by name.
Class findClass(const std::string& name);

// Must be called with runtimeLock() held.
Method findMethodLocked(Class cls, SEL sel);

// The per-object side table.
struct Association {
    const void* key;
    id value;
    objc_AssociationPolicy policy;
};
struct SideTable {
    std::mutex lock;
    std::vector<Association> associations;
};

// Releases associated objects and destroys the C++ object.
void disposeObject(id obj);

[[noreturn]] void unrecognizedSelector(id self, SEL sel);

}  // namespace objc::detail

namespace objc::detail {
// Adds valueForKey:, setValue:forKey: and their undefined-key fallbacks.
void defineKeyValueCoding(Class rootClass);
}  // namespace objc::detail
