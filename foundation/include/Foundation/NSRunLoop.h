// The main thread's run loop: it drains the main dispatch queue and fires the
// dispatch_after timers that target it, waiting on a condition variable in
// between. Each turn runs inside an autorelease pool.
//
// Only the main thread has a run loop here: +currentRunLoop answers nil on
// other threads (their work belongs on dispatch queues), and running the main
// loop from another thread raises NSInternalInconsistencyException.
//
// stopMainLoop() ends the innermost run, runUntilDate: or
// runMainLoopUntilIdle; a stop asked for while no loop runs ends the next one
// at once (so a stop sent just before the loop starts is never lost).
// There is one mode: mode arguments are accepted and ignored.
#pragma once

#include <objc/object.h>
#include <objc/string.h>

#include <chrono>

class NSDate;
using NSTimeInterval = double;

PV_EXPORT extern NSString* const NSDefaultRunLoopMode;
PV_EXPORT extern NSString* const NSRunLoopCommonModes;

class PV_EXPORT NSRunLoop : public NSObject {
    OBJC_CLASS(NSRunLoop)

    static NSRunLoop* mainRunLoop() {
        return objc::msgSend<NSRunLoop*>(objcClass(), objc::sel<"mainRunLoop">());
    }
    // The main run loop on the main thread, nil elsewhere.
    static NSRunLoop* currentRunLoop() {
        return objc::msgSend<NSRunLoop*>(objcClass(), objc::sel<"currentRunLoop">());
    }

    // Runs until stopMainLoop().
    void run() { objc::msgSend<void>(this, objc::sel<"run">()); }
    // Runs until the date (nil: one pass without waiting) or stopMainLoop().
    void runUntilDate(NSDate* limit) {
        objc::msgSend<void>(this, objc::sel<"runUntilDate:">(), limit);
    }
    // One pass: runs what is ready, waiting for something to be ready until
    // the date if nothing is. NO when the loop was stopped.
    bool runModeBeforeDate(NSString* mode, NSDate* limit) {
        return objc::msgSend<bool>(this, objc::sel<"runMode:beforeDate:">(), mode, limit);
    }
    NSString* currentMode() { return objc::msgSend<NSString*>(this, objc::sel<"currentMode">()); }

    // C++ forms of runUntilDate: on the monotonic clock (no message is sent).
    void runUntilDate(std::chrono::steady_clock::time_point limit);
    template <class Rep, class Period>
    void runFor(std::chrono::duration<Rep, Period> duration) {
        runUntilDate(std::chrono::steady_clock::now() +
                     std::chrono::duration_cast<std::chrono::steady_clock::duration>(duration));
    }

    NSRunLoop() = default;

  private:
    static NSRunLoop* imp_mainRunLoop(Class cls);
    static NSRunLoop* imp_currentRunLoop(Class cls);
    void imp_run();
    void imp_runUntilDate(NSDate* limit);
    bool imp_runModeBeforeDate(NSString* mode, NSDate* limit);
    NSString* imp_currentMode();
};

namespace foundation {

// Runs the main loop until it is idle: no main-queue work is left (including
// work queued by the work it ran) and no timer aimed at the main queue is
// due. With waitForBackgroundWork, idle also needs every worker-thread queue
// to be empty, with nothing running and no due timer, so that work handed back
// to the main queue by a background job runs before this returns. Timers not
// yet due are not waited for. Main thread only; also ends on stopMainLoop().
PV_EXPORT void runMainLoopUntilIdle(bool waitForBackgroundWork = true);
// As runMainLoopUntilIdle(true), but gives up waiting for the worker side at
// the deadline: true when everything was idle by then, false when background
// work was still going (or the loop was stopped).
PV_EXPORT bool runMainLoopUntilIdle(std::chrono::steady_clock::time_point deadline);

// Ends the running main loop (see above); callable from any thread.
PV_EXPORT void stopMainLoop();

}  // namespace foundation
