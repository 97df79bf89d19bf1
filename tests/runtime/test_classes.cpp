#include "test_classes.h"

#include <objc/image.h>

OBJC_DEFINE_CLASS(Counter, NSObject, "Counter")
OBJC_DEFINE_CLASS(SubCounter, Counter, "SubCounter")
OBJC_DEFINE_CLASS(DoublingCounter, SubCounter, "DoublingCounter")

void Counter::objcDefine(objc::ClassBuilder<Counter>& b) {
    b.method<&Counter::imp_add>("add:")
        .method<&Counter::imp_value>("value")
        .method<&Counter::imp_name>("name")
        .classMethod<&Counter::imp_counterWithValue>("counterWithValue:")
        .ivar<&Counter::value_>("_value")
        .ivar<&Counter::name_>("_name")
        .property<&Counter::enabled_>("enabled", objc::Nonatomic | objc::getter("isEnabled"))
        .property<&Counter::owner_>("owner", objc::Weak | objc::Nonatomic);
}

Counter* Counter::imp_counterWithValue(Class cls, int v) {
    auto* c = static_cast<Counter*>(objc::msgSend<id>(cls, objc::sel<"new">()));
    c->value_ = v;
    return objc::autorelease(c);
}

void SubCounter::objcDefine(objc::ClassBuilder<SubCounter>&) {}

void DoublingCounter::objcDefine(objc::ClassBuilder<DoublingCounter>& b) {
    b.method<&DoublingCounter::imp_add>("add:");
}

int DoublingCounter::imp_add(int n) {
    return objc::superSend<int>(this, objc::sel<"add:">(), 2 * n);
}

// The example of <objc/class_builder.h>, kept as it is written there.
OBJC_DEFINE_CLASS(Tally, NSObject, "Tally")

void Tally::objcDefine(objc::ClassBuilder<Tally>& b) {
    b.property<&Tally::count_>("count", objc::Readonly | objc::Nonatomic)
        .property<&Tally::name_>("name", objc::Copy)
        .method<&Tally::imp_init>("init")
        .method<&Tally::imp_add>("add:");
}

Tally* Tally::imp_init() {
    // [super init]: the lookup starts above Tally, the class defining this.
    auto* self = static_cast<Tally*>(objc::superSend<id>(this, objc::sel<"init">()));
    if (self != nullptr) self->count_ = 1;
    return self;
}

OBJC_REGISTER_CLASS(Counter)
OBJC_REGISTER_CLASS(SubCounter)
OBJC_REGISTER_CLASS(DoublingCounter)
