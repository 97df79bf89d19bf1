#include <Foundation/NSRunLoop.h>
#include <Foundation/NSThread.h>
#include <Foundation/dispatch.h>

#include <objc/exception.h>
#include <objc/image.h>

#include <gtest/gtest.h>

#include "foundation_helpers.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

namespace {

// Counts its living instances, to see when queues let go of objects.
class DispatchTestTracked : public NSObject {
    OBJC_CLASS(DispatchTestTracked)

    DispatchTestTracked() { alive.fetch_add(1); }
    ~DispatchTestTracked() override { alive.fetch_sub(1); }
    static inline std::atomic<int> alive{0};
};

// A one-shot signal between threads, bounded so that a fault fails instead of hanging.
class Signal {
  public:
    void set() {
        std::lock_guard lock(mutex_);
        set_ = true;
        cv_.notify_all();
    }
    bool wait(std::chrono::seconds limit = 20s) {
        std::unique_lock lock(mutex_);
        return cv_.wait_for(lock, limit, [&] { return set_; });
    }

  private:
    std::mutex mutex_;
    std::condition_variable cv_;
    bool set_ = false;
};

dispatch_queue_t globalQueue() {
    return dispatch_get_global_queue(DISPATCH_QUEUE_PRIORITY_DEFAULT, 0);
}

using Dispatch = testsupport::PoolTest;

}  // namespace

OBJC_DEFINE_CLASS(DispatchTestTracked, NSObject, "DispatchTestTracked")
void DispatchTestTracked::objcDefine(objc::ClassBuilder<DispatchTestTracked>&) {}

TEST_F(Dispatch, MainQueueRunsOnlyOnTheMainThreadWhenTheLoopRuns) {
    std::atomic<int> ran{0};
    std::atomic<bool> onMain{false};
    dispatch_async(dispatch_get_main_queue(), [&] {
        onMain = NSThread::isMainThread();
        ++ran;
    });
    // Queued from a worker thread too.
    Signal queued;
    dispatch_async(globalQueue(), [&] {
        dispatch_async(dispatch_get_main_queue(), [&] { ++ran; });
        queued.set();
    });
    ASSERT_TRUE(queued.wait());
    std::this_thread::sleep_for(20ms);
    EXPECT_EQ(ran.load(), 0) << "nothing drains the main queue while its loop is not running";
    foundation::runMainLoopUntilIdle();
    EXPECT_EQ(ran.load(), 2);
    EXPECT_TRUE(onMain.load());
    // The download pattern: a worker hands its result to the main thread.
    Signal release;
    std::string result;  // written on the main thread only
    dispatch_async(dispatch_get_global_queue(DISPATCH_QUEUE_PRIORITY_LOW, 0), [&] {
        ASSERT_TRUE(release.wait());
        dispatch_async(dispatch_get_main_queue(), [&] { result = "payload"; });
    });
    // Not waiting for background work: idle at once, nothing delivered yet.
    foundation::runMainLoopUntilIdle(false);
    EXPECT_TRUE(result.empty());
    // Waiting with a deadline gives up on a worker that is still busy.
    const auto start = Clock::now();
    EXPECT_FALSE(foundation::runMainLoopUntilIdle(start + 30ms));
    EXPECT_GE(Clock::now() - start, 30ms);
    EXPECT_TRUE(result.empty());
    release.set();
    EXPECT_TRUE(foundation::runMainLoopUntilIdle(Clock::time_point::max()));
    EXPECT_EQ(result, "payload");
}

TEST_F(Dispatch, MainQueueSyncRunsOnTheMainThreadAndRefusesToDeadlockIt) {
    std::atomic<bool> ranOnMain{false};
    std::atomic<bool> returnedAfter{false};
    dispatch_async(globalQueue(), [&] {
        dispatch_sync(dispatch_get_main_queue(), [&] { ranOnMain = NSThread::isMainThread(); });
        returnedAfter = ranOnMain.load();
    });
    foundation::runMainLoopUntilIdle();
    EXPECT_TRUE(ranOnMain.load());
    EXPECT_TRUE(returnedAfter.load());
    // From the main thread itself it would deadlock: it raises instead.
    bool ran = false;
    EXPECT_THROW(dispatch_sync(dispatch_get_main_queue(), [&] { ran = true; }), objc::Exception);
    EXPECT_FALSE(ran);
}

