#include <Foundation/NSDate.h>
#include <Foundation/NSRunLoop.h>
#include <Foundation/NSThread.h>
#include <Foundation/dispatch.h>

#include <objc/exception.h>

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <string>
#include <thread>
#include <vector>

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

namespace {

class RunLoopTestTracked : public NSObject {
    OBJC_CLASS(RunLoopTestTracked)

    RunLoopTestTracked() { alive.fetch_add(1); }
    ~RunLoopTestTracked() override { alive.fetch_sub(1); }
    static inline std::atomic<int> alive{0};
};

}  // namespace

OBJC_DEFINE_CLASS(RunLoopTestTracked, NSObject, "RunLoopTestTracked")
void RunLoopTestTracked::objcDefine(objc::ClassBuilder<RunLoopTestTracked>&) {}

TEST(NSRunLoopBasics, RunEndsOnStopFromTheLoopOrAnotherThread) {
    objc::AutoreleasePool pool;
    NSRunLoop* loop = NSRunLoop::mainRunLoop();
    std::vector<std::string> order;
    dispatch_async(dispatch_get_main_queue(), [&] { order.push_back("first"); });
    dispatch_async(dispatch_get_main_queue(), [&] {
        order.push_back("stop");
        foundation::stopMainLoop();
    });
    loop->run();
    EXPECT_EQ(order, (std::vector<std::string>{"first", "stop"}));
    std::thread stopper([] {
        std::this_thread::sleep_for(20ms);
        foundation::stopMainLoop();
    });
    loop->run();  // returns only because of the stop
    stopper.join();
    // A stop sent while no loop runs ends the next run at once.
    foundation::stopMainLoop();
    loop->run();
}

TEST(NSRunLoopBasics, RunUntilDateWaitsForTheDateWhileServingTheQueue) {
    objc::AutoreleasePool pool;
    NSRunLoop* loop = NSRunLoop::mainRunLoop();
    const auto start = Clock::now();
    bool ran = false;
    dispatch_async(dispatch_get_main_queue(), [&] { ran = true; });
    loop->runUntilDate(NSDate::dateWithTimeIntervalSinceNow(0.05));
    EXPECT_TRUE(ran);
    EXPECT_GE(Clock::now() - start, 50ms);
    // A date in the past (or nil) is one pass without waiting.
    ran = false;
    dispatch_async(dispatch_get_main_queue(), [&] { ran = true; });
    loop->runUntilDate(NSDate::distantPast());
    EXPECT_TRUE(ran);
    loop->runUntilDate(static_cast<NSDate*>(nullptr));
    // distantFuture runs until stopped.
    dispatch_after(dispatch_time(DISPATCH_TIME_NOW, 5 * NSEC_PER_MSEC), dispatch_get_main_queue(),
                   [] { foundation::stopMainLoop(); });
    loop->runUntilDate(NSDate::distantFuture());
}

TEST(NSRunLoopBasics, EveryTurnDrainsItsPoolAndRunsInTheDefaultMode) {
    objc::AutoreleasePool pool;
    const int before = RunLoopTestTracked::alive.load();
    int aliveInside = 0;
    NSString* mode = nullptr;
    dispatch_async(dispatch_get_main_queue(), [&] {
        objc::autorelease(objc::make<RunLoopTestTracked>().leak());
        aliveInside = RunLoopTestTracked::alive.load() - before;
        mode = NSRunLoop::mainRunLoop()->currentMode();
    });
    EXPECT_EQ(NSRunLoop::mainRunLoop()->currentMode(), nullptr);  // only while running
    foundation::runMainLoopUntilIdle();
    EXPECT_EQ(aliveInside, 1);
    EXPECT_EQ(RunLoopTestTracked::alive.load(), before);
    ASSERT_NE(mode, nullptr);
    EXPECT_TRUE(mode->isEqualToString(NSDefaultRunLoopMode));
}

// A block may run the loop itself (a modal wait): later work runs inside it, in order.
TEST(NSRunLoopBasics, NestedRunsKeepTheQueueOrder) {
    objc::AutoreleasePool pool;
    std::vector<std::string> order;
    dispatch_async(dispatch_get_main_queue(), [&] {
        order.push_back("modal begins");
        dispatch_async(dispatch_get_main_queue(), [&] {
            order.push_back("inside");
            foundation::stopMainLoop();
        });
        NSRunLoop::mainRunLoop()->run();
        order.push_back("modal ends");
    });
    dispatch_async(dispatch_get_main_queue(), [&] { order.push_back("queued before"); });
    foundation::runMainLoopUntilIdle();
    EXPECT_EQ(order,
              (std::vector<std::string>{"modal begins", "queued before", "inside", "modal ends"}));
}
