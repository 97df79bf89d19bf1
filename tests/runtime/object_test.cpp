// Object life, associated objects, blocks and key-value coding.
#include <gtest/gtest.h>

#include <objc/block.h>
#include <objc/geometry.h>
#include <objc/runtime.h>

#include <thread>

#include "test_classes.h"

namespace {

using objc::msgSend;
using objc::sel;

// Counts its deaths, so that tests can see when an object really goes.
class Mortal : public NSObject {
    OBJC_CLASS(Mortal)
    ~Mortal() override { ++deaths; }
    static inline int deaths = 0;

  private:
    id imp_copyWithZone(void*) {
        ++copies;
        return objc_retain(this);
    }

  public:
    static inline int copies = 0;
};

}  // namespace

OBJC_DEFINE_CLASS(Mortal, NSObject, "Mortal")
void Mortal::objcDefine(objc::ClassBuilder<Mortal>& b) {
    b.method<&Mortal::imp_copyWithZone>("copyWithZone:");
}

namespace {

TEST(Objects, AutoreleasedObjectsGoAtTheEndOfTheirPoolOrThread) {
    const int before = Mortal::deaths;
    {
        objc::AutoreleasePool outer;
        objc::autorelease(objc::make<Mortal>().leak());
        {
            objc::AutoreleasePool inner;
            objc::autorelease(objc::make<Mortal>().leak());
        }
        EXPECT_EQ(Mortal::deaths, before + 1);
    }
    EXPECT_EQ(Mortal::deaths, before + 2);
    // A thread without a pool releases when it ends.
    std::thread([] { objc::autorelease(objc::make<Mortal>().leak()); }).join();
    EXPECT_EQ(Mortal::deaths, before + 3);
}

TEST(Objects, NilReceiverAnswersZero) {
    EXPECT_EQ(msgSend<int>(nullptr, sel<"add:">(), 3), 0);
    EXPECT_EQ(msgSend<id>(nullptr, sel<"description">()), nullptr);
    EXPECT_EQ(msgSend<double>(nullptr, sel<"doubleValue">()), 0.0);
    const CGRect r = msgSend<CGRect>(nullptr, sel<"frame">());
    EXPECT_EQ(r, CGRectMake(0, 0, 0, 0));
}

TEST(Associations, PoliciesRetainCopyOrAssign) {
    static char retainKey, copyKey, assignKey;
    auto owner = objc::make<Counter>();
    auto value = objc::make<Mortal>();
    const int copiesBefore = Mortal::copies;

    objc_setAssociatedObject(owner, &retainKey, value, OBJC_ASSOCIATION_RETAIN_NONATOMIC);
    EXPECT_EQ(objc_retainCount(value), 2u);
    objc_setAssociatedObject(owner, &copyKey, value, OBJC_ASSOCIATION_COPY);
    EXPECT_EQ(Mortal::copies, copiesBefore + 1);
    objc_setAssociatedObject(owner, &assignKey, value, OBJC_ASSOCIATION_ASSIGN);
    EXPECT_EQ(objc_retainCount(value), 3u);  // assign takes no reference
    EXPECT_EQ(objc_getAssociatedObject(owner, &assignKey), value.get());

    objc_setAssociatedObject(owner, &retainKey, nullptr, OBJC_ASSOCIATION_RETAIN);
    EXPECT_EQ(objc_getAssociatedObject(owner, &retainKey), nullptr);
    EXPECT_EQ(objc_retainCount(value), 2u);
    owner.reset();  // the owner's death releases what it still holds
    EXPECT_EQ(objc_retainCount(value), 1u);
}

TEST(Blocks, CopiesKeepTheBlockAndItsCapturesAlive) {
    static char key;
    const int before = Mortal::deaths;
    auto owner = objc::make<Counter>();
    {
        auto captured = objc::make<Mortal>();
        auto block = objc::makeBlock<int()>(
            [captured] { return static_cast<int>(objc_retainCount(captured)); });
        const id copy = block->copy();
        EXPECT_EQ(copy, block.get());  // a heap block copies to itself
        objc_release(copy);
        objc_setAssociatedObject(owner, &key, block, OBJC_ASSOCIATION_COPY_NONATOMIC);
    }
    EXPECT_EQ(Mortal::deaths, before);
    auto* stored = objc::blockCast<int()>(objc_getAssociatedObject(owner, &key));
    ASSERT_NE(stored, nullptr);
    EXPECT_EQ((*stored)(), 1);
    EXPECT_THROW(objc::blockCast<void(int)>(stored), objc::Exception);
    owner.reset();
    EXPECT_EQ(Mortal::deaths, before + 1);
}

TEST(KeyValueCoding, ReadsAndWritesThroughAccessorsOrInstanceVariablesAndRaisesForOthers) {
    objc::AutoreleasePool pool;
    auto c = objc::make<Counter>();
    c->name_ = NSString::create("first");
    // "name" has an accessor; "_name" is only an instance variable.
    EXPECT_EQ(c->valueForKey(NSSTR("name")), c->name_.get());
    EXPECT_EQ(c->valueForKey(NSSTR("_name")), c->name_.get());
    auto second = NSString::create("second");
    c->setValueForKey(second, NSSTR("_name"));
    EXPECT_EQ(c->name_.get(), second.get());
    EXPECT_EQ(objc_retainCount(second), 2u);
    c->setValueForKey(nullptr, NSSTR("name"));
    EXPECT_EQ(c->name_.get(), nullptr);
    // Unknown keys raise.
    try {
        c->valueForKey(NSSTR("missing"));
        FAIL() << "no exception";
    } catch (const objc::Exception& e) {
        EXPECT_EQ(e.name(), "NSUnknownKeyException");
        EXPECT_NE(e.reason().find("missing"), std::string::npos);
    }
    EXPECT_THROW(c->setValueForKey(nullptr, NSSTR("missing")), objc::Exception);
}

}  // namespace
