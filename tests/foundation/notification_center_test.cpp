#include <Foundation/NSDictionary.h>
#include <Foundation/NSNotificationCenter.h>
#include <Foundation/NSThread.h>

#include <objc/exception.h>

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace {

// Observes with a selector and remembers what it heard.
class NotificationTestListener : public NSObject {
    OBJC_CLASS(NotificationTestListener)

    std::vector<std::string> heard;  // names, in order
    std::vector<id> senders;
    std::atomic<int> count{0};
    std::function<void(NSNotification*)> onHear;
    std::string tag;
    std::vector<std::string>* shared = nullptr;  // a log several listeners write to
    std::mutex mutex;

  private:
    void imp_heard(NSNotification* notification) {
        ++count;
        std::lock_guard lock(mutex);  // posts may come from several threads at once
        heard.push_back(notification->name()->utf8());
        senders.push_back(notification->object());
        if (shared != nullptr) shared->push_back(tag);
        if (onHear) onHear(notification);
    }
};

// Stands in for an operation queue: keeps the operations until told to run them.
class NotificationTestOperationQueue : public NSObject {
    OBJC_CLASS(NotificationTestOperationQueue)

    void runAll() {
        auto operations = std::move(pending);
        for (auto& op : operations) (*op)();
    }
    std::vector<objc::Strong<objc::Block<void()>>> pending;

  private:
    void imp_addOperationWithBlock(objc::Block<void()>* block) {
        pending.push_back(objc::retained(block));
    }
};

class NotificationTestTracked : public NSObject {
    OBJC_CLASS(NotificationTestTracked)

    NotificationTestTracked() { alive.fetch_add(1); }
    ~NotificationTestTracked() override { alive.fetch_sub(1); }
    static inline std::atomic<int> alive{0};
};

SEL heardSelector() {
    return objc::sel<"heard:">();
}

struct CenterTest : ::testing::Test {
    objc::AutoreleasePool pool;
    // A private center keeps tests apart from whatever else uses the default one.
    objc::Strong<NSNotificationCenter> center = objc::make<NSNotificationCenter>();
    objc::Strong<NotificationTestListener> listener = objc::make<NotificationTestListener>();
    objc::Strong<NSObject> sender1 = objc::make<NSObject>();
    objc::Strong<NSObject> sender2 = objc::make<NSObject>();
};

}  // namespace

OBJC_DEFINE_CLASS(NotificationTestListener, NSObject, "NotificationTestListener")
void NotificationTestListener::objcDefine(objc::ClassBuilder<NotificationTestListener>& b) {
    b.method<&NotificationTestListener::imp_heard>("heard:");
}
OBJC_DEFINE_CLASS(NotificationTestOperationQueue, NSObject, "NotificationTestOperationQueue")
void NotificationTestOperationQueue::objcDefine(
    objc::ClassBuilder<NotificationTestOperationQueue>& b) {
    b.method<&NotificationTestOperationQueue::imp_addOperationWithBlock>("addOperationWithBlock:");
}
OBJC_DEFINE_CLASS(NotificationTestTracked, NSObject, "NotificationTestTracked")
void NotificationTestTracked::objcDefine(objc::ClassBuilder<NotificationTestTracked>&) {}

TEST_F(CenterTest, FiltersByNameAndSender) {
    center->addObserver(listener.get(), heardSelector(), NSSTR("A"), nullptr);
    center->addObserver(listener.get(), heardSelector(), NSSTR("B"), sender1.get());
    // nil name and nil sender match everything.
    auto all = objc::make<NotificationTestListener>();
    center->addObserver(all.get(), heardSelector(), nullptr, nullptr);
    auto bySender = objc::make<NotificationTestListener>();
    center->addObserver(bySender.get(), heardSelector(), nullptr, sender1.get());
    center->postNotificationName(NSSTR("A"), sender2.get());
    center->postNotificationName(NSSTR("B"), sender2.get());  // wrong sender
    center->postNotificationName(NSSTR("B"), sender1.get());
    center->postNotificationName(NSSTR("C"), sender1.get());             // nobody listens
    center->postNotificationName(NSString::create("A").get(), nullptr);  // equal, not identical
    EXPECT_EQ(listener->heard, (std::vector<std::string>{"A", "B", "A"}));
    EXPECT_EQ(listener->senders, (std::vector<id>{sender2.get(), sender1.get(), nullptr}));
    EXPECT_EQ(all->heard, (std::vector<std::string>{"A", "B", "B", "C", "A"}));
    EXPECT_EQ(bySender->heard, (std::vector<std::string>{"B", "C"}));
}

