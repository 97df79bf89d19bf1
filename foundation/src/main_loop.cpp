// The main thread's side of the dispatcher: draining the main queue.
#include "dispatch_internal.h"

#include <Foundation/NSThread.h>

#include <objc/exception.h>

namespace foundation::detail {

Dispatcher::RunEnd Dispatcher::runMain(RunMode mode, Clock::time_point deadline) {
    if (!isMainThread()) {
        objc::raise(objc::exception_name::InternalInconsistency,
                    "the main run loop runs on the main thread only");
    }
    for (;;) {
        objc::AutoreleasePool turnPool;
        std::size_t batch = 0;
        {
            std::unique_lock lock(mutex_);
            if (stopRequested_) {
                stopRequested_ = false;
                return RunEnd::Stopped;
            }
            fireDueTimersLocked(Clock::now());
            batch = main_->pending.size();
            if (batch == 0) {
                if (mode == RunMode::UntilIdle ||
                    (mode == RunMode::UntilIdleAndBackground && outstanding_ == 0)) {
                    return RunEnd::Idle;
                }
                if (Clock::now() >= deadline) return RunEnd::TimedOut;
                // Woken by main-queue work (timers are moved there by the
                // timer thread), a stop, or the worker side running dry.
                if (deadline == Clock::time_point::max()) {
                    mainWake_.wait(lock);
                } else {
                    mainWake_.wait_until(lock, deadline);
                }
                continue;
            }
        }
        // Work queued by these blocks waits for the next turn.
        for (std::size_t i = 0; i < batch; ++i) {
            Job job;
            {
                std::lock_guard lock(mutex_);
                if (main_->pending.empty()) break;  // a nested loop ran it
                job = std::move(main_->pending.front());
                main_->pending.pop_front();
            }
            runBlock(main_, job.block.get());
            job.block.reset();
            if (job.turn != nullptr || job.group) {
                std::lock_guard lock(mutex_);
                if (job.turn != nullptr) {
                    job.turn->done = true;
                    syncWake_.notify_all();
                }
                if (job.group) leaveGroupLocked(job.group.get());
            }
        }
        if (mode == RunMode::OnePass) return RunEnd::Ran;
    }
}

void Dispatcher::stopMain() {
    std::lock_guard lock(mutex_);
    stopRequested_ = true;
    mainWake_.notify_all();
}

}  // namespace foundation::detail
