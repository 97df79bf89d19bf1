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
        .ivar<&Counter::name_>("_name");
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
    return objc::msgSendSuper<int>(SubCounter::objcClass(), this, objc::sel<"add:">(), 2 * n);
}

OBJC_REGISTER_CLASS(Counter)
OBJC_REGISTER_CLASS(SubCounter)
OBJC_REGISTER_CLASS(DoublingCounter)