TEST_F(CenterTest, DeliversInOrderOfRegistrationOnThePostingThread) {
    std::vector<std::string> log;
    std::vector<objc::Strong<NotificationTestListener>> listeners;
    for (const char* tag : {"first", "second", "third"}) {
        auto l = objc::make<NotificationTestListener>();
        l->tag = tag;
        l->shared = &log;
        center->addObserver(l.get(), heardSelector(), NSSTR("Go"), nullptr);
        listeners.push_back(l);
    }
    center->postNotificationName(NSSTR("Go"), nullptr);
    EXPECT_EQ(log, (std::vector<std::string>{"first", "second", "third"}));
    bool onMain = true;
    center->addObserverForName(NSSTR("Bg"), nullptr,
                               [&](NSNotification*) { onMain = NSThread::isMainThread(); });
    std::thread poster([&] {
        objc::AutoreleasePool threadPool;
        center->postNotificationName(NSSTR("Bg"), nullptr);
    });
    poster.join();
    EXPECT_FALSE(onMain);
}

TEST_F(CenterTest, ChangesDuringAPostApplyFromTheNextPost) {
    auto second = objc::make<NotificationTestListener>();
    auto late = objc::make<NotificationTestListener>();
    listener->onHear = [&](NSNotification*) {
        if (listener->count == 1) {
            center->removeObserver(second.get());
            center->addObserver(late.get(), heardSelector(), NSSTR("Go"), nullptr);
        }
    };
    center->addObserver(listener.get(), heardSelector(), NSSTR("Go"), nullptr);
    center->addObserver(second.get(), heardSelector(), NSSTR("Go"), nullptr);
    center->postNotificationName(NSSTR("Go"), nullptr);
    EXPECT_EQ(second->count.load(), 0) << "removed by an earlier observer of the same post";
    EXPECT_EQ(late->count.load(), 0) << "added during the post";
    center->postNotificationName(NSSTR("Go"), nullptr);
    EXPECT_EQ(listener->count.load(), 2);
    EXPECT_EQ(second->count.load(), 0);
    EXPECT_EQ(late->count.load(), 1);
    // An observer may remove itself while it is being called.
    listener->onHear = [&](NSNotification*) { center->removeObserver(listener.get()); };
    center->postNotificationName(NSSTR("Go"), nullptr);
    center->postNotificationName(NSSTR("Go"), nullptr);
    EXPECT_EQ(listener->count.load(), 3);
    center->removeObserver(late.get());
}

TEST_F(CenterTest, RemoveObserverNameObjectRemovesOnlyMatchingRegistrations) {
    center->addObserver(listener.get(), heardSelector(), NSSTR("A"), sender1.get());
    center->addObserver(listener.get(), heardSelector(), NSSTR("A"), sender2.get());
    center->addObserver(listener.get(), heardSelector(), NSSTR("B"), nullptr);
    center->addObserver(listener.get(), heardSelector(), nullptr, sender2.get());
    center->removeObserver(listener.get(), NSSTR("A"), sender1.get());
    center->postNotificationName(NSSTR("A"), sender1.get());
    EXPECT_EQ(listener->count.load(), 0);
    center->postNotificationName(NSSTR("A"), sender2.get());  // A/sender2 and nil/sender2
    EXPECT_EQ(listener->count.load(), 2);
    // A name removes the registrations for that name only, not the all-names one.
    center->removeObserver(listener.get(), NSSTR("A"), nullptr);
    center->postNotificationName(NSSTR("A"), sender2.get());
    EXPECT_EQ(listener->count.load(), 3);
    center->removeObserver(listener.get(), nullptr, sender2.get());
    center->postNotificationName(NSSTR("A"), sender2.get());
    center->postNotificationName(NSSTR("B"), sender2.get());
    EXPECT_EQ(listener->count.load(), 4);  // only B's registration is left
    center->removeObserver(listener.get());
    center->postNotificationName(NSSTR("B"), nullptr);
    EXPECT_EQ(listener->count.load(), 4);
}

