// Grand-central-dispatch equivalents under the platform's names: queues of
// blocks run by the main run loop (main queue) or by a bounded pool of worker
// threads (global, serial and concurrent queues), delayed work, once-only
// initialisation and groups.
//
// Queues and groups are runtime objects: the main and global queues live for
// the process; a queue from dispatch_queue_create and a group from
// dispatch_group_create belong to the caller, who gives them back with
// dispatch_release. Pending work keeps its queue alive.
//
// Every block runs inside its own autorelease pool. A block that throws ends
// the process like an uncaught exception on the platform: the exception is
// reported on stderr, then std::terminate runs.
#pragma once

#include <objc/block.h>

#include <atomic>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <type_traits>
#include <utility>

namespace foundation::detail {
class DispatchQueue;
class DispatchGroup;
}  // namespace foundation::detail

using dispatch_queue_t = foundation::detail::DispatchQueue*;
using dispatch_group_t = foundation::detail::DispatchGroup*;
using dispatch_block_t = objc::Block<void()>*;
using dispatch_function_t = void (*)(void*);
using dispatch_time_t = std::uint64_t;
using dispatch_once_t = long;

struct dispatch_queue_attr_s;
using dispatch_queue_attr_t = const dispatch_queue_attr_s*;
PV_EXPORT extern const dispatch_queue_attr_s dispatch_queue_attr_concurrent;

#define DISPATCH_QUEUE_SERIAL nullptr
#define DISPATCH_QUEUE_CONCURRENT (&dispatch_queue_attr_concurrent)

inline constexpr long DISPATCH_QUEUE_PRIORITY_HIGH = 2;
inline constexpr long DISPATCH_QUEUE_PRIORITY_DEFAULT = 0;
inline constexpr long DISPATCH_QUEUE_PRIORITY_LOW = -2;
inline constexpr long DISPATCH_QUEUE_PRIORITY_BACKGROUND = INT16_MIN;

// Quality-of-service classes, accepted by dispatch_get_global_queue: the two
// user classes map to the high queue, utility to low, background to background.
enum qos_class_t : unsigned int {
    QOS_CLASS_USER_INTERACTIVE = 0x21,
    QOS_CLASS_USER_INITIATED = 0x19,
    QOS_CLASS_DEFAULT = 0x15,
    QOS_CLASS_UTILITY = 0x11,
    QOS_CLASS_BACKGROUND = 0x09,
    QOS_CLASS_UNSPECIFIED = 0x00,
};

// Nanoseconds on the monotonic clock; NOW and FOREVER are markers.
inline constexpr dispatch_time_t DISPATCH_TIME_NOW = 0;
inline constexpr dispatch_time_t DISPATCH_TIME_FOREVER = ~0ull;
inline constexpr std::uint64_t NSEC_PER_SEC = 1000000000ull;
inline constexpr std::uint64_t NSEC_PER_MSEC = 1000000ull;
inline constexpr std::uint64_t NSEC_PER_USEC = 1000ull;
inline constexpr std::uint64_t USEC_PER_SEC = 1000000ull;

// Queues
// The queue drained by the main thread's run loop.
PV_EXPORT dispatch_queue_t dispatch_get_main_queue();
// One of the four process-wide concurrent queues; an unknown identifier
// answers the default queue. flags must be 0.
PV_EXPORT dispatch_queue_t dispatch_get_global_queue(long identifier, unsigned long flags);
// A new serial (attr DISPATCH_QUEUE_SERIAL) or concurrent queue, owned by the
// caller. The label is copied; it may be null.
PV_EXPORT dispatch_queue_t dispatch_queue_create(const char* label, dispatch_queue_attr_t attr);
PV_EXPORT const char* dispatch_queue_get_label(dispatch_queue_t queue);

PV_EXPORT void dispatch_retain(dispatch_queue_t queue);
PV_EXPORT void dispatch_release(dispatch_queue_t queue);
PV_EXPORT void dispatch_retain(dispatch_group_t group);
PV_EXPORT void dispatch_release(dispatch_group_t group);