TEST_F(Dispatch, GlobalQueuesRunOffTheMainThreadConcurrently) {
    ASSERT_GE(foundation::dispatchWorkerLimit(), 2u);
    Signal firstStarted;
    Signal secondStarted;
    std::atomic<bool> anyOnMain{false};
    std::atomic<bool> overlapped{false};
    dispatch_group_t group = dispatch_group_create();
    dispatch_group_async(group, globalQueue(), [&] {
        anyOnMain = anyOnMain || NSThread::isMainThread();
        firstStarted.set();
        overlapped = secondStarted.wait();  // only ends early if both run at once
    });
    dispatch_group_async(group, globalQueue(), [&] {
        anyOnMain = anyOnMain || NSThread::isMainThread();
        secondStarted.set();
        firstStarted.wait();
    });
    EXPECT_EQ(dispatch_group_wait(group, DISPATCH_TIME_FOREVER), 0);
    dispatch_release(group);
    EXPECT_FALSE(anyOnMain.load());
    EXPECT_TRUE(overlapped.load());
}

TEST_F(Dispatch, GlobalQueuesJobsLetGoOfBlocksAndAutoreleasedObjectsWhenTheyEnd) {
    const int before = DispatchTestTracked::alive.load();
    std::atomic<int> aliveInside{0};
    dispatch_group_t group = dispatch_group_create();
    dispatch_group_async(group, globalQueue(), [&] {
        objc::autorelease(objc::make<DispatchTestTracked>().leak());
        aliveInside = DispatchTestTracked::alive.load() - before;
    });
    dispatch_group_wait(group, DISPATCH_TIME_FOREVER);
    dispatch_release(group);
    EXPECT_EQ(aliveInside.load(), 1) << "an autoreleased object lives until its job ends";
    EXPECT_EQ(DispatchTestTracked::alive.load(), before) << "and dies with it, not with the thread";
    auto block =
        objc::makeBlock<void()>([captured = objc::make<DispatchTestTracked>()] { (void)captured; });
    EXPECT_EQ(objc_retainCount(block.get()), 1u);
    dispatch_async(globalQueue(), block.get());
    dispatch_async(dispatch_get_main_queue(), block.get());
    foundation::runMainLoopUntilIdle();
    EXPECT_EQ(objc_retainCount(block.get()), 1u);
    block.reset();
    EXPECT_EQ(DispatchTestTracked::alive.load(), before);
    // Callables are wrapped in blocks that die after running too.
    dispatch_async(globalQueue(), [captured = objc::make<DispatchTestTracked>()] {});
    foundation::runMainLoopUntilIdle();
    EXPECT_EQ(DispatchTestTracked::alive.load(), before);
}

TEST(DispatchGlobalQueuesDeathTest, AnExceptionInAJobEndsTheProcessWithAReport) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_DEATH(
        {
            dispatch_async(globalQueue(), [] {
                objc::raise(objc::exception_name::InvalidArgument, "bad input in a job");
            });
            std::this_thread::sleep_for(10s);
        },
        "uncaught exception 'NSInvalidArgumentException', reason: 'bad input in a job'");
}

TEST_F(Dispatch, SerialQueuesRunOneJobAtATimeInFifoOrder) {
    dispatch_queue_t queue = dispatch_queue_create("test.serial", DISPATCH_QUEUE_SERIAL);
    std::vector<int> order;  // guarded by the queue itself
    std::atomic<int> inFlight{0};
    std::atomic<int> maxInFlight{0};
    std::atomic<bool> anyOnMain{false};
    for (int i = 0; i < 200; ++i) {
        dispatch_async(queue, [&, i] {
            const int now = ++inFlight;
            maxInFlight = std::max(maxInFlight.load(), now);
            anyOnMain = anyOnMain || NSThread::isMainThread();
            order.push_back(i);
            if (i % 50 == 0) std::this_thread::yield();
            --inFlight;
        });
    }
    // A sync block runs after everything queued before it.
    std::size_t seen = 0;
    dispatch_sync(queue, [&] { seen = order.size(); });
    EXPECT_EQ(seen, 200u);
    dispatch_release(queue);
    EXPECT_EQ(maxInFlight.load(), 1);
    EXPECT_FALSE(anyOnMain.load());
    for (int i = 0; i < 200; ++i) ASSERT_EQ(order[i], i);
}

