// Classes, methods and the method caches.
#include "internal.h"

#include <objc/exception.h>

#include <dlfcn.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <deque>
#include <functional>
#include <shared_mutex>
#include <unordered_set>

namespace objc::detail {
namespace {

// The shared empty table that every class starts with: one empty slot.
CacheEntry gEmptySlot;
const Cache gEmptyCache{0, 0, &gEmptySlot};

struct Registry {
    std::unordered_map<std::string, Class> classes;  // published, by name
    std::vector<std::unique_ptr<objc_class>> all;    // every class and metaclass
};

Registry& registry() {
    // Lives for the whole process: objects may be released from static
    // destructors of other images after this one has gone.
    static Registry* r = new Registry;
    return *r;
}

struct SelectorTable {
    std::shared_mutex lock;
    std::unordered_map<std::string_view, const objc_selector*> byName;
    std::deque<std::string> names;
    std::deque<objc_selector> selectors;
};

SelectorTable& selectorTable() {
    static SelectorTable* t = new SelectorTable;
    return *t;
}

void insertSlot(Cache& cache, SEL sel, Method m, IMP imp) {
    std::size_t i = cacheIndex(sel, cache.mask);
    while (cache.entries[i].sel.load(std::memory_order_relaxed) != nullptr) {
        i = (i + 1) & cache.mask;
    }
    CacheEntry& e = cache.entries[i];
    e.method = m;
    e.imp.store(imp, std::memory_order_relaxed);
    e.sel.store(sel, std::memory_order_release);
    ++cache.occupied;
}

void fillCacheLocked(Class cls, SEL sel, Method m, IMP imp) {
    ClassData& d = *cls->data_;
    const Cache* current = cls->cache_.load(std::memory_order_relaxed);
    const std::uint32_t capacity = current->mask + 1;
    const bool isEmptyTable = current == &gEmptyCache;
    if (!isEmptyTable && (current->occupied + 1) * 4 <= capacity * 3) {
        insertSlot(d.caches.back()->header, sel, m, imp);
        return;
    }
    const std::uint32_t newCapacity = isEmptyTable ? 8 : capacity * 2;
    auto storage = std::make_unique<CacheStorage>();
    storage->slots = std::make_unique<CacheEntry[]>(newCapacity);
    storage->header.mask = newCapacity - 1;
    storage->header.entries = storage->slots.get();
    if (!isEmptyTable) {
        for (std::uint32_t i = 0; i < capacity; ++i) {
            const CacheEntry& e = current->entries[i];
            const SEL s = e.sel.load(std::memory_order_relaxed);
            if (s != nullptr) insertSlot(storage->header, s, e.method, e.imp.load());
        }
    }
    insertSlot(storage->header, sel, m, imp);
    cls->cache_.store(&storage->header, std::memory_order_release);
    d.caches.push_back(std::move(storage));
}

template <class F>
void forEachSubclassLocked(Class cls, const F& f) {
    f(cls);
    for (Class sub : cls->data_->subclasses) forEachSubclassLocked(sub, f);
}

}  // namespace

std::mutex& runtimeLock() {
    static std::mutex* m = new std::mutex;
    return *m;
}

Class findClass(const std::string& name) {
    std::lock_guard lock(runtimeLock());
    auto& classes = registry().classes;
    const auto it = classes.find(name);
    return it == classes.end() ? nullptr : it->second;
}

Method findMethodLocked(Class cls, SEL sel) {
    for (Class c = cls; c != nullptr; c = c->data_->superclass) {
        const auto& methods = c->data_->methodsBySelector;
        const auto it = methods.find(sel);
        if (it != methods.end()) return it->second;
    }
    return nullptr;
}

// Adding a method can shadow one that a class or its subclasses had cached
// from higher up: those tables are dropped and refilled on demand.
void flushCachesLocked(Class cls) {
    forEachSubclassLocked(
        cls, [](Class c) { c->cache_.store(&gEmptyCache, std::memory_order_release); });
}

// A changed implementation is written into every slot that caches the method,
// so the very next send sees it, without dropping any table.
void updateCachedImpLocked(Method m) {
    const IMP imp = m->imp.load(std::memory_order_relaxed);
    forEachSubclassLocked(m->owner, [&](Class c) {
        const Cache* cache = c->cache_.load(std::memory_order_relaxed);
        if (cache == &gEmptyCache) return;
        for (std::uint32_t i = 0; i <= cache->mask; ++i) {
            CacheEntry& e = cache->entries[i];
            if (e.sel.load(std::memory_order_relaxed) != nullptr && e.method == m) {
                e.imp.store(imp, std::memory_order_release);
            }
        }
    });
}

IMP lookupAndCache(Class cls, SEL sel) {
    std::lock_guard lock(runtimeLock());
    const Method m = findMethodLocked(cls, sel);
    if (m == nullptr) return nullptr;
    const IMP imp = m->imp.load(std::memory_order_relaxed);
    // Another thread may have cached it meanwhile; a duplicate slot would
    // only waste space, so look first.
    if (cacheLookup(cls, sel) == nullptr) fillCacheLocked(cls, sel, m, imp);
    return imp;
}

Class createClass(const char* name, Class superclass, Allocator allocator) {
    std::lock_guard lock(runtimeLock());
    Registry& r = registry();
    if (r.classes.count(name) != 0) {
        raise(kInternalInconsistencyException, std::string("class defined twice: ") + name);
    }
    auto cls = std::make_unique<objc_class>();
    auto meta = std::make_unique<objc_class>();
    auto clsData = std::make_unique<ClassData>();
    auto metaData = std::make_unique<ClassData>();
    clsData->name = metaData->name = name;
    clsData->superclass = superclass;
    clsData->allocator = allocator != nullptr    ? allocator
                         : superclass != nullptr ? superclass->data_->allocator
                                                 : nullptr;
    metaData->isMeta = true;
    // The root metaclass inherits from the root class, so classes answer
    // the root's instance methods, as on the platform.
    metaData->superclass = superclass != nullptr ? superclass->isa_.load() : cls.get();
    // Metaclasses are instances of the root metaclass.
    Class rootMeta = meta.get();
    for (Class c = superclass; c != nullptr; c = c->data_->superclass) rootMeta = c->isa_.load();
    meta->isa_.store(rootMeta);
    cls->isa_.store(meta.get());
    cls->data_ = clsData.release();
    meta->data_ = metaData.release();
    if (superclass != nullptr) superclass->data_->subclasses.push_back(cls.get());
    meta->data_->superclass->data_->subclasses.push_back(meta.get());
    Class result = cls.get();
    r.all.push_back(std::move(cls));
    r.all.push_back(std::move(meta));
    return result;
}

Class classOfAnotherImage(const char* name, Allocator allocator) {
    Class first = nullptr;
    {
        std::lock_guard lock(runtimeLock());
        const auto it = registry().classes.find(name);
        if (it == registry().classes.end()) return nullptr;
        first = it->second;
    }
    // Each image has its own allocator for its C++ class; the same image
    // defining a name twice is a fault that createClass reports.
    Dl_info mine{}, theirs{};
    if (dladdr(reinterpret_cast<void*>(allocator), &mine) == 0 ||
        dladdr(reinterpret_cast<void*>(first->data_->allocator), &theirs) == 0 ||
        mine.dli_fbase == theirs.dli_fbase) {
        return nullptr;
    }
    std::fprintf(stderr, "objc: class %s is implemented in both %s and %s; the first is used.\n",
                 name, theirs.dli_fname, mine.dli_fname);
    return first;
}

void publishClass(Class cls) {
    std::lock_guard lock(runtimeLock());
    cls->data_->published = true;
    cls->isa_.load()->data_->published = true;
    registry().classes.emplace(cls->data_->name, cls);
}

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

objc_class::objc_class() : cache_(&gEmptyCache) {
    // Classes live for the whole process; reference counting leaves them alone.
    refs_.store(kImmortalRefs, std::memory_order_relaxed);
}

objc_class::~objc_class() {
    delete data_;
}

SEL sel_registerName(const char* name) {
    if (name == nullptr) return nullptr;
    SelectorTable& t = selectorTable();
    {
        std::shared_lock lock(t.lock);
        const auto it = t.byName.find(name);
        if (it != t.byName.end()) return it->second;
    }
    std::unique_lock lock(t.lock);
    const auto it = t.byName.find(name);
    if (it != t.byName.end()) return it->second;
    const std::string& stored = t.names.emplace_back(name);
    objc_selector& sel = t.selectors.emplace_back(objc_selector{stored.c_str()});
    t.byName.emplace(stored, &sel);
    return &sel;
}

const char* sel_getName(SEL sel) {
    return sel != nullptr ? sel->name : "<null selector>";
}

Class objc_getClass(const char* name) {
    return name != nullptr ? findClass(name) : nullptr;
}

Class objc_getMetaClass(const char* name) {
    const Class cls = objc_getClass(name);
    return cls != nullptr ? cls->isa_.load() : nullptr;
}

Class objc_allocateClassPair(Class superclass, const char* name, std::size_t /*extraBytes*/) {
    if (name == nullptr || objc_getClass(name) != nullptr) return nullptr;
    try {
        return createClass(name, superclass, nullptr);
    } catch (const objc::Exception&) {
        return nullptr;  // lost a race for the name
    }
}

void objc_registerClassPair(Class cls) {
    if (cls != nullptr) publishClass(cls);
}

const char* class_getName(Class cls) {
    return cls != nullptr ? cls->data_->name.c_str() : "nil";
}

// A superclass is fixed when the class is created, so no lock is needed.
Class class_getSuperclass(Class cls) {
    return cls != nullptr ? cls->data_->superclass : nullptr;
}

bool class_isMetaClass(Class cls) {
    return cls != nullptr && cls->data_->isMeta;
}

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

IMP class_getMethodImplementation(Class cls, SEL sel);  // in forwarding.cpp

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

Class object_getClass(id obj) {
    return obj != nullptr ? obj->isa_.load(std::memory_order_relaxed) : nullptr;
}

const char* object_getClassName(id obj) {
    return class_getName(object_getClass(obj));
}
