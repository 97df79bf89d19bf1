// Threads as objects: which thread is the main one, and names for threads.
//
// The main thread is the thread that loaded Foundation: a program loads its
// shared libraries on its main thread, before main() runs.
#pragma once

#include <objc/object.h>
#include <objc/string.h>

#include <mutex>

using NSTimeInterval = double;

class PV_EXPORT NSThread : public NSObject {
    OBJC_CLASS(NSThread)

    // +isMainThread: whether the calling thread is the main thread.
    static bool isMainThread() {
        return objc::msgSend<bool>(objcClass(), objc::sel<"isMainThread">());
    }
    // The object of the calling thread, made on first use; it lives as long
    // as its thread (the main thread's for the process).
    static NSThread* currentThread() {
        return objc::msgSend<NSThread*>(objcClass(), objc::sel<"currentThread">());
    }
    static NSThread* mainThread() {
        return objc::msgSend<NSThread*>(objcClass(), objc::sel<"mainThread">());
    }
    static void sleepForTimeInterval(NSTimeInterval seconds) {
        objc::msgSend<void>(objcClass(), objc::sel<"sleepForTimeInterval:">(), seconds);
    }

    // -isMainThread (C++ cannot overload it with the class method's name).
    bool isMain() { return objc::msgSend<bool>(this, objc::sel<"isMainThread">()); }
    NSString* name() { return objc::msgSend<NSString*>(this, objc::sel<"name">()); }
    void setName(NSString* name) { objc::msgSend<void>(this, objc::sel<"setName:">(), name); }

    NSThread() = default;

  private:
    static bool imp_classIsMainThread(Class cls);
    static NSThread* imp_currentThread(Class cls);
    static NSThread* imp_mainThread(Class cls);
    static void imp_sleepForTimeInterval(Class cls, NSTimeInterval seconds);
    NSString* imp_name();
    void imp_setName(NSString* name);

    static objc::Strong<NSThread> create(bool main);

    bool main_ = false;
    std::mutex nameLock_;
    objc::Strong<NSString> name_;  // guarded by nameLock_
};

namespace foundation {
// Whether the calling thread is the main thread, asked without a message.
PV_EXPORT bool isMainThread() noexcept;
}  // namespace foundation

// 1 on the main thread, 0 elsewhere, as the BSD call answers.
extern "C" PV_EXPORT int pthread_main_np();
