#include <Foundation/NSThread.h>

#include <objc/image.h>

#include <pthread.h>

#include <algorithm>
#include <chrono>
#include <thread>

namespace {

// Recorded while the library loads, which happens on the main thread.
std::thread::id mainThreadId() {
    static const std::thread::id id = std::this_thread::get_id();
    return id;
}
[[maybe_unused]] const bool kMainThreadRecorded = (mainThreadId(), true);

}  // namespace

bool foundation::isMainThread() noexcept {
    return std::this_thread::get_id() == mainThreadId();
}

extern "C" int pthread_main_np() {
    return foundation::isMainThread() ? 1 : 0;
}

OBJC_DEFINE_CLASS(NSThread, NSObject, "NSThread")
OBJC_REGISTER_CLASS(NSThread)

void NSThread::objcDefine(objc::ClassBuilder<NSThread>& b) {
    b.classMethod<&NSThread::imp_classIsMainThread>("isMainThread")
        .classMethod<&NSThread::imp_currentThread>("currentThread")
        .classMethod<&NSThread::imp_mainThread>("mainThread")
        .classMethod<&NSThread::imp_sleepForTimeInterval>("sleepForTimeInterval:")
        .property<&NSThread::main_>("isMainThread", objc::Readonly | objc::Nonatomic)
        .method<&NSThread::imp_name>("name")
        .method<&NSThread::imp_setName>("setName:");
}

objc::Strong<NSThread> NSThread::create(bool main) {
    auto thread = objc::make<NSThread>();
    thread->main_ = main;
    return thread;
}

bool NSThread::imp_classIsMainThread(Class) {
    return foundation::isMainThread();
}

NSThread* NSThread::imp_mainThread(Class) {
    // Lives for the process, like the main thread itself.
    static NSThread* const main = create(true).leak();
    return main;
}

NSThread* NSThread::imp_currentThread(Class cls) {
    if (foundation::isMainThread()) return imp_mainThread(cls);
    // Released when the thread ends.
    thread_local const objc::Strong<NSThread> current = create(false);
    return current.get();
}

void NSThread::imp_sleepForTimeInterval(Class, NSTimeInterval seconds) {
    if (!(seconds > 0)) return;  // also NaN
    std::this_thread::sleep_for(std::chrono::duration<double>(std::min(seconds, 1e9)));
}

NSString* NSThread::imp_name() {
    std::lock_guard lock(nameLock_);
    if (!name_) return NSSTR("");
    return objc::autorelease(objc::retained(name_.get()).leak());
}

void NSThread::imp_setName(NSString* name) {
    auto copy = objc::adopt(static_cast<NSString*>(objc::msgSend<id>(name, objc::sel<"copy">())));
    if (!main_ && this == imp_currentThread(objcClass()) && copy) {
        // Visible to debuggers; the kernel keeps at most 15 bytes. The main
        // thread's kernel name is the process's own, so it is left alone.
        pthread_setname_np(pthread_self(), copy->utf8().substr(0, 15).c_str());
    }
    std::lock_guard lock(nameLock_);
    std::swap(name_, copy);  // the old name is released after unlocking
}
