// Key-value observing of user defaults, also from inside a notification and across threads.
#include <gtest/gtest.h>

#include <Foundation/NSDictionary.h>
#include <Foundation/NSNull.h>
#include <Foundation/NSNumber.h>
#include <Foundation/NSUserDefaults.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

#include "foundation_helpers.h"

namespace {

using namespace testsupport;

// Records what it is told; an optional action runs inside each notification.
class DefaultsObserver : public NSObject {
    OBJC_CLASS(DefaultsObserver)

    struct Note {
        std::string key;
        objc::Strong<NSDictionary> change;
        id object;
        void* context;
    };

    std::vector<Note> notes() {
        std::lock_guard guard(lock_);
        return notes_;
    }
    std::size_t count() const { return count_.load(); }
    std::function<void(NSString* key, NSDictionary* change)> action;

  private:
    void imp_observe(NSString* keyPath, id object, NSDictionary* change, void* context) {
        {
            std::lock_guard guard(lock_);
            notes_.push_back(Note{keyPath->utf8(), objc::retained(change), object, context});
        }
        ++count_;
        if (action) action(keyPath, change);
    }

    std::mutex lock_;
    std::vector<Note> notes_;
    std::atomic<std::size_t> count_{0};
};

}  // namespace

OBJC_DEFINE_CLASS(DefaultsObserver, NSObject, "DefaultsObserver")
void DefaultsObserver::objcDefine(objc::ClassBuilder<DefaultsObserver>& b) {
    b.method<&DefaultsObserver::imp_observe>("observeValueForKeyPath:ofObject:change:context:");
}