TEST_F(CenterTest, BlockObserversUntilTheirTokenIsRemovedAndThroughTheirQueue) {
    const int before = NotificationTestTracked::alive.load();
    std::vector<std::string> heard;
    id token = nullptr;
    {
        objc::AutoreleasePool inner;
        token = center->addObserverForName(
            NSSTR("Ping"), sender1.get(),
            [&heard, tracked = objc::make<NotificationTestTracked>()](NSNotification* n) {
                heard.push_back(n->name()->utf8());
            });
    }
    ASSERT_NE(token, nullptr);  // the center holds it
    center->postNotificationName(NSSTR("Ping"), sender1.get());
    center->postNotificationName(NSSTR("Ping"), sender2.get());
    EXPECT_EQ(heard.size(), 1u);
    EXPECT_EQ(NotificationTestTracked::alive.load(), before + 1);
    center->removeObserver(token);
    center->postNotificationName(NSSTR("Ping"), sender1.get());
    EXPECT_EQ(heard.size(), 1u);
    EXPECT_EQ(NotificationTestTracked::alive.load(), before) << "the block dies with its token";
    // With a queue, the block runs through it.
    auto queue = objc::make<NotificationTestOperationQueue>();
    auto block = objc::makeBlock<void(NSNotification*)>(
        [&](NSNotification* n) { heard.push_back(n->name()->utf8()); });
    token = center->addObserverForName(NSSTR("Later"), nullptr, queue.get(), block.get());
    {
        objc::AutoreleasePool inner;
        center->postNotificationName(NSSTR("Later"), nullptr);
    }
    EXPECT_EQ(heard.size(), 1u);
    ASSERT_EQ(queue->pending.size(), 1u);
    queue->runAll();  // the notification was kept alive for the queue
    EXPECT_EQ(heard, (std::vector<std::string>{"Ping", "Later"}));
    center->removeObserver(token);
}

TEST(NotificationCenterLifetimes, ADeadObserverIsForgotten) {
    objc::AutoreleasePool pool;
    NSNotificationCenter* center = NSNotificationCenter::defaultCenter();
    auto survivor = objc::make<NotificationTestListener>();
    center->addObserver(survivor.get(), heardSelector(), NSSTR("Lifetimes"), nullptr);
    {
        auto doomed = objc::make<NotificationTestListener>();
        center->addObserver(doomed.get(), heardSelector(), NSSTR("Lifetimes"), nullptr);
        center->addObserver(doomed.get(), heardSelector(), nullptr, nullptr);
    }
    center->postNotificationName(NSSTR("Lifetimes"), nullptr);  // would reach freed memory
    EXPECT_EQ(survivor->count.load(), 1);
    center->removeObserver(survivor.get());
    // A center that dies first leaves its observers unharmed.
    auto shortLived = objc::make<NSNotificationCenter>();
    shortLived->addObserver(survivor.get(), heardSelector(), nullptr, nullptr);
    shortLived.reset();
    survivor.reset();
}

TEST_F(CenterTest, ConcurrentPostsAndRegistrations) {
    std::atomic<int> blockCalls{0};
    id steady =
        center->addObserverForName(NSSTR("Tick"), nullptr, [&](NSNotification*) { ++blockCalls; });
    std::atomic<bool> stop{false};
    std::vector<std::thread> threads;
    constexpr int kPosters = 3;
    constexpr int kPosts = 300;
    for (int t = 0; t < kPosters; ++t) {
        threads.emplace_back([&] {
            objc::AutoreleasePool threadPool;
            for (int i = 0; i < kPosts; ++i) {
                objc::AutoreleasePool turn;
                center->postNotificationName(NSSTR("Tick"), nullptr);
            }
        });
    }
    threads.emplace_back([&] {
        objc::AutoreleasePool threadPool;
        while (!stop) {
            objc::AutoreleasePool turn;
            auto l = objc::make<NotificationTestListener>();
            center->addObserver(l.get(), heardSelector(), NSSTR("Tick"), nullptr);
            id token = center->addObserverForName(NSSTR("Tick"), nullptr, [](NSNotification*) {});
            center->removeObserver(token);
            center->removeObserver(l.get());
        }
    });
    for (int t = 0; t < kPosters; ++t) threads[t].join();
    stop = true;
    threads.back().join();
    EXPECT_EQ(blockCalls.load(), kPosters * kPosts);
    center->removeObserver(steady);
}
