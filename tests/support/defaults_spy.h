// Records every -[NSUserDefaults setObject:forKey:] while it lives, passing it on. One at a time.
#pragma once

#include <Foundation/NSUserDefaults.h>

#include <objc/message.h>
#include <objc/runtime.h>
#include <objc/strong.h>

#include <string>
#include <vector>

namespace testsupport {

class DefaultsSpy {
  public:
    struct Write {
        objc::Strong<objc_object> value;
        std::string key;
    };

    DefaultsSpy() {
        current() = this;
        saved_ = method_setImplementation(method(), objc::implementationOf<&spySetObject>());
    }
    ~DefaultsSpy() {
        method_setImplementation(method(), saved_);
        current() = nullptr;
    }
    DefaultsSpy(const DefaultsSpy&) = delete;
    DefaultsSpy& operator=(const DefaultsSpy&) = delete;

    std::vector<Write> writes;

  private:
    static DefaultsSpy*& current() {
        static DefaultsSpy* spy = nullptr;
        return spy;
    }
    static Method method() {
        return class_getInstanceMethod(NSUserDefaults::objcClass(),
                                       objc::sel<"setObject:forKey:">());
    }
    static void spySetObject(id self, SEL sel, id value, NSString* key) {
        current()->writes.push_back(
            {objc::retained(value), key != nullptr ? key->utf8() : "(nil)"});
        objc::callImp<void>(current()->saved_, self, sel, value, key);
    }

    IMP saved_ = nullptr;
};

}  // namespace testsupport
