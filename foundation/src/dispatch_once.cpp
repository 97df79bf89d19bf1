// dispatch_once: a three-state predicate waited on with atomic waits.
#include <Foundation/dispatch.h>

#include <objc/exception.h>

namespace {

constexpr dispatch_once_t kUnset = 0;
constexpr dispatch_once_t kDone = ~0L;

// While the function runs, the predicate holds a value unique to the running
// thread, so that a recursive call is recognised instead of waiting forever.
dispatch_once_t runningMark() {
    thread_local const char mark = 0;
    return static_cast<dispatch_once_t>(reinterpret_cast<std::uintptr_t>(&mark));
}

}  // namespace

void dispatch_once_f(dispatch_once_t* predicate, void* context, dispatch_function_t function) {
    if (predicate == nullptr || function == nullptr) {
        objc::raise(objc::exception_name::InvalidArgument,
                    "dispatch_once: nil predicate or function");
    }
    std::atomic_ref<dispatch_once_t> state(*predicate);
    const dispatch_once_t mine = runningMark();
    for (;;) {
        dispatch_once_t seen = state.load(std::memory_order_acquire);
        if (seen == kDone) return;
        if (seen == mine) {
            objc::raise(objc::exception_name::InternalInconsistency,
                        "dispatch_once called again from within its own function");
        }
        if (seen == kUnset) {
            if (!state.compare_exchange_strong(seen, mine, std::memory_order_acquire)) continue;
            try {
                function(context);
            } catch (...) {
                state.store(kUnset, std::memory_order_release);
                state.notify_all();
                throw;
            }
            state.store(kDone, std::memory_order_release);
            state.notify_all();
            return;
        }
        state.wait(seen, std::memory_order_acquire);
    }
}

void dispatch_once(dispatch_once_t* predicate, dispatch_block_t block) {
    if (block == nullptr)
        objc::raise(objc::exception_name::InvalidArgument, "dispatch_once: nil block");
    dispatch_once_f(predicate, block,
                    [](void* context) { (*static_cast<objc::Block<void()>*>(context))(); });
}
