// The method cache never answers a stale implementation, also across threads.
#include <gtest/gtest.h>

#include <objc/runtime.h>

#include <atomic>
#include <thread>
#include <vector>

#include "test_classes.h"

namespace {

using objc::msgSend;
using objc::sel;

int one(id, SEL) {
    return 1;
}
int two(id, SEL) {
    return 2;
}
int three(id, SEL) {
    return 3;
}

struct Hierarchy {
    Class base;
    Class middle;
    Class leaf;
};

// A fresh three-level hierarchy per test, so that tests do not share caches.
Hierarchy makeHierarchy(const std::string& prefix) {
    Hierarchy h{};
    h.base = objc_allocateClassPair(NSObject::objcClass(), (prefix + "Base").c_str(), 0);
    objc_registerClassPair(h.base);
    h.middle = objc_allocateClassPair(h.base, (prefix + "Middle").c_str(), 0);
    objc_registerClassPair(h.middle);
    h.leaf = objc_allocateClassPair(h.middle, (prefix + "Leaf").c_str(), 0);
    objc_registerClassPair(h.leaf);
    class_addMethod(h.base, sel<"number">(), reinterpret_cast<IMP>(&one), "i@:");
    return h;
}

struct Instance {
    explicit Instance(Class cls) : obj(msgSend<id>(cls, sel<"new">())) {}
    ~Instance() { objc_release(obj); }
    int number() const { return msgSend<int>(obj, sel<"number">()); }
    id obj;
};

TEST(MethodCache, SetReplaceAndExchangeOnASuperclassReachCachedSubclasses) {
    const Hierarchy h = makeHierarchy("SetImp");
    Instance leaf(h.leaf);
    EXPECT_EQ(leaf.number(), 1);
    EXPECT_EQ(leaf.number(), 1);  // the second send hits the cache
    method_setImplementation(class_getInstanceMethod(h.base, sel<"number">()),
                             reinterpret_cast<IMP>(&two));
    EXPECT_EQ(leaf.number(), 2);
    class_replaceMethod(h.base, sel<"number">(), reinterpret_cast<IMP>(&three), "i@:");
    EXPECT_EQ(leaf.number(), 3);

    class_addMethod(h.base, sel<"other">(), reinterpret_cast<IMP>(&one), "i@:");
    EXPECT_EQ(msgSend<int>(leaf.obj, sel<"other">()), 1);
    method_exchangeImplementations(class_getInstanceMethod(h.base, sel<"number">()),
                                   class_getInstanceMethod(h.base, sel<"other">()));
    EXPECT_EQ(leaf.number(), 1);
    EXPECT_EQ(msgSend<int>(leaf.obj, sel<"other">()), 3);
}

TEST(MethodCache, AddingToAMiddleClassShadowsWhatTheLeafCached) {
    const Hierarchy h = makeHierarchy("Shadow");
    Instance leaf(h.leaf);
    Instance base(h.base);
    EXPECT_EQ(leaf.number(), 1);
    EXPECT_EQ(leaf.number(), 1);
    ASSERT_TRUE(class_addMethod(h.middle, sel<"number">(), reinterpret_cast<IMP>(&two), "i@:"));
    EXPECT_EQ(leaf.number(), 2);
    EXPECT_EQ(base.number(), 1);
}

TEST(MethodCache, ManySelectorsGrowTheCacheWithoutLosingEntries) {
    const Hierarchy h = makeHierarchy("Grow");
    std::vector<SEL> selectors;
    for (int i = 0; i < 200; ++i) {
        const SEL s = sel_registerName(("grow" + std::to_string(i)).c_str());
        class_addMethod(h.base, s, reinterpret_cast<IMP>(i % 2 == 0 ? &one : &two), "i@:");
        selectors.push_back(s);
    }
    Instance leaf(h.leaf);
    for (int round = 0; round < 2; ++round) {
        for (int i = 0; i < 200; ++i) {
            EXPECT_EQ(msgSend<int>(leaf.obj, selectors[i]), i % 2 == 0 ? 1 : 2);
        }
    }
}

TEST(MethodCache, SendsFromManyThreadsWhileMethodsChange) {
    const Hierarchy h = makeHierarchy("Concurrent");
    const Method m = class_getInstanceMethod(h.base, sel<"number">());
    std::atomic<bool> stop{false};
    std::atomic<int> bad{0};
    std::vector<std::thread> senders;
    for (int t = 0; t < 3; ++t) {
        senders.emplace_back([&, t] {
            objc::AutoreleasePool pool;
            Instance obj(t == 0 ? h.base : t == 1 ? h.middle : h.leaf);
            while (!stop.load()) {
                const int n = obj.number();
                if (n < 1 || n > 3) bad.fetch_add(1);
            }
        });
    }
    const IMP imps[] = {reinterpret_cast<IMP>(&one), reinterpret_cast<IMP>(&two),
                        reinterpret_cast<IMP>(&three)};
    for (int i = 0; i < 2000; ++i) {
        method_setImplementation(m, imps[i % 3]);
        if (i % 100 == 0) {
            const SEL s = sel_registerName(("concurrent" + std::to_string(i)).c_str());
            class_addMethod(i % 200 == 0 ? h.middle : h.leaf, s, imps[0], "i@:");
        }
    }
    // After the last change every thread must see it.
    method_setImplementation(m, imps[1]);
    stop.store(true);
    for (auto& t : senders) t.join();
    EXPECT_EQ(bad.load(), 0);
    Instance leaf(h.leaf);
    EXPECT_EQ(leaf.number(), 2);
}

}  // namespace
