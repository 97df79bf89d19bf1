// The queue functions of dispatch.h.
#include "dispatch_internal.h"

#include <objc/exception.h>

#include <limits>

using foundation::detail::Band;
using foundation::detail::Clock;
using foundation::detail::Dispatcher;
using foundation::detail::DispatchQueue;
using foundation::detail::Job;
using foundation::detail::QueueKind;

struct dispatch_queue_attr_s {
    bool concurrent;
};
const dispatch_queue_attr_s dispatch_queue_attr_concurrent{true};

namespace {

void requireQueueAndBlock(dispatch_queue_t queue, dispatch_block_t block, const char* function) {
    if (queue == nullptr) {
        objc::raise(objc::exception_name::InvalidArgument, std::string(function) + ": nil queue");
    }
    if (block == nullptr) {
        objc::raise(objc::exception_name::InvalidArgument, std::string(function) + ": nil block");
    }
}

Band bandFor(long identifier) {
    switch (identifier) {
        case DISPATCH_QUEUE_PRIORITY_HIGH:
        case QOS_CLASS_USER_INTERACTIVE:
        case QOS_CLASS_USER_INITIATED:
            return foundation::detail::kBandHigh;
        case DISPATCH_QUEUE_PRIORITY_LOW:
        case QOS_CLASS_UTILITY:
            return foundation::detail::kBandLow;
        case DISPATCH_QUEUE_PRIORITY_BACKGROUND:
        case QOS_CLASS_BACKGROUND:
            return foundation::detail::kBandBackground;
        default:
            return foundation::detail::kBandDefault;
    }
}

std::uint64_t nowNanoseconds() {
    const auto since = Clock::now().time_since_epoch();
    const auto ns = std::chrono::duration_cast<std::chrono::nanoseconds>(since).count();
    // Zero means DISPATCH_TIME_NOW; the clock is never that early in practice.
    return ns > 0 ? static_cast<std::uint64_t>(ns) : 1;
}

}  // namespace

dispatch_queue_t dispatch_get_main_queue() {
    return Dispatcher::shared().mainQueue();
}

dispatch_queue_t dispatch_get_global_queue(long identifier, unsigned long /*flags*/) {
    return Dispatcher::shared().globalQueue(bandFor(identifier));
}

dispatch_queue_t dispatch_queue_create(const char* label, dispatch_queue_attr_t attr) {
    auto queue = objc::make<DispatchQueue>();
    const bool concurrent = attr != nullptr && attr->concurrent;
    queue->kind = concurrent ? QueueKind::Concurrent : QueueKind::Serial;
    queue->band = foundation::detail::kBandDefault;
    queue->label = label != nullptr ? label : "";
    return queue.leak();
}

// A null queue asks for the label of the queue running the caller.
const char* dispatch_queue_get_label(dispatch_queue_t queue) {
    if (queue == nullptr) queue = Dispatcher::currentQueue();
    return queue != nullptr ? queue->label.c_str() : "";
}

void dispatch_retain(dispatch_queue_t queue) {
    objc_retain(queue);
}
void dispatch_release(dispatch_queue_t queue) {
    objc_release(queue);
}

void dispatch_async(dispatch_queue_t queue, dispatch_block_t block) {
    requireQueueAndBlock(queue, block, "dispatch_async");
    Dispatcher::shared().async(queue, Job{objc::retained(block)});
}

void dispatch_sync(dispatch_queue_t queue, dispatch_block_t block) {
    requireQueueAndBlock(queue, block, "dispatch_sync");
    Dispatcher::shared().sync(queue, block);
}

void dispatch_after(dispatch_time_t when, dispatch_queue_t queue, dispatch_block_t block) {
    requireQueueAndBlock(queue, block, "dispatch_after");
    if (when == DISPATCH_TIME_FOREVER) return;  // never comes
    if (when == DISPATCH_TIME_NOW) {
        Dispatcher::shared().async(queue, Job{objc::retained(block)});
        return;
    }
    const Clock::time_point at{std::chrono::duration_cast<Clock::duration>(
        std::chrono::nanoseconds(static_cast<std::int64_t>(when)))};
    Dispatcher::shared().after(at, queue, objc::retained(block));
}

dispatch_time_t dispatch_time(dispatch_time_t when, std::int64_t delta) {
    if (when == DISPATCH_TIME_FOREVER) return DISPATCH_TIME_FOREVER;
    const std::uint64_t base = when == DISPATCH_TIME_NOW ? nowNanoseconds() : when;
    // Times stay below the signed range so that they convert to the clock.
    constexpr auto kLatest = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
    if (delta < 0) {
        const std::uint64_t back = static_cast<std::uint64_t>(-(delta + 1)) + 1;
        return back >= base ? 1 : base - back;  // 1: long past, but not NOW
    }
    const auto forward = static_cast<std::uint64_t>(delta);
    if (base >= kLatest || forward >= kLatest - base) return DISPATCH_TIME_FOREVER;
    return base + forward;
}

std::size_t foundation::dispatchWorkerLimit() noexcept {
    return Dispatcher::shared().workerLimit();
}
