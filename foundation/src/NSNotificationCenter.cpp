#include <Foundation/NSNotificationCenter.h>

#include <objc/exception.h>
#include <objc/image.h>

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <vector>

using ObserverBlock = NSNotificationCenter::ObserverBlock;

struct NSNotificationCenter::Registry {
    struct Entry {
        id observer = nullptr;  // not retained; for a block observer, its token
        SEL selector = nullptr;
        objc::Strong<ObserverBlock> block;
        objc::Strong<objc_object> token;  // keeps a block observer's token alive
        objc::Strong<objc_object> queue;
        objc::Strong<NSString> name;  // nil: every name
        id object = nullptr;          // nil: any sender; not retained
        std::atomic<bool> removed{false};

        bool matches(NSString* postedName, id sender) const {
            if (object != nullptr && object != sender) return false;
            return !name || (postedName != nullptr && name->units() == postedName->units());
        }
    };
    using Entries = std::vector<std::shared_ptr<Entry>>;

    void add(std::shared_ptr<Entry> entry) {
        std::lock_guard guard(lock);
        entries.push_back(std::move(entry));
    }

    // Takes out the matching entries; the caller drops them after the lock
    // is released, since dropping may release the last reference to a token.
    template <class Predicate>
    Entries removeIf(Predicate&& pred) {
        Entries removed;
        std::lock_guard guard(lock);
        const auto keep = std::stable_partition(entries.begin(), entries.end(),
                                                [&](const auto& e) { return !pred(*e); });
        for (auto it = keep; it != entries.end(); ++it) {
            (*it)->removed.store(true, std::memory_order_release);
            removed.push_back(std::move(*it));
        }
        entries.erase(keep, entries.end());
        return removed;
    }

    struct Target {
        std::shared_ptr<Entry> entry;
        objc::Strong<objc_object> observer;  // held for the length of the delivery
    };

    // The entries a post reaches, with their observers retained. A selector
    // observer whose last reference is gone is dying: its sentinel waits for
    // this lock to remove it, so its memory is still there to look at, and
    // it is skipped.
    std::vector<Target> matching(NSString* name, id sender) {
        std::vector<Target> found;
        std::lock_guard guard(lock);
        for (const auto& e : entries) {
            if (!e->matches(name, sender)) continue;
            if (!tryRetain(e->observer)) continue;
            found.push_back(Target{e, objc::adopt(e->observer)});
        }
        return found;
    }

    // Retains unless the object is already deallocating.
    static bool tryRetain(id obj) {
        std::uint32_t refs = obj->refs_.load(std::memory_order_relaxed);
        for (;;) {
            if (refs == 0) return false;
            if (refs >= objc_object::kImmortalRefs) return true;  // releasing it is a no-op
            if (obj->refs_.compare_exchange_weak(refs, refs + 1, std::memory_order_relaxed)) {
                return true;
            }
        }
    }

    std::mutex lock;
    Entries entries;
};

namespace {

// What addObserverForName:object:queue:usingBlock: answers.
class NotificationObserver : public NSObject {
    OBJC_CLASS(NotificationObserver)
};

// Attached to a selector observer; destroyed with it, it removes the
// observer's registrations so that no post reaches a dead object.
class ObserverSentinel : public NSObject {
    OBJC_CLASS(ObserverSentinel)

    ~ObserverSentinel() override {
        // Also destroyed when replaced while the observer lives: only a dead
        // observer (no references left) is forgotten.
        if (observer == nullptr || observer->refs_.load(std::memory_order_acquire) != 0) return;
        if (const auto registry = center.lock()) {
            const auto removed =
                registry->removeIf([this](const auto& e) { return e.observer == observer; });
        }
    }

    std::weak_ptr<NSNotificationCenter::Registry> center;
    id observer = nullptr;
};

void requireArgument(bool ok, const char* message) {
    if (!ok) objc::raise(objc::exception_name::InvalidArgument, message);
}

objc::Strong<NSString> copiedName(NSString* name) {
    return objc::adopt(static_cast<NSString*>(objc::msgSend<id>(name, objc::sel<"copy">())));
}

}  // namespace

OBJC_DEFINE_CLASS(NotificationObserver, NSObject, "__NSObserver")
OBJC_DEFINE_CLASS(ObserverSentinel, NSObject, "__NSObserverSentinel")
OBJC_DEFINE_CLASS(NSNotificationCenter, NSObject, "NSNotificationCenter")
OBJC_REGISTER_CLASS(NSNotificationCenter)

void NotificationObserver::objcDefine(objc::ClassBuilder<NotificationObserver>&) {}
void ObserverSentinel::objcDefine(objc::ClassBuilder<ObserverSentinel>&) {}

