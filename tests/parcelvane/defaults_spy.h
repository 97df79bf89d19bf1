// Watches what reaches the standard user defaults while it lives: the
// implementations of setObject:forKey:, addObserver:forKeyPath:options:context:
// and removeObserver:forKeyPath: are wrapped (and restored afterwards), so
// every call is recorded and then passed on. One spy at a time, on one thread.
#pragma once

#include <Foundation/NSUserDefaults.h>

#include <objc/message.h>
#include <objc/runtime.h>
#include <objc/strong.h>

#include <string>
#include <vector>

namespace parcelvane_testing {

class DefaultsSpy {
  public:
    struct Write {
        objc::Strong<objc_object> value;
        std::string key;
    };
    struct Registration {
        id observer;
        std::string keyPath;
        NSUInteger options = 0;
        void* context = nullptr;
    };

    DefaultsSpy() {
        current() = this;
        setObject_ = swap("setObject:forKey:", reinterpret_cast<IMP>(&spySetObject));
        addObserver_ =
            swap("addObserver:forKeyPath:options:context:", reinterpret_cast<IMP>(&spyAdd));
        removeObserver_ = swap("removeObserver:forKeyPath:", reinterpret_cast<IMP>(&spyRemove));
    }
    ~DefaultsSpy() {
        swap("setObject:forKey:", setObject_);
        swap("addObserver:forKeyPath:options:context:", addObserver_);
        swap("removeObserver:forKeyPath:", removeObserver_);
        current() = nullptr;
    }
    DefaultsSpy(const DefaultsSpy&) = delete;
    DefaultsSpy& operator=(const DefaultsSpy&) = delete;

    std::vector<Write> writes;
    std::vector<Registration> added;
    std::vector<Registration> removed;

  private:
    static DefaultsSpy*& current() {
        static DefaultsSpy* spy = nullptr;
        return spy;
    }
    static IMP swap(const char* selector, IMP imp) {
        const Method m =
            class_getInstanceMethod(NSUserDefaults::objcClass(), sel_registerName(selector));
        return method_setImplementation(m, imp);
    }
    static std::string text(NSString* s) { return s != nullptr ? s->utf8() : "(nil)"; }

    static void spySetObject(id self, SEL sel, id value, NSString* key) {
        current()->writes.push_back({objc::retained(value), text(key)});
        objc::callImp<void>(current()->setObject_, self, sel, value, key);
    }
    static void spyAdd(id self, SEL sel, id observer, NSString* keyPath, NSUInteger options,
                       void* context) {
        current()->added.push_back({observer, text(keyPath), options, context});
        objc::callImp<void>(current()->addObserver_, self, sel, observer, keyPath, options,
                            context);
    }
    static void spyRemove(id self, SEL sel, id observer, NSString* keyPath) {
        current()->removed.push_back({observer, text(keyPath), 0, nullptr});
        objc::callImp<void>(current()->removeObserver_, self, sel, observer, keyPath);
    }

    IMP setObject_ = nullptr;
    IMP addObserver_ = nullptr;
    IMP removeObserver_ = nullptr;
};

}  // namespace parcelvane_testing
