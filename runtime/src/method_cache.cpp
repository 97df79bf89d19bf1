// The per-class method caches: filling, growing, flushing and updating them.
#include "method_cache.h"

#include "internal.h"

namespace objc::detail {

// The shared empty table that every class starts with: one empty slot.
CacheEntry gEmptySlot;
const Cache gEmptyCache{0, 0, &gEmptySlot};

namespace {

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

}  // namespace objc::detail
