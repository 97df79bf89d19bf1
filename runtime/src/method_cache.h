// The per-class method caches.
//
// Concurrency: a send reads its class's current table without any lock; every
// change happens under runtimeLock(). That is safe because of three rules:
// - A reader finds a slot by its selector, stored last with release order, so
//   a reader that sees the selector also sees the slot's method and
//   implementation. Slots are never reused: once filled, a slot keeps its
//   selector and method for the life of the table; only its implementation is
//   rewritten in place when the method's implementation changes.
// - Filling an empty slot is the only other change to a live table. A table
//   that must grow, or that a new method makes stale, is never cleared: the
//   class is pointed at a new copy (or back at the shared empty table).
// - A replaced table is kept, owned by its class for the life of the process,
//   since a reader may still be probing it; tables are never freed. Only the
//   current tables get implementation updates: a reader still in a replaced
//   one may call the previous implementation once, as it would had it read
//   the slot a moment earlier.
#pragma once

#include <objc/message.h>

#include <memory>

namespace objc::detail {

// A cache table with its slots.
struct CacheStorage {
    Cache header;
    std::unique_ptr<CacheEntry[]> slots;
};

// The table every class starts with, and the one a flush points it back to.
extern const Cache gEmptyCache;

// Must be called with runtimeLock() held.
void flushCachesLocked(Class cls);
void updateCachedImpLocked(Method m);

}  // namespace objc::detail