TEST_F(Dispatch, SerialQueueSyncRunsOnTheCallingThreadAndRefusesToDeadlock) {
    dispatch_queue_t queue = dispatch_queue_create("test.sync", DISPATCH_QUEUE_SERIAL);
    bool onMain = false;
    bool raised = false;
    dispatch_sync(queue, [&] {
        onMain = NSThread::isMainThread();
        EXPECT_STREQ(dispatch_queue_get_label(nullptr), "test.sync");
        try {
            dispatch_sync(queue, [] {});
        } catch (const objc::Exception& e) {
            raised = e.name() == objc::exception_name::InternalInconsistency;
        }
    });
    EXPECT_TRUE(onMain);
    EXPECT_TRUE(raised);
    // The queue is usable afterwards.
    int after = 0;
    dispatch_async(queue, [&] { after = 1; });
    dispatch_sync(queue, [] {});
    EXPECT_EQ(after, 1);
    dispatch_release(queue);
}

TEST_F(Dispatch, ConcurrentQueuesRunJobsTogetherAndSyncInline) {
    dispatch_queue_t queue = dispatch_queue_create("test.concurrent", DISPATCH_QUEUE_CONCURRENT);
    Signal a;
    Signal b;
    std::atomic<bool> overlapped{false};
    dispatch_async(queue, [&] {
        a.set();
        overlapped = b.wait();
    });
    dispatch_async(queue, [&] {
        b.set();
        a.wait();
    });
    bool inline_ = false;
    dispatch_sync(queue, [&] { inline_ = NSThread::isMainThread(); });
    EXPECT_TRUE(inline_);
    dispatch_release(queue);
    foundation::runMainLoopUntilIdle();
    EXPECT_TRUE(overlapped.load());
}

TEST_F(Dispatch, AfterFiresInTimeOrderAndNeverEarly) {
    const auto start = Clock::now();
    std::vector<std::string> order;
    bool early = false;
    const auto at = [&](int ms, std::string name, bool stop = false) {
        dispatch_after(dispatch_time(DISPATCH_TIME_NOW, ms * NSEC_PER_MSEC),
                       dispatch_get_main_queue(), [&, ms, name, stop] {
                           early = early || Clock::now() - start < std::chrono::milliseconds(ms);
                           order.push_back(name);
                           if (stop) foundation::stopMainLoop();
                       });
    };
    at(60, "stop", true);
    at(30, "c");
    at(10, "a");
    at(10, "b");  // same time: kept in the order given
    dispatch_async(dispatch_get_main_queue(), [&] { order.push_back("now"); });
    NSRunLoop::mainRunLoop()->runFor(20s);
    EXPECT_EQ(order, (std::vector<std::string>{"now", "a", "b", "c", "stop"}));
    EXPECT_FALSE(early);
    // Idle does not wait for timers not yet due.
    auto block = objc::makeBlock<void()>([] { ADD_FAILURE() << "an hour has not passed"; });
    dispatch_after(dispatch_time(DISPATCH_TIME_NOW, 3600 * NSEC_PER_SEC), dispatch_get_main_queue(),
                   block.get());
    foundation::runMainLoopUntilIdle();  // returns at once
    // A time that never comes holds nothing.
    dispatch_after(DISPATCH_TIME_FOREVER, dispatch_get_main_queue(), block.get());
    EXPECT_EQ(objc_retainCount(block.get()), 2u);  // ours and the hour's timer
}