// Runs the block later on the queue; the queue holds the block until it has run.
PV_EXPORT void dispatch_async(dispatch_queue_t queue, dispatch_block_t block);
// Runs the block on the queue and waits for it. Concurrent queues run it on
// the calling thread at once; a serial queue runs it on the calling thread
// once the work queued before it is done; the main queue runs it on the main
// thread. Sync to a queue the calling thread is already running (or to the
// main queue from the main thread) would deadlock and raises
// NSInternalInconsistencyException instead.
PV_EXPORT void dispatch_sync(dispatch_queue_t queue, dispatch_block_t block);
// Puts the block on the queue once `when` has come.
PV_EXPORT void dispatch_after(dispatch_time_t when, dispatch_queue_t queue, dispatch_block_t block);
// `when` (DISPATCH_TIME_NOW or an earlier result) moved by delta nanoseconds.
PV_EXPORT dispatch_time_t dispatch_time(dispatch_time_t when, std::int64_t delta);

// Runs the function exactly once per predicate, however many threads arrive
// together; the others wait until it has returned. If it throws, the predicate
// stays unset and the exception reaches the caller.
PV_EXPORT void dispatch_once_f(dispatch_once_t* predicate, void* context,
                               dispatch_function_t function);
PV_EXPORT void dispatch_once(dispatch_once_t* predicate, dispatch_block_t block);

// Groups: a count of unfinished work; notify blocks run when it drops to zero.
PV_EXPORT dispatch_group_t dispatch_group_create();
PV_EXPORT void dispatch_group_enter(dispatch_group_t group);
PV_EXPORT void dispatch_group_leave(dispatch_group_t group);
PV_EXPORT void dispatch_group_async(dispatch_group_t group, dispatch_queue_t queue,
                                    dispatch_block_t block);
PV_EXPORT void dispatch_group_notify(dispatch_group_t group, dispatch_queue_t queue,
                                     dispatch_block_t block);
// 0 once the group is empty, non-zero when the timeout came first.
PV_EXPORT long dispatch_group_wait(dispatch_group_t group, dispatch_time_t timeout);

namespace foundation {
// How many worker threads run global and created queues' work at once.
PV_EXPORT std::size_t dispatchWorkerLimit() noexcept;
}  // namespace foundation

// C++ conveniences: the same calls with any callable (copied into a block).
namespace foundation::detail {
template <class F>
concept DispatchCallable = std::invocable < std::decay_t<F>
& > &&!std::is_convertible_v<F, dispatch_block_t>;

template <class F>
objc::Strong<objc::Block<void()>> dispatchBlock(F&& work) {
    return objc::makeBlock<void()>(std::forward<F>(work));
}
}  // namespace foundation::detail

template <foundation::detail::DispatchCallable F>
void dispatch_async(dispatch_queue_t queue, F&& work) {
    dispatch_async(queue, foundation::detail::dispatchBlock(std::forward<F>(work)).get());
}
template <foundation::detail::DispatchCallable F>
void dispatch_sync(dispatch_queue_t queue, F&& work) {
    dispatch_sync(queue, foundation::detail::dispatchBlock(std::forward<F>(work)).get());
}
template <foundation::detail::DispatchCallable F>
void dispatch_after(dispatch_time_t when, dispatch_queue_t queue, F&& work) {
    dispatch_after(when, queue, foundation::detail::dispatchBlock(std::forward<F>(work)).get());
}
template <foundation::detail::DispatchCallable F>
void dispatch_group_async(dispatch_group_t group, dispatch_queue_t queue, F&& work) {
    dispatch_group_async(group, queue,
                         foundation::detail::dispatchBlock(std::forward<F>(work)).get());
}
template <foundation::detail::DispatchCallable F>
void dispatch_group_notify(dispatch_group_t group, dispatch_queue_t queue, F&& work) {
    dispatch_group_notify(group, queue,
                          foundation::detail::dispatchBlock(std::forward<F>(work)).get());
}
// The fast path (already done) costs one atomic load and makes no block.
template <foundation::detail::DispatchCallable F>
void dispatch_once(dispatch_once_t* predicate, F&& work) {
    if (std::atomic_ref<dispatch_once_t>(*predicate).load(std::memory_order_acquire) == ~0L) {
        return;
    }
    using Fn = std::remove_reference_t<F>;
    dispatch_once_f(predicate, const_cast<std::remove_const_t<Fn>*>(&work),
                    [](void* context) { (*static_cast<Fn*>(context))(); });
}
