#include "defaults_store.h"

#include <Foundation/NSDictionary.h>
#include <Foundation/NSKeyValueObserving.h>
#include <Foundation/NSNull.h>
#include <Foundation/NSNumber.h>

#include <algorithm>

namespace foundation::detail {
namespace {

// Identifies the current thread cheaply: the address of a thread-local.
std::uintptr_t currentThread() {
    static thread_local char marker;
    return reinterpret_cast<std::uintptr_t>(&marker);
}

// How many notifications this thread is inside; such a thread never waits
// for another thread's notification, so waits cannot form a cycle.
thread_local int notificationDepth = 0;

objc::Strong<NSDictionary> makeChange(NSUInteger options, id oldValue, id newValue) {
    std::vector<std::pair<id, id>> pairs;
    pairs.reserve(3);
    const auto kind = NSNumber::create(NSKeyValueChangeSetting);
    pairs.emplace_back(NSKeyValueChangeKindKey, kind.get());
    if ((options & NSKeyValueObservingOptionNew) != 0) {
        pairs.emplace_back(NSKeyValueChangeNewKey, newValue != nullptr ? newValue : NSNull::null());
    }
    if ((options & NSKeyValueObservingOptionOld) != 0) {
        pairs.emplace_back(NSKeyValueChangeOldKey, oldValue != nullptr ? oldValue : NSNull::null());
    }
    return NSDictionary::create(pairs);
}

}  // namespace

// Unlinks a delivery when it ends, also when an observer throws.
struct DefaultsStore::DeliveryScope {
    DefaultsStore& store;
    Delivery& delivery;
    DeliveryScope(DefaultsStore& s, Delivery& d) : store(s), delivery(d) { ++notificationDepth; }
    DeliveryScope(const DeliveryScope&) = delete;
    DeliveryScope& operator=(const DeliveryScope&) = delete;
    ~DeliveryScope() {
        --notificationDepth;
        std::lock_guard guard(store.lock_);
        store.unlinkLocked(delivery);
        if (store.waiters_ > 0) store.callFinished_.notify_all();
    }
};

void DefaultsStore::snapshotObserversLocked(KeyRef key, Delivery& delivery) {
    if (observers_.empty()) return;
    const auto* list = observers_.find(key);
    if (list == nullptr || list->empty()) return;
    delivery.targets.reserve(list->size());
    for (const Registration& r : *list) delivery.targets.push_back(Target{r});
    linkLocked(delivery);
}

void DefaultsStore::linkLocked(Delivery& delivery) {
    delivery.thread = currentThread();
    delivery.next = deliveries_;
    if (deliveries_ != nullptr) deliveries_->prev = &delivery;
    deliveries_ = &delivery;
}

void DefaultsStore::unlinkLocked(Delivery& delivery) {
    if (delivery.prev != nullptr) {
        delivery.prev->next = delivery.next;
    } else if (deliveries_ == &delivery) {
        deliveries_ = delivery.next;
    }
    if (delivery.next != nullptr) delivery.next->prev = delivery.prev;
    delivery.next = delivery.prev = nullptr;
}

bool DefaultsStore::busyElsewhereLocked(std::uint64_t serial) const {
    const std::uintptr_t me = currentThread();
    for (const Delivery* d = deliveries_; d != nullptr; d = d->next) {
        if (d->thread != me && d->calling != kNone &&
            d->targets[d->calling].registration.serial == serial) {
            return true;
        }
    }
    return false;
}

void DefaultsStore::set(StoredKey key, objc::Strong<objc_object> value) {
    Delivery delivery;
    objc::Strong<objc_object> oldEffective;
    objc::Strong<objc_object> newEffective;
    StoredValue replaced;                // released after the lock
    objc::Strong<NSString> observedKey;  // the key may move into the map
    {
        std::lock_guard guard(lock_);
        const KeyRef ref{key.string.get(), key.hash};
        snapshotObserversLocked(ref, delivery);
        const bool observed = !delivery.targets.empty();
        if (observed) {
            observedKey = key.string;
            oldEffective = objc::retained(effectiveLocked(ref));
        }
        ++generation_;
        if (std::uint64_t* change = unsaved_.find(ref)) {
            *change = generation_;
        } else {
            unsaved_.at(StoredKey{key.string, key.hash}) = generation_;
        }
        if (value) {
            // The table or `key` keeps ref's string alive.
            replaced = std::exchange(values_.at(std::move(key)), std::move(value));
        } else {
            replaced = values_.take(ref);
        }
        if (observed) newEffective = objc::retained(effectiveLocked(ref));
    }
    if (onChange_) onChange_();
    if (observedKey) deliver(delivery, observedKey.get(), oldEffective, newEffective);
}

void DefaultsStore::registerDefaults(const Entries& entries) {
    for (const auto& [string, value] : entries) {
        Delivery delivery;
        objc::Strong<objc_object> oldEffective;
        StoredValue replaced;
        bool changed = false;
        const KeyRef ref{string.get(), string->hash()};  // a message: not under the lock
        {
            std::lock_guard guard(lock_);
            const bool shadowed = values_.find(ref) != nullptr;
            if (!shadowed) {
                snapshotObserversLocked(ref, delivery);
                oldEffective = objc::retained(effectiveLocked(ref));
            }
            replaced = std::exchange(registered_.at(StoredKey{string, ref.hash}), value);
            changed = !shadowed;
        }
        if (changed && !delivery.targets.empty()) {
            deliver(delivery, string.get(), oldEffective, value.get());
        }
    }
}

void DefaultsStore::load(Entries entries) {
    KeyTable<StoredValue> fresh;
    fresh.reserve(entries.size());
    for (auto& [string, value] : entries) {
        const NSUInteger hash = string->hash();
        fresh.at(StoredKey{std::move(string), hash}) = std::move(value);
    }
    KeyTable<std::uint64_t> none;
    std::lock_guard guard(lock_);
    values_.swap(fresh);
    unsaved_.swap(none);
    ++generation_;
}

std::pair<Entries, std::uint64_t> DefaultsStore::snapshot() const {
    std::lock_guard guard(lock_);
    Entries entries;
    entries.reserve(values_.size());
    values_.forEach(
        [&](const auto& key, const StoredValue& value) { entries.emplace_back(key, value); });
    return {std::move(entries), generation_};
}

DefaultsStore::SaveState DefaultsStore::saveState() const {
    SaveState state;
    std::lock_guard guard(lock_);
    state.values.reserve(values_.size());
    values_.forEach(
        [&](const auto& key, const StoredValue& value) { state.values.emplace_back(key, value); });
    state.changes.reserve(unsaved_.size());
    unsaved_.forEachEntry([&](const auto& entry) {
        const StoredValue* value = values_.find(KeyRef{entry.key.get(), entry.hash});
        state.changes.emplace_back(entry.key, value != nullptr ? *value : StoredValue());
    });
    state.generation = generation_;
    return state;
}

void DefaultsStore::saved(std::uint64_t generation, const Entries& others) {
    // Hashes are messages: computed before the lock.
    std::vector<NSUInteger> hashes;
    hashes.reserve(others.size());
    for (const auto& entry : others) hashes.push_back(entry.first->hash());
    {
        std::lock_guard guard(lock_);
        if (!unsaved_.empty()) {
            KeyTable<std::uint64_t> later;
            unsaved_.forEachEntry([&](const auto& entry) {
                if (entry.value > generation)
                    later.at(StoredKey{entry.key, entry.hash}) = entry.value;
            });
            unsaved_.swap(later);
        }
    }
    for (std::size_t i = 0; i < others.size(); ++i) {
        const auto& [string, value] = others[i];
        const KeyRef ref{string.get(), hashes[i]};
        Delivery delivery;
        objc::Strong<objc_object> oldEffective;
        objc::Strong<objc_object> newEffective;
        StoredValue replaced;
        {
            std::lock_guard guard(lock_);
            if (unsaved_.find(ref) != nullptr) continue;  // ours wins: saved next time
            snapshotObserversLocked(ref, delivery);
            const bool observed = !delivery.targets.empty();
            if (observed) oldEffective = objc::retained(effectiveLocked(ref));
            if (value) {
                replaced = std::exchange(values_.at(StoredKey{string, ref.hash}), value);
            } else {
                replaced = values_.take(ref);
            }
            if (observed) newEffective = objc::retained(effectiveLocked(ref));
        }
        if (!delivery.targets.empty()) {
            deliver(delivery, string.get(), oldEffective, newEffective);
        }
    }
}

Entries DefaultsStore::effectiveEntries() const {
    std::lock_guard guard(lock_);
    Entries entries;
    entries.reserve(registered_.size() + values_.size());
    const auto add = [&](const auto& key, const StoredValue& value) {
        entries.emplace_back(key, value);
    };
    registered_.forEach(add);
    values_.forEach(add);
    return entries;
}

void DefaultsStore::addObserver(id observer, StoredKey key, NSUInteger options, void* context) {
    Delivery initial;
    objc::Strong<objc_object> current;
    const objc::Strong<NSString> keyString = key.string;
    const NSUInteger hash = key.hash;
    {
        std::lock_guard guard(lock_);
        const Registration registration{observer, options, context, ++nextSerial_};
        observers_.at(std::move(key)).push_back(registration);
        if ((options & NSKeyValueObservingOptionInitial) != 0) {
            initial.targets.push_back(Target{registration});
            linkLocked(initial);
            current = objc::retained(effectiveLocked(KeyRef{keyString.get(), hash}));
        }
    }
    if (!initial.targets.empty()) deliver(initial, keyString.get(), nullptr, current.get());
}

bool DefaultsStore::removeObserver(id observer, KeyRef key, bool matchContext, void* context) {
    std::unique_lock guard(lock_);
    auto* registrations = observers_.find(key);
    if (registrations == nullptr) return false;
    auto& list = *registrations;
    const auto found = std::find_if(list.rbegin(), list.rend(), [&](const Registration& r) {
        return r.observer == observer && (!matchContext || r.context == context);
    });
    if (found == list.rend()) return false;
    const std::uint64_t serial = found->serial;
    list.erase(std::next(found).base());
    // The list stays in the map with its capacity, so that observing the same
    // key again allocates nothing.
    if (deliveries_ == nullptr) return true;
    for (Delivery* d = deliveries_; d != nullptr; d = d->next) {
        for (Target& t : d->targets) {
            if (t.registration.serial == serial) t.cancelled = true;
        }
    }
    if (notificationDepth > 0) return true;
    ++waiters_;
    callFinished_.wait(guard, [&] { return !busyElsewhereLocked(serial); });
    --waiters_;
    return true;
}

void DefaultsStore::deliver(Delivery& delivery, NSString* key, id oldValue, id newValue) {
    const DeliveryScope scope(*this, delivery);
    objc::Strong<NSDictionary> changes[4];
    for (std::size_t i = 0; i < delivery.targets.size(); ++i) {
        Registration r{};
        {
            std::lock_guard guard(lock_);
            if (delivery.targets[i].cancelled) continue;
            delivery.calling = i;
            r = delivery.targets[i].registration;
        }
        // Marks the call finished, also when the observer throws.
        struct CallEnd {
            DefaultsStore& store;
            Delivery& delivery;
            ~CallEnd() {
                std::lock_guard guard(store.lock_);
                delivery.calling = kNone;
                if (store.waiters_ > 0) store.callFinished_.notify_all();
            }
        } const end{*this, delivery};
        auto& change = changes[r.options & 3];
        if (!change) change = makeChange(r.options, oldValue, newValue);
        objc::msgSend<void>(r.observer, observeValueSelector(), key, owner_, change.get(),
                            r.context);
    }
}

}  // namespace foundation::detail