namespace {

constexpr auto kNew = NSKeyValueObservingOptionNew;
constexpr auto kOld = NSKeyValueObservingOptionOld;
constexpr NSKeyValueObservingOptions kNone{};

id changeValue(const DefaultsObserver::Note& note, NSString* key) {
    return note.change->objectForKey(key);
}

class DefaultsObserving : public ::testing::Test {
  protected:
    objc::AutoreleasePool pool;
    const objc::Strong<NSUserDefaults> defaults = NSUserDefaults::create("");
    const objc::Strong<DefaultsObserver> observer = objc::make<DefaultsObserver>();
};

TEST_F(DefaultsObserving, ObserversGetNewValuesAndNullOnRemoval) {
    int context = 0;
    defaults->addObserver(observer, S("volume"), kNew | kOld, &context);
    defaults->setIntegerForKey(3, S("volume"));
    defaults->setObjectForKey(NSNumber::create(4), S("volume"));
    defaults->removeObjectForKey(S("volume"));
    defaults->setObjectForKey(S("x"), S("volume"));
    defaults->setObjectForKey(nullptr, S("volume"));
    const auto notes = observer->notes();
    ASSERT_EQ(notes.size(), 5u);
    for (const auto& note : notes) {
        EXPECT_EQ(note.key, "volume");
        EXPECT_EQ(note.object, defaults.get());
        EXPECT_EQ(note.context, &context);
        EXPECT_TRUE(NSNumber::create(1)->isEqual(changeValue(note, NSKeyValueChangeKindKey)));
    }
    EXPECT_TRUE(NSNumber::create(3)->isEqual(changeValue(notes[0], NSKeyValueChangeNewKey)));
    EXPECT_EQ(changeValue(notes[0], NSKeyValueChangeOldKey), NSNull::null());
    EXPECT_TRUE(NSNumber::create(4)->isEqual(changeValue(notes[1], NSKeyValueChangeNewKey)));
    EXPECT_TRUE(NSNumber::create(3)->isEqual(changeValue(notes[1], NSKeyValueChangeOldKey)));
    EXPECT_EQ(changeValue(notes[2], NSKeyValueChangeNewKey), NSNull::null());
    EXPECT_TRUE(NSNumber::create(4)->isEqual(changeValue(notes[2], NSKeyValueChangeOldKey)));
    EXPECT_EQ(changeValue(notes[4], NSKeyValueChangeNewKey), NSNull::null());
    defaults->removeObserver(observer, S("volume"));
}

TEST_F(DefaultsObserving, OnlyObserversOfAChangedKeyAreTold) {
    auto other = objc::make<DefaultsObserver>();
    defaults->addObserver(observer, S("alpha"), kNew, nullptr);
    defaults->addObserver(other, S("beta"), kNew, nullptr);
    defaults->setObjectForKey(S("1"), S("alpha"));
    defaults->setObjectForKey(S("2"), S("gamma"));
    defaults->setDoubleForKey(1.0, S("beta"));
    EXPECT_EQ(observer->count(), 1u);
    EXPECT_EQ(other->count(), 1u);
    // A refused value is no change.
    EXPECT_THROW(defaults->setObjectForKey(objc::make<NSObject>(), S("alpha")), objc::Exception);
    EXPECT_EQ(observer->count(), 1u);
    // Registering a default tells observers of keys without values only.
    defaults->addObserver(observer, S("unset"), kNew, nullptr);
    defaults->registerDefaults(
        NSDictionary::create({{S("alpha"), S("default")}, {S("unset"), S("default")}}));
    ASSERT_EQ(observer->count(), 2u);
    EXPECT_EQ(observer->notes()[1].key, "unset");
    // Removing the value of a key with a default: the key now answers the default.
    defaults->removeObjectForKey(S("alpha"));
    ASSERT_EQ(observer->count(), 3u);
    EXPECT_TRUE(S("default")->isEqual(changeValue(observer->notes()[2], NSKeyValueChangeNewKey)));
    defaults->removeObserver(observer, S("alpha"));
    defaults->removeObserver(observer, S("unset"));
    defaults->removeObserver(other, S("beta"));
}

TEST_F(DefaultsObserving, ObserversSeeTheStoreUpdatedAndMayWriteItOrChangeTheObservers) {
    auto mirrorObserver = objc::make<DefaultsObserver>();
    std::string seen;
    observer->action = [&](NSString*, NSDictionary*) {
        seen = defaults->stringForKey(S("source"))->utf8();
        // Writing from inside a notification: no deadlock, observers of that key are told.
        defaults->setObjectForKey(defaults->objectForKey(S("source")), S("mirror"));
    };
    defaults->addObserver(observer, S("source"), kNone, nullptr);
    defaults->addObserver(mirrorObserver, S("mirror"), kNew, nullptr);
    defaults->setObjectForKey(S("value"), S("source"));
    EXPECT_EQ(seen, "value");
    EXPECT_TRUE(S("value")->isEqual(defaults->objectForKey(S("mirror"))));
    EXPECT_EQ(mirrorObserver->count(), 1u);
    defaults->removeObserver(observer, S("source"));
    defaults->removeObserver(mirrorObserver, S("mirror"));

    // They may remove themselves or others, or add observers, while being told.
    auto selfRemover = objc::make<DefaultsObserver>();
    auto victim = objc::make<DefaultsObserver>();
    auto latecomer = objc::make<DefaultsObserver>();
    auto adder = objc::make<DefaultsObserver>();
    selfRemover->action = [&](NSString* key, NSDictionary*) {
        defaults->removeObserver(selfRemover, key);
        defaults->removeObserver(victim, key);  // registered after us: not told any more
    };
    bool added = false;
    adder->action = [&](NSString* key, NSDictionary*) {
        if (!added) defaults->addObserver(latecomer, key, kNone, nullptr);
        added = true;
    };
    defaults->addObserver(selfRemover, S("k"), kNone, nullptr);
    defaults->addObserver(victim, S("k"), kNone, nullptr);
    defaults->addObserver(adder, S("k"), kNone, nullptr);
    defaults->setIntegerForKey(1, S("k"));
    EXPECT_EQ(selfRemover->count(), 1u);
    EXPECT_EQ(victim->count(), 0u);
    EXPECT_EQ(adder->count(), 1u);
    EXPECT_EQ(latecomer->count(), 0u);  // joined during this change: told from the next one
    defaults->setIntegerForKey(2, S("k"));
    EXPECT_EQ(selfRemover->count(), 1u);
    EXPECT_EQ(adder->count(), 2u);
    EXPECT_EQ(latecomer->count(), 1u);
    defaults->removeObserver(adder, S("k"));
    defaults->removeObserver(latecomer, S("k"));

    // One that throws leaves the defaults working.
    auto thrower = objc::make<DefaultsObserver>();
    thrower->action = [](NSString*, NSDictionary*) {
        objc::raise(objc::exception_name::InternalInconsistency, "observer failed");
    };
    defaults->addObserver(thrower, S("t"), kNone, nullptr);
    EXPECT_THROW(defaults->setIntegerForKey(1, S("t")), objc::Exception);
    EXPECT_EQ(defaults->integerForKey(S("t")), 1);  // the change itself happened
    defaults->removeObserver(thrower, S("t"));
    defaults->setIntegerForKey(2, S("t"));  // no lock left held
    EXPECT_EQ(defaults->integerForKey(S("t")), 2);
}

TEST_F(DefaultsObserving, RemovalWaitsForACallRunningOnAnotherThread) {
    std::atomic<bool> inside{false};
    std::atomic<bool> finished{false};
    observer->action = [&](NSString*, NSDictionary*) {
        inside = true;
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        finished = true;
    };
    defaults->addObserver(observer, S("k"), kNone, nullptr);
    std::thread writer([&] {
        objc::AutoreleasePool threadPool;
        defaults->setIntegerForKey(1, S("k"));
    });
    while (!inside) std::this_thread::yield();
    defaults->removeObserver(observer, S("k"));
    // Once removal returns the observer could be freed: its call must be over.
    EXPECT_TRUE(finished);
    writer.join();
    EXPECT_EQ(observer->count(), 1u);
}

TEST_F(DefaultsObserving, ThreadsWritingWhileObserversComeAndGo) {
    auto steady = objc::make<DefaultsObserver>();
    defaults->addObserver(steady, S("shared"), kNew | kOld, nullptr);
    std::atomic<bool> stop{false};
    std::atomic<int> writes{0};
    std::vector<std::thread> threads;
    for (int w = 0; w < 2; ++w) {
        threads.emplace_back([&, w] {
            for (int i = 0; i < 2000; ++i) {
                objc::AutoreleasePool pool;
                defaults->setIntegerForKey(i, S("shared"));
                if (i % 3 == 0) defaults->removeObjectForKey(S("shared"));
                defaults->setObjectForKey(S(w == 0 ? "a" : "b"), S("other"));
                (void)defaults->objectForKey(S("shared"));
                ++writes;
            }
        });
    }
    for (int o = 0; o < 2; ++o) {
        threads.emplace_back([&] {
            while (!stop) {
                objc::AutoreleasePool pool;
                // A short-lived observer, freed right after its removal.
                auto transient = objc::make<DefaultsObserver>();
                defaults->addObserver(transient, S("shared"), kNew, nullptr);
                (void)defaults->objectForKey(S("shared"));
                defaults->removeObserver(transient, S("shared"));
            }
        });
    }
    for (int t = 0; t < 4; ++t) {
        if (t == 2) stop = true;
        threads[t].join();
    }
    // 2000 sets per writer, plus a removal every third one.
    EXPECT_EQ(steady->count(), 2u * (2000 + 667));
    defaults->removeObserver(steady, S("shared"));
}

}  // namespace
