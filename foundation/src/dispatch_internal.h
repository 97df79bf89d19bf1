// The dispatcher behind dispatch.h and the main run loop.
//
// One mutex guards every queue, the worker pool, the timers and the main
// loop's state: the work is coarse (blocks), so simplicity beats contention
// here, and there is no lock order to get wrong. Objects are only ever
// released with the mutex unlocked, because a dealloc may dispatch again.
#pragma once

#include <Foundation/dispatch.h>

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace foundation::detail {

using Clock = std::chrono::steady_clock;
using Work = objc::Strong<objc::Block<void()>>;

enum class QueueKind { Main, Global, Serial, Concurrent };

// The worker pool serves its bands highest first.
enum Band : int { kBandHigh, kBandDefault, kBandLow, kBandBackground, kBandCount };

// A thread in dispatch_sync waiting for its block's turn (serial queues hand
// the queue over: the caller runs the block itself), or for the main thread
// to have run it (main queue). Lives on the waiting thread's stack.
struct SyncTurn {
    bool granted = false;  // serial: the caller now owns the queue
    bool done = false;     // main: the block has run
};

struct Job {
    Work block;
    SyncTurn* turn = nullptr;
    objc::Strong<DispatchGroup> group{};  // left once the block has run
};

class DispatchQueue : public NSObject {
    OBJC_CLASS(DispatchQueue)

    DispatchQueue() = default;

    QueueKind kind = QueueKind::Serial;
    Band band = kBandDefault;
    std::string label;
    // Guarded by the dispatcher's mutex.
    std::deque<Job> pending;  // main and serial queues
    bool active = false;      // serial: a worker or a sync caller owns the queue

  private:
    NSString* imp_description();
};

class DispatchGroup : public NSObject {
    OBJC_CLASS(DispatchGroup)

    DispatchGroup() = default;

    // Guarded by the dispatcher's mutex.
    long count = 0;
    std::uint64_t emptied = 0;  // times the count came back to zero
    std::vector<std::pair<objc::Strong<DispatchQueue>, Job>> notify;
};

class Dispatcher {
  public:
    static Dispatcher& shared();

    Dispatcher();
    ~Dispatcher();
    Dispatcher(const Dispatcher&) = delete;
    Dispatcher& operator=(const Dispatcher&) = delete;

    DispatchQueue* mainQueue() const noexcept { return main_; }
    DispatchQueue* globalQueue(Band band) const noexcept { return global_[band]; }
    std::size_t workerLimit() const noexcept { return limit_; }

    void async(DispatchQueue* queue, Job job);
    void sync(DispatchQueue* queue, objc::Block<void()>* block);
    void after(Clock::time_point when, DispatchQueue* queue, Work block);

    void groupEnter(DispatchGroup* group);
    void groupLeave(DispatchGroup* group);
    void groupNotify(DispatchGroup* group, DispatchQueue* queue, Work block);
    bool groupWait(DispatchGroup* group, Clock::time_point deadline);

    // The main loop. Every mode ends on a stop request.
    enum class RunMode { UntilIdle, UntilIdleAndBackground, UntilDeadline, OnePass };
    enum class RunEnd { Stopped, Idle, TimedOut, Ran };
    RunEnd runMain(RunMode mode, Clock::time_point deadline);
    void stopMain();

    // Runs a block as every queue does: inside an autorelease pool, with the
    // queue marked as the thread's current one; an exception ends the process.
    static void runBlock(DispatchQueue* queue, objc::Block<void()>* block) noexcept;
    // The queue whose block the calling thread is running, or null.
    static DispatchQueue* currentQueue() noexcept;

  private:
    struct Ready {
        objc::Strong<DispatchQueue> queue;
        Job job;
        bool drainSerial = false;  // take the next job from the serial queue
    };
    struct Timer {
        objc::Strong<DispatchQueue> queue;
        Work block;
    };

    // Takes the caller's reference to the queue; it is never the last one, so
    // dropping it here cannot run a dealloc under the mutex.
    void enqueueLocked(objc::Strong<DispatchQueue> queue, Job job);
    void pushReadyLocked(Band band, Ready ready);
    void wakeWorkerLocked();
    void finishLocked(DispatchQueue* queue, bool serial);
    void releaseSerialLocked(DispatchQueue* queue);
    void leaveGroupLocked(DispatchGroup* group);
    void fireDueTimersLocked(Clock::time_point now);
    bool takeReadyLocked(Ready& out);
    void workerMain();
    void timerMain();
    // Waits on cv; a worker thread waiting here lets the pool start another
    // worker so that blocked jobs cannot starve the queues they wait for.
    bool waitBlocked(std::unique_lock<std::mutex>& lock, std::condition_variable& cv,
                     const std::function<bool()>& done, Clock::time_point deadline);

    std::mutex mutex_;
    std::condition_variable mainWake_;
    std::condition_variable workWake_;
    std::condition_variable timerWake_;
    std::condition_variable syncWake_;  // sync turns and group waits

    DispatchQueue* main_ = nullptr;  // immortal
    DispatchQueue* global_[kBandCount] = {};
    std::size_t limit_ = 2;

    std::deque<Ready> ready_[kBandCount];
    std::size_t readyCount_ = 0;
    std::vector<std::thread> workers_;
    std::size_t idle_ = 0;         // workers waiting for work
    std::size_t running_ = 0;      // workers running a job, not blocked in a wait; <= limit_
    std::size_t outstanding_ = 0;  // worker-side jobs queued or running
    bool shutdown_ = false;

    std::multimap<Clock::time_point, Timer> timers_;  // equal times keep their order
    std::thread timerThread_;

    bool stopRequested_ = false;
};

}  // namespace foundation::detail
