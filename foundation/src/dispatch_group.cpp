// Dispatch groups: counts of unfinished work with completion blocks.
#include "dispatch_internal.h"

#include <objc/exception.h>

using foundation::detail::Clock;
using foundation::detail::Dispatcher;
using foundation::detail::DispatchGroup;
using foundation::detail::Job;

namespace foundation::detail {

void Dispatcher::groupEnter(DispatchGroup* group) {
    std::lock_guard lock(mutex_);
    ++group->count;
}

void Dispatcher::groupLeave(DispatchGroup* group) {
    std::lock_guard lock(mutex_);
    leaveGroupLocked(group);
}

void Dispatcher::leaveGroupLocked(DispatchGroup* group) {
    if (group->count == 0) {
        objc::raise(objc::exception_name::InternalInconsistency,
                    "dispatch_group_leave without a matching dispatch_group_enter");
    }
    if (--group->count > 0) return;
    ++group->emptied;
    syncWake_.notify_all();
    auto waiting = std::move(group->notify);
    group->notify.clear();
    for (auto& [queue, job] : waiting) enqueueLocked(std::move(queue), std::move(job));
}

void Dispatcher::groupNotify(DispatchGroup* group, DispatchQueue* queue, Work block) {
    std::lock_guard lock(mutex_);
    if (group->count == 0) {
        enqueueLocked(objc::retained(queue), Job{std::move(block)});
    } else {
        group->notify.emplace_back(objc::retained(queue), Job{std::move(block)});
    }
}

bool Dispatcher::groupWait(DispatchGroup* group, Clock::time_point deadline) {
    std::unique_lock lock(mutex_);
    if (group->count == 0) return true;
    // Emptied once is enough, even if new work has entered since.
    const std::uint64_t start = group->emptied;
    return waitBlocked(
        lock, syncWake_, [&] { return group->count == 0 || group->emptied != start; }, deadline);
}

}  // namespace foundation::detail

namespace {

void requireGroup(dispatch_group_t group, const char* function) {
    if (group == nullptr) {
        objc::raise(objc::exception_name::InvalidArgument, std::string(function) + ": nil group");
    }
}

}  // namespace

dispatch_group_t dispatch_group_create() {
    return objc::make<DispatchGroup>().leak();
}

void dispatch_retain(dispatch_group_t group) {
    objc_retain(group);
}
void dispatch_release(dispatch_group_t group) {
    objc_release(group);
}

void dispatch_group_enter(dispatch_group_t group) {
    requireGroup(group, "dispatch_group_enter");
    Dispatcher::shared().groupEnter(group);
}

void dispatch_group_leave(dispatch_group_t group) {
    requireGroup(group, "dispatch_group_leave");
    Dispatcher::shared().groupLeave(group);
}

void dispatch_group_async(dispatch_group_t group, dispatch_queue_t queue, dispatch_block_t block) {
    requireGroup(group, "dispatch_group_async");
    if (queue == nullptr || block == nullptr) {
        objc::raise(objc::exception_name::InvalidArgument,
                    "dispatch_group_async: nil queue or block");
    }
    Dispatcher& dispatcher = Dispatcher::shared();
    dispatcher.groupEnter(group);
    dispatcher.async(queue, Job{objc::retained(block), nullptr, objc::retained(group)});
}

void dispatch_group_notify(dispatch_group_t group, dispatch_queue_t queue, dispatch_block_t block) {
    requireGroup(group, "dispatch_group_notify");
    if (queue == nullptr || block == nullptr) {
        objc::raise(objc::exception_name::InvalidArgument,
                    "dispatch_group_notify: nil queue or block");
    }
    Dispatcher::shared().groupNotify(group, queue, objc::retained(block));
}

long dispatch_group_wait(dispatch_group_t group, dispatch_time_t timeout) {
    requireGroup(group, "dispatch_group_wait");
    Clock::time_point deadline = Clock::time_point::max();
    if (timeout == DISPATCH_TIME_NOW) {
        deadline = Clock::now();
    } else if (timeout != DISPATCH_TIME_FOREVER) {
        deadline = Clock::time_point{std::chrono::duration_cast<Clock::duration>(
            std::chrono::nanoseconds(static_cast<std::int64_t>(timeout)))};
    }
    return Dispatcher::shared().groupWait(group, deadline) ? 0 : 1;
}
