#include <Foundation/NSRunLoop.h>

#include "dispatch_internal.h"

#include <Foundation/NSDate.h>
#include <Foundation/NSThread.h>

#include <objc/exception.h>
#include <objc/image.h>

#include <cmath>

using foundation::detail::Clock;
using foundation::detail::Dispatcher;
using RunMode = Dispatcher::RunMode;
using RunEnd = Dispatcher::RunEnd;

NSString* const NSDefaultRunLoopMode = objc::constantString("kCFRunLoopDefaultMode");
NSString* const NSRunLoopCommonModes = objc::constantString("kCFRunLoopCommonModes");

namespace {

// The moment an NSDate stands for, on the monotonic clock; nil is now, and
// dates too far ahead (distantFuture) never come.
Clock::time_point deadlineOf(NSDate* limit) {
    if (limit == nullptr) return Clock::now();
    const double seconds =
        objc::msgSend<NSTimeInterval>(limit, objc::sel<"timeIntervalSinceNow">());
    if (std::isnan(seconds) || seconds <= 0) return Clock::now();
    if (seconds > 1e9) return Clock::time_point::max();
    return Clock::now() +
           std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(seconds));
}

// How many runs of the main loop are in progress; main thread only.
int gRunDepth = 0;

Dispatcher::RunEnd runMain(RunMode mode, Clock::time_point deadline) {
    struct Depth {
        Depth() { ++gRunDepth; }
        ~Depth() { --gRunDepth; }
        Depth(const Depth&) = delete;
        Depth& operator=(const Depth&) = delete;
    };
    if (!foundation::isMainThread()) {
        objc::raise(objc::exception_name::InternalInconsistency,
                    "the main run loop runs on the main thread only");
    }
    const Depth depth;
    return Dispatcher::shared().runMain(mode, deadline);
}

}  // namespace

OBJC_DEFINE_CLASS(NSRunLoop, NSObject, "NSRunLoop")
OBJC_REGISTER_CLASS(NSRunLoop)

void NSRunLoop::objcDefine(objc::ClassBuilder<NSRunLoop>& b) {
    b.classMethod<&NSRunLoop::imp_mainRunLoop>("mainRunLoop")
        .classMethod<&NSRunLoop::imp_currentRunLoop>("currentRunLoop")
        .method<&NSRunLoop::imp_run>("run")
        .method<&NSRunLoop::imp_runUntilDate>("runUntilDate:")
        .method<&NSRunLoop::imp_runModeBeforeDate>("runMode:beforeDate:")
        .method<&NSRunLoop::imp_currentMode>("currentMode");
}

NSRunLoop* NSRunLoop::imp_mainRunLoop(Class) {
    static NSRunLoop* const loop = objc::make<NSRunLoop>().leak();
    return loop;
}

NSRunLoop* NSRunLoop::imp_currentRunLoop(Class cls) {
    return foundation::isMainThread() ? imp_mainRunLoop(cls) : nullptr;
}

void NSRunLoop::imp_run() {
    runMain(RunMode::UntilDeadline, Clock::time_point::max());
}

void NSRunLoop::imp_runUntilDate(NSDate* limit) {
    runMain(RunMode::UntilDeadline, deadlineOf(limit));
}

bool NSRunLoop::imp_runModeBeforeDate(NSString*, NSDate* limit) {
    return runMain(RunMode::OnePass, deadlineOf(limit)) != RunEnd::Stopped;
}

// The mode while the loop runs, nil otherwise.
NSString* NSRunLoop::imp_currentMode() {
    return foundation::isMainThread() && gRunDepth > 0 ? NSDefaultRunLoopMode : nullptr;
}

void NSRunLoop::runUntilDate(std::chrono::steady_clock::time_point limit) {
    runMain(RunMode::UntilDeadline, limit);
}

void foundation::runMainLoopUntilIdle(bool waitForBackgroundWork) {
    runMain(waitForBackgroundWork ? RunMode::UntilIdleAndBackground : RunMode::UntilIdle,
            Clock::time_point::max());
}

bool foundation::runMainLoopUntilIdle(std::chrono::steady_clock::time_point deadline) {
    return runMain(RunMode::UntilIdleAndBackground, deadline) == RunEnd::Idle;
}

void foundation::stopMainLoop() {
    Dispatcher::shared().stopMain();
}