void NSNotificationCenter::objcDefine(objc::ClassBuilder<NSNotificationCenter>& b) {
    b.classMethod<&NSNotificationCenter::imp_defaultCenter>("defaultCenter")
        .method<&NSNotificationCenter::imp_addObserverSelectorNameObject>(
            "addObserver:selector:name:object:")
        .method<&NSNotificationCenter::imp_addObserverForNameObjectQueueUsingBlock>(
            "addObserverForName:object:queue:usingBlock:")
        .method<&NSNotificationCenter::imp_removeObserver>("removeObserver:")
        .method<&NSNotificationCenter::imp_removeObserverNameObject>("removeObserver:name:object:")
        .method<&NSNotificationCenter::imp_postNotification>("postNotification:")
        .method<&NSNotificationCenter::imp_postNotificationNameObject>(
            "postNotificationName:object:")
        .method<&NSNotificationCenter::imp_postNotificationNameObjectUserInfo>(
            "postNotificationName:object:userInfo:");
}

NSNotificationCenter::NSNotificationCenter() : registry_(std::make_shared<Registry>()) {}
NSNotificationCenter::~NSNotificationCenter() = default;

NSNotificationCenter* NSNotificationCenter::imp_defaultCenter(Class) {
    // Lives for the process.
    static NSNotificationCenter* const center = objc::make<NSNotificationCenter>().leak();
    return center;
}

void NSNotificationCenter::imp_addObserverSelectorNameObject(id observer, SEL selector,
                                                             NSString* name, id object) {
    requireArgument(observer != nullptr, "addObserver:selector:name:object: needs an observer");
    requireArgument(selector != nullptr, "addObserver:selector:name:object: needs a selector");
    auto entry = std::make_shared<Registry::Entry>();
    entry->observer = observer;
    entry->selector = selector;
    entry->name = copiedName(name);
    entry->object = object;

    std::lock_guard guard(registry_->lock);
    // Under the lock, so that one observer never gets two sentinels.
    // Keyed by the registry's address, which a later center may reuse.
    const void* key = registry_.get();
    auto* existing = static_cast<ObserverSentinel*>(objc_getAssociatedObject(observer, key));
    if (existing == nullptr || existing->center.lock() != registry_) {
        auto sentinel = objc::make<ObserverSentinel>();
        sentinel->center = registry_;
        sentinel->observer = observer;
        objc_setAssociatedObject(observer, key, sentinel.get(), OBJC_ASSOCIATION_RETAIN);
    }
    registry_->entries.push_back(std::move(entry));
}

id NSNotificationCenter::imp_addObserverForNameObjectQueueUsingBlock(NSString* name, id object,
                                                                     id queue,
                                                                     ObserverBlock* block) {
    requireArgument(block != nullptr, "addObserverForName:object:queue:usingBlock: needs a block");
    auto token = objc::make<NotificationObserver>();
    auto entry = std::make_shared<Registry::Entry>();
    entry->observer = token.get();
    entry->block = objc::retained(block);
    entry->token = token;
    entry->queue = objc::retained(queue);
    entry->name = copiedName(name);
    entry->object = object;
    registry_->add(std::move(entry));
    return objc::autorelease(token.leak());
}

void NSNotificationCenter::imp_removeObserver(id observer) {
    if (observer == nullptr) return;
    const auto removed =
        registry_->removeIf([observer](const auto& e) { return e.observer == observer; });
}

void NSNotificationCenter::imp_removeObserverNameObject(id observer, NSString* name, id object) {
    if (observer == nullptr) return;
    const auto removed = registry_->removeIf([&](const auto& e) {
        if (e.observer != observer) return false;
        if (object != nullptr && e.object != object) return false;
        return name == nullptr || (e.name && e.name->units() == name->units());
    });
}

void NSNotificationCenter::imp_postNotification(NSNotification* notification) {
    requireArgument(notification != nullptr, "postNotification: needs a notification");
    const objc::Strong<NSNotification> keep = objc::retained(notification);
    NSString* const name = notification->name();
    const auto targets = registry_->matching(name, notification->object());
    for (const auto& [entry, observer] : targets) {
        // Removed by an observer called before it in this post.
        if (entry->removed.load(std::memory_order_acquire)) continue;
        if (!entry->block) {
            objc::msgSend<void>(observer.get(), entry->selector, notification);
        } else if (!entry->queue) {
            (*entry->block)(notification);
        } else {
            auto operation =
                objc::makeBlock<void()>([block = entry->block, keep] { (*block)(keep.get()); });
            objc::msgSend<void>(entry->queue.get(), objc::sel<"addOperationWithBlock:">(),
                                operation.get());
        }
    }
}

void NSNotificationCenter::imp_postNotificationNameObject(NSString* name, id object) {
    imp_postNotificationNameObjectUserInfo(name, object, nullptr);
}

void NSNotificationCenter::imp_postNotificationNameObjectUserInfo(NSString* name, id object,
                                                                  NSDictionary* userInfo) {
    requireArgument(name != nullptr, "postNotificationName:object: needs a name");
    postNotification(NSNotification::create(name, object, userInfo).get());
}
