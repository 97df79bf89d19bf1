// Small classes written with the C++ class machinery, shared by the runtime tests.
#pragma once

#include <objc/object.h>
#include <objc/string.h>

// A base class with state, an instance variable and a class method.
class Counter : public NSObject {
    OBJC_CLASS(Counter)

    int add(int n) { return objc::msgSend<int>(this, objc::sel<"add:">(), n); }
    int value() { return objc::msgSend<int>(this, objc::sel<"value">()); }
    NSString* name() { return objc::msgSend<NSString*>(this, objc::sel<"name">()); }
    static Counter* counterWithValue(int v) {
        return objc::msgSend<Counter*>(objcClass(), objc::sel<"counterWithValue:">(), v);
    }

    objc::Strong<NSString> name_;
    int value_ = 0;
    bool enabled_ = false;      // the property "enabled", read as isEnabled
    Counter* owner_ = nullptr;  // the weak property "owner"

  private:
    int imp_add(int n) { return value_ += n; }
    int imp_value() const { return value_; }
    NSString* imp_name() const { return name_.get(); }
    static Counter* imp_counterWithValue(Class cls, int v);
};

// Inherits add: and value, overrides nothing.
class SubCounter : public Counter {
    OBJC_CLASS(SubCounter)
};

// Overrides add: and calls the superclass's implementation.
class DoublingCounter : public SubCounter {
    OBJC_CLASS(DoublingCounter)

  private:
    int imp_add(int n);
};

// The example of <objc/class_builder.h>, kept as it is written there.
// clang-format off
class Tally : public NSObject {
    OBJC_CLASS(Tally)

    NSInteger add(NSInteger n) {
        return objc::msgSend<NSInteger>(this, objc::sel<"add:">(), n);
    }
    NSInteger count() { return objc::msgSend<NSInteger>(this, objc::sel<"count">()); }
    NSString* name() { return objc::msgSend<NSString*>(this, objc::sel<"name">()); }
    void setName(NSString* name) {
        objc::msgSend<void>(this, objc::sel<"setName:">(), name);
    }

  private:
    Tally* imp_init();
    NSInteger imp_add(NSInteger n) { return count_ += n; }

    NSInteger count_ = 0;
    objc::Strong<NSString> name_;
};
// clang-format on