TEST_F(Dispatch, OnceRunsExactlyOnceAcrossRacingThreadsAndAfterAFailure) {
    for (int round = 0; round < 20; ++round) {
        static_assert(std::is_same_v<dispatch_once_t, long>);
        dispatch_once_t predicate = 0;
        std::atomic<int> calls{0};
        int value = 0;  // written by the once function, read by everyone after
        std::atomic<bool> go{false};
        std::atomic<int> wrong{0};
        std::vector<std::thread> threads;
        for (int t = 0; t < 8; ++t) {
            threads.emplace_back([&] {
                while (!go.load()) std::this_thread::yield();
                dispatch_once(&predicate, [&] {
                    ++calls;
                    std::this_thread::sleep_for(1ms);
                    value = 42;
                });
                if (value != 42) ++wrong;
            });
        }
        go = true;
        for (auto& t : threads) t.join();
        ASSERT_EQ(calls.load(), 1);
        ASSERT_EQ(wrong.load(), 0) << "every caller returns after the function has finished";
    }
    // Blocks, failures and recursion.
    dispatch_once_t predicate = 0;
    int calls = 0;
    auto block = objc::makeBlock<void()>([&] { ++calls; });
    dispatch_once(&predicate, block.get());
    dispatch_once(&predicate, block.get());
    EXPECT_EQ(calls, 1);
    // A throwing function leaves the predicate unset for the next caller.
    dispatch_once_t retry = 0;
    EXPECT_THROW(dispatch_once(&retry, [] { throw std::runtime_error("first try"); }),
                 std::runtime_error);
    dispatch_once(&retry, [&] { ++calls; });
    EXPECT_EQ(calls, 2);
    dispatch_once_t nested = 0;
    EXPECT_THROW(dispatch_once(&nested, [&] { dispatch_once(&nested, [] {}); }), objc::Exception);
}

TEST_F(Dispatch, GroupsNotifyAndWaitFollowTheCountWithoutStarvingThePool) {
    dispatch_group_t group = dispatch_group_create();
    dispatch_queue_t serial = dispatch_queue_create("test.group", DISPATCH_QUEUE_SERIAL);
    std::atomic<int> done{0};
    bool notified = false;
    int doneWhenNotified = -1;
    for (int i = 0; i < 10; ++i) {
        dispatch_group_async(group, i % 2 ? serial : globalQueue(), [&] { ++done; });
    }
    dispatch_group_notify(group, dispatch_get_main_queue(), [&] {
        notified = NSThread::isMainThread();
        doneWhenNotified = done.load();
    });
    EXPECT_EQ(dispatch_group_wait(group, DISPATCH_TIME_FOREVER), 0);
    foundation::runMainLoopUntilIdle();
    EXPECT_TRUE(notified);
    EXPECT_EQ(doneWhenNotified, 10);
    // Entered work holds the group until it leaves.
    dispatch_group_enter(group);
    EXPECT_NE(dispatch_group_wait(group, dispatch_time(DISPATCH_TIME_NOW, 10 * NSEC_PER_MSEC)), 0);
    EXPECT_NE(dispatch_group_wait(group, DISPATCH_TIME_NOW), 0);
    dispatch_async(serial, [group] { dispatch_group_leave(group); });
    EXPECT_EQ(dispatch_group_wait(group, DISPATCH_TIME_FOREVER), 0);
    EXPECT_THROW(dispatch_group_leave(group), objc::Exception);
    dispatch_release(serial);
    dispatch_release(group);
    // Workers waiting on other queued work must not starve the pool.
    const std::size_t waiters = foundation::dispatchWorkerLimit() * 2;
    dispatch_group_t outer = dispatch_group_create();
    std::atomic<int> inner{0};
    for (std::size_t i = 0; i < waiters; ++i) {
        dispatch_group_async(outer, globalQueue(), [&] {
            dispatch_group_t group = dispatch_group_create();
            dispatch_group_async(group, globalQueue(), [&] { ++inner; });
            dispatch_group_wait(group, DISPATCH_TIME_FOREVER);
            dispatch_release(group);
        });
    }
    EXPECT_EQ(dispatch_group_wait(outer, dispatch_time(DISPATCH_TIME_NOW, 30 * NSEC_PER_SEC)), 0);
    dispatch_release(outer);
    EXPECT_EQ(inner.load(), static_cast<int>(waiters));
}
