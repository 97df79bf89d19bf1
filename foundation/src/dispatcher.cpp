// The dispatcher: queues, the worker pool and the timer thread.
#include "dispatch_internal.h"

#include <Foundation/NSThread.h>

#include <objc/exception.h>
#include <objc/image.h>
#include <objc/string.h>

#include <algorithm>
#include <cstdio>
#include <exception>

OBJC_DEFINE_CLASS(foundation::detail::DispatchQueue, NSObject, "OS_dispatch_queue")
OBJC_DEFINE_CLASS(foundation::detail::DispatchGroup, NSObject, "OS_dispatch_group")
OBJC_REGISTER_CLASS(foundation::detail::DispatchQueue)
OBJC_REGISTER_CLASS(foundation::detail::DispatchGroup)

namespace foundation::detail {

void DispatchQueue::objcDefine(objc::ClassBuilder<DispatchQueue>& b) {
    b.method<&DispatchQueue::imp_description>("description");
}

NSString* DispatchQueue::imp_description() {
    const char* kindName = kind == QueueKind::Main         ? "main"
                           : kind == QueueKind::Global     ? "global"
                           : kind == QueueKind::Concurrent ? "concurrent"
                                                           : "serial";
    char address[32];
    std::snprintf(address, sizeof address, "%p", static_cast<void*>(this));
    const std::string text =
        std::string("<OS_dispatch_queue_") + kindName + ": " + label + "[" + address + "]>";
    return objc::autorelease(NSString::create(text).leak());
}

void DispatchGroup::objcDefine(objc::ClassBuilder<DispatchGroup>&) {}

namespace {

// Workers started beyond the limit stand in for blocked ones; this caps them.
constexpr std::size_t kMaxWorkers = 64;

thread_local bool tIsWorker = false;
// The queues whose blocks this thread is running, innermost last.
thread_local std::vector<DispatchQueue*> tRunning;

DispatchQueue* makeImmortalQueue(QueueKind kind, Band band, const char* label) {
    DispatchQueue* queue = objc::make<DispatchQueue>().leak();
    queue->refs_.store(objc_object::kImmortalRefs, std::memory_order_relaxed);
    queue->kind = kind;
    queue->band = band;
    queue->label = label;
    return queue;
}

[[noreturn]] void terminateUncaught(const char* name, const char* reason) {
    std::fprintf(stderr, "*** Terminating app due to uncaught exception '%s', reason: '%s'\n", name,
                 reason);
    std::fflush(stderr);
    std::terminate();
}

}  // namespace

Dispatcher& Dispatcher::shared() {
    static Dispatcher dispatcher;
    return dispatcher;
}

Dispatcher::Dispatcher()
    : limit_(std::clamp<std::size_t>(std::thread::hardware_concurrency(), 2, kMaxWorkers)) {
    main_ = makeImmortalQueue(QueueKind::Main, kBandHigh, "com.apple.main-thread");
    global_[kBandHigh] =
        makeImmortalQueue(QueueKind::Global, kBandHigh, "com.apple.root.user-initiated-qos");
    global_[kBandDefault] =
        makeImmortalQueue(QueueKind::Global, kBandDefault, "com.apple.root.default-qos");
    global_[kBandLow] =
        makeImmortalQueue(QueueKind::Global, kBandLow, "com.apple.root.utility-qos");
    global_[kBandBackground] =
        makeImmortalQueue(QueueKind::Global, kBandBackground, "com.apple.root.background-qos");
}

// At exit: running blocks finish, queued ones are dropped (released).
Dispatcher::~Dispatcher() {
    {
        std::lock_guard lock(mutex_);
        shutdown_ = true;
    }
    workWake_.notify_all();
    timerWake_.notify_all();
    syncWake_.notify_all();
    for (std::thread& worker : workers_) {
        // A job that called exit() is running these destructors itself.
        if (worker.get_id() == std::this_thread::get_id()) {
            worker.detach();
        } else {
            worker.join();
        }
    }
    if (timerThread_.joinable()) timerThread_.join();
    std::deque<Job> mainJobs = std::move(main_->pending);
}

void Dispatcher::runBlock(DispatchQueue* queue, objc::Block<void()>* block) noexcept {
    tRunning.push_back(queue);
    try {
        objc::AutoreleasePool pool;
        (*block)();
    } catch (const objc::Exception& e) {
        terminateUncaught(e.name().c_str(), e.what());
    } catch (const std::exception& e) {
        terminateUncaught("std::exception", e.what());
    } catch (...) {
        terminateUncaught("unknown", "a block threw a value that is not an exception");
    }
    tRunning.pop_back();
}

DispatchQueue* Dispatcher::currentQueue() noexcept {
    return tRunning.empty() ? nullptr : tRunning.back();
}

void Dispatcher::async(DispatchQueue* queue, Job job) {
    std::lock_guard lock(mutex_);
    enqueueLocked(objc::retained(queue), std::move(job));
}

void Dispatcher::enqueueLocked(objc::Strong<DispatchQueue> queue, Job job) {
    DispatchQueue* const q = queue.get();
    switch (q->kind) {
        case QueueKind::Main:
            q->pending.push_back(std::move(job));
            mainWake_.notify_all();
            return;
        case QueueKind::Global:
        case QueueKind::Concurrent:
            ++outstanding_;
            pushReadyLocked(q->band, Ready{std::move(queue), std::move(job), false});
            return;
        case QueueKind::Serial:
            ++outstanding_;
            q->pending.push_back(std::move(job));
            if (!q->active) {
                q->active = true;
                pushReadyLocked(q->band, Ready{std::move(queue), Job{}, true});
            }
            return;
    }
}

void Dispatcher::pushReadyLocked(Band band, Ready ready) {
    ready_[band].push_back(std::move(ready));
    ++readyCount_;
    wakeWorkerLocked();
}

// Finds a worker for ready work while fewer than limit_ jobs run: an idle
// one, or a new one when every worker is busy or blocked.
void Dispatcher::wakeWorkerLocked() {
    if (shutdown_ || readyCount_ == 0 || running_ >= limit_) return;
    if (idle_ > 0) workWake_.notify_one();
    if (readyCount_ > idle_ && workers_.size() < kMaxWorkers) {
        workers_.emplace_back([this] { workerMain(); });
    }
}

bool Dispatcher::takeReadyLocked(Ready& out) {
    if (shutdown_ || readyCount_ == 0 || running_ >= limit_) return false;
    for (auto& band : ready_) {
        if (band.empty()) continue;
        out = std::move(band.front());
        band.pop_front();
        --readyCount_;
        ++running_;
        return true;
    }
    return false;
}

// A serial queue's current job (or sync caller) is done: it moves on.
void Dispatcher::releaseSerialLocked(DispatchQueue* queue) {
    if (!queue->pending.empty()) {
        pushReadyLocked(queue->band, Ready{objc::retained(queue), Job{}, true});
    } else {
        queue->active = false;
    }
}

// A job of the worker side is done.
void Dispatcher::finishLocked(DispatchQueue* queue, bool serial) {
    if (serial) releaseSerialLocked(queue);
    if (--outstanding_ == 0) mainWake_.notify_all();
}

void Dispatcher::workerMain() {
    tIsWorker = true;
    for (;;) {
        Ready ready;
        bool handedOver = false;
        {
            std::unique_lock lock(mutex_);
            while (!takeReadyLocked(ready)) {
                if (shutdown_) return;
                ++idle_;
                workWake_.wait(lock);
                --idle_;
            }
            if (ready.drainSerial) {
                ready.job = std::move(ready.queue->pending.front());
                ready.queue->pending.pop_front();
                if (ready.job.turn != nullptr) {
                    // A dispatch_sync caller runs its block itself; the queue
                    // stays active until it has.
                    ready.job.turn->granted = true;
                    syncWake_.notify_all();
                    handedOver = true;
                    --running_;
                }
            }
        }
        if (handedOver) continue;
        runBlock(ready.queue.get(), ready.job.block.get());
        ready.job.block.reset();  // what the block captured dies now, not later
        std::lock_guard lock(mutex_);
        --running_;
        ++idle_;  // this worker looks for the next job itself: no need to start one
        if (ready.job.group) leaveGroupLocked(ready.job.group.get());
        finishLocked(ready.queue.get(), ready.drainSerial);
        --idle_;
    }
}

bool Dispatcher::waitBlocked(std::unique_lock<std::mutex>& lock, std::condition_variable& cv,
                             const std::function<bool()>& done, Clock::time_point deadline) {
    // A worker waits inside a job: its place goes to another worker meanwhile.
    const bool worker = tIsWorker;
    if (worker) {
        --running_;
        wakeWorkerLocked();
    }
    bool result = true;
    if (deadline == Clock::time_point::max()) {
        cv.wait(lock, [&] { return done() || shutdown_; });
        result = done();
    } else {
        result = cv.wait_until(lock, deadline, done);
    }
    if (worker) ++running_;
    return result;
}

void Dispatcher::sync(DispatchQueue* queue, objc::Block<void()>* block) {
    switch (queue->kind) {
        case QueueKind::Global:
        case QueueKind::Concurrent:
            runBlock(queue, block);
            return;
        case QueueKind::Main: {
            if (isMainThread()) {
                objc::raise(objc::exception_name::InternalInconsistency,
                            "dispatch_sync to the main queue from the main thread would deadlock");
            }
            SyncTurn turn;
            std::unique_lock lock(mutex_);
            enqueueLocked(objc::retained(queue), Job{objc::retained(block), &turn, nullptr});
            waitBlocked(
                lock, syncWake_, [&] { return turn.done; }, Clock::time_point::max());
            return;
        }
        case QueueKind::Serial:
            break;
    }
    if (std::find(tRunning.begin(), tRunning.end(), queue) != tRunning.end()) {
        objc::raise(objc::exception_name::InternalInconsistency,
                    "dispatch_sync to queue '" + queue->label +
                        "' from a block it is running would deadlock");
    }
    // While the caller owns the queue, this keeps it (and its pending work) alive.
    const objc::Strong<DispatchQueue> keep = objc::retained(queue);
    {
        SyncTurn turn;
        // Not counted as worker-side work: the caller is a thread of its own
        // (when it is a worker, its job is counted already).
        std::unique_lock lock(mutex_);
        if (!queue->active) {
            queue->active = true;
        } else {
            queue->pending.push_back(Job{nullptr, &turn, nullptr});
            waitBlocked(
                lock, syncWake_, [&] { return turn.granted; }, Clock::time_point::max());
            if (!turn.granted) return;  // shutting down
        }
    }
    runBlock(queue, block);
    std::lock_guard lock(mutex_);
    releaseSerialLocked(queue);
}

void Dispatcher::after(Clock::time_point when, DispatchQueue* queue, Work block) {
    std::lock_guard lock(mutex_);
    const bool earliest = timers_.empty() || when < timers_.begin()->first;
    timers_.emplace(when, Timer{objc::retained(queue), std::move(block)});
    if (!timerThread_.joinable() && !shutdown_) {
        timerThread_ = std::thread([this] { timerMain(); });
    } else if (earliest) {
        timerWake_.notify_one();
    }
}

void Dispatcher::fireDueTimersLocked(Clock::time_point now) {
    while (!timers_.empty() && timers_.begin()->first <= now) {
        auto node = timers_.extract(timers_.begin());
        enqueueLocked(std::move(node.mapped().queue), Job{std::move(node.mapped().block)});
    }
}

void Dispatcher::timerMain() {
    std::unique_lock lock(mutex_);
    while (!shutdown_) {
        fireDueTimersLocked(Clock::now());
        if (timers_.empty()) {
            timerWake_.wait(lock);
        } else {
            timerWake_.wait_until(lock, timers_.begin()->first);
        }
    }
}

}  // namespace foundation::detail
