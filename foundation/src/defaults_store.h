// The values and observers of one NSUserDefaults: a hash map keyed by
// NSString (using the string's cached hash), guarded by one mutex that is
// held only for map work, never while an observer runs or a file is written.
#pragma once

#include "key_table.h"

#include <objc/object.h>
#include <objc/string.h>

#include <condition_variable>
#include <cstdint>
#include <functional>
#include <mutex>
#include <utility>
#include <vector>

class NSDictionary;

namespace foundation::detail {

// A stored value: the store's reference to an immutable property list.
using StoredValue = objc::Strong<objc_object>;

using Entries = std::vector<std::pair<objc::Strong<NSString>, objc::Strong<objc_object>>>;

class DefaultsStore {
  public:
    // `owner` is the object observers are told about (not retained).
    explicit DefaultsStore(id owner) : owner_(owner) {}
    DefaultsStore(const DefaultsStore&) = delete;
    DefaultsStore& operator=(const DefaultsStore&) = delete;

    // Called after every change of the stored values (not of registered
    // ones), outside the lock; persistence schedules a write from it.
    void setChangeHandler(std::function<void()> handler) { onChange_ = std::move(handler); }

    // The value, else the registered default, retained for the caller; null
    // when neither exists. Inline: it is the hot path of every settings read.
    id copyValue(KeyRef key) const {
        std::lock_guard guard(lock_);
        return objc_retain(effectiveLocked(key));
    }

    // Stores (value null: removes) the value of the key, then tells the key's
    // observers. `key` and `value` must already be immutable copies.
    void set(StoredKey key, objc::Strong<objc_object> value);

    // Replaces registered defaults key by key; observers of keys whose
    // effective value changes are told.
    void registerDefaults(const Entries& entries);

    // Replaces every stored value at once, without notifications (loading).
    void load(Entries entries);

    // The stored values (without registered defaults) and the number of
    // changes so far, taken at one moment.
    std::pair<Entries, std::uint64_t> snapshot() const;

    // What a save needs, taken at one moment: every stored value, the keys
    // this process changed since its last save (value null: removed) and the
    // number of changes so far.
    struct SaveState {
        Entries values;
        Entries changes;
        std::uint64_t generation = 0;
    };
    SaveState saveState() const;
    // The changes up to `generation` are saved. `others` are values that
    // other processes saved meanwhile (null: removed): each is taken unless
    // this process changed its key since the save began, and observers are
    // told.
    void saved(std::uint64_t generation, const Entries& others);
    // Registered defaults, then stored values (which win).
    Entries effectiveEntries() const;

    void addObserver(id observer, StoredKey key, NSUInteger options, void* context);
    // Removes the most recent matching registration (any context when
    // matchContext is false); false when there was none. A registration that
    // another thread is notifying at this moment finishes first, so that the
    // caller may free the observer afterwards (unless the caller is itself
    // inside a notification, which must not wait).
    bool removeObserver(id observer, KeyRef key, bool matchContext, void* context);

  private:
    struct Registration {
        id observer;
        NSUInteger options;
        void* context;
        std::uint64_t serial;
    };
    struct Target {
        Registration registration;
        bool cancelled = false;
    };
    // One notification in progress: lives on the notifying thread's stack,
    // linked into deliveries_ while it runs.
    struct Delivery {
        std::vector<Target> targets;
        std::size_t calling = kNone;
        Delivery* next = nullptr;
        Delivery* prev = nullptr;
        std::uintptr_t thread = 0;
    };
    static constexpr std::size_t kNone = static_cast<std::size_t>(-1);
    struct DeliveryScope;

    const StoredValue* effectiveValueLocked(KeyRef key) const {
        if (const StoredValue* value = values_.find(key)) return value;
        return registered_.empty() ? nullptr : registered_.find(key);
    }
    id effectiveLocked(KeyRef key) const {
        const StoredValue* value = effectiveValueLocked(key);
        return value != nullptr ? value->get() : nullptr;
    }
    void snapshotObserversLocked(KeyRef key, Delivery& delivery);
    void linkLocked(Delivery& delivery);
    void unlinkLocked(Delivery& delivery);
    bool busyElsewhereLocked(std::uint64_t serial) const;
    // Tells every target of the delivery, one after the other.
    void deliver(Delivery& delivery, NSString* key, id oldValue, id newValue);

    id owner_;
    std::function<void()> onChange_;
    mutable std::mutex lock_;
    std::condition_variable callFinished_;
    KeyTable<StoredValue> values_;
    KeyTable<StoredValue> registered_;
    // Keys changed since the last load or save, with the generation of their
    // latest change: a save applies only these to what is on disk.
    KeyTable<std::uint64_t> unsaved_;
    KeyTable<std::vector<Registration>> observers_;
    Delivery* deliveries_ = nullptr;
    std::size_t waiters_ = 0;
    std::uint64_t generation_ = 0;
    std::uint64_t nextSerial_ = 0;
};

// The key of a string, with its hash, for lookups.
inline KeyRef keyRef(NSString* s) {
    return KeyRef{s, s->hash()};
}

}  // namespace foundation::detail
