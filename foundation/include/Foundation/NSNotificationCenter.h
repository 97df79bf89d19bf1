// Broadcasting notifications within the process.
//
// Delivery is synchronous, on the posting thread, in the order observers were
// added. Each post works on a snapshot of the observers: one added during a
// post hears the next post, one removed during a post is not called again.
// The center may be used from any thread.
//
// Observers registered with a selector are not retained, except for the
// length of a delivery to them; the center forgets an observer by itself when
// the observer is destroyed, and never calls one that is being destroyed.
// The sender filter (object) is never retained.
#pragma once

#include <Foundation/NSNotification.h>

#include <objc/block.h>

#include <memory>

class NSDictionary;

class PV_EXPORT NSNotificationCenter : public NSObject {
    OBJC_CLASS(NSNotificationCenter)

    using ObserverBlock = objc::Block<void(NSNotification*)>;

    // The process's center.
    static NSNotificationCenter* defaultCenter() {
        return objc::msgSend<NSNotificationCenter*>(objcClass(), objc::sel<"defaultCenter">());
    }

    // The observer hears notifications named `name` (nil: every name) sent by
    // `object` (nil: any sender) as [observer selector:notification].
    void addObserver(id observer, SEL selector, NSString* name, id object) {
        objc::msgSend<void>(this, objc::sel<"addObserver:selector:name:object:">(), observer,
                            selector, name, object);
    }
    // The block hears matching notifications; with a nil queue it runs on the
    // posting thread, otherwise the queue is sent addOperationWithBlock: with
    // a block that runs it. Answers the observer to pass to removeObserver:
    // (autoreleased; the center holds it until then).
    id addObserverForName(NSString* name, id object, id queue, ObserverBlock* block) {
        return objc::msgSend<id>(this, objc::sel<"addObserverForName:object:queue:usingBlock:">(),
                                 name, object, queue, block);
    }
    // C++ convenience: any callable taking the notification.
    template <class F>
    id addObserverForName(NSString* name, id object, F&& handler) {
        auto block = objc::makeBlock<void(NSNotification*)>(std::forward<F>(handler));
        return addObserverForName(name, object, nullptr, block.get());
    }

    void removeObserver(id observer) {
        objc::msgSend<void>(this, objc::sel<"removeObserver:">(), observer);
    }
    // Removes the observer's registrations for that name (nil: any) and that
    // sender (nil: any).
    void removeObserver(id observer, NSString* name, id object) {
        objc::msgSend<void>(this, objc::sel<"removeObserver:name:object:">(), observer, name,
                            object);
    }

    void postNotification(NSNotification* notification) {
        objc::msgSend<void>(this, objc::sel<"postNotification:">(), notification);
    }
    void postNotificationName(NSString* name, id object) {
        objc::msgSend<void>(this, objc::sel<"postNotificationName:object:">(), name, object);
    }
    void postNotificationName(NSString* name, id object, NSDictionary* userInfo) {
        objc::msgSend<void>(this, objc::sel<"postNotificationName:object:userInfo:">(), name,
                            object, userInfo);
    }

    // The registrations live in a shared registry so that an observer that
    // outlives its center can still tell it, safely, that it is gone.
    struct Registry;

    NSNotificationCenter();
    ~NSNotificationCenter() override;

  private:
    static NSNotificationCenter* imp_defaultCenter(Class cls);
    void imp_addObserverSelectorNameObject(id observer, SEL selector, NSString* name, id object);
    id imp_addObserverForNameObjectQueueUsingBlock(NSString* name, id object, id queue,
                                                   ObserverBlock* block);
    void imp_removeObserver(id observer);
    void imp_removeObserverNameObject(id observer, NSString* name, id object);
    void imp_postNotification(NSNotification* notification);
    void imp_postNotificationNameObject(NSString* name, id object);
    void imp_postNotificationNameObjectUserInfo(NSString* name, id object, NSDictionary* userInfo);

    std::shared_ptr<Registry> registry_;
};
