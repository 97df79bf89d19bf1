// Classes, methods and their lookup.
#include <gtest/gtest.h>

#include <objc/image.h>
#include <objc/property.h>
#include <objc/runtime.h>

#include <barrier>
#include <cstdlib>
#include <mutex>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "test_classes.h"

namespace {

using objc::msgSend;
using objc::sel;

// Called as every implementation is, with the receiver as id.
int tripleAdd(id self, SEL, int n) {
    return static_cast<Counter*>(self)->value_ += 3 * n;
}
template <int N>
int returnsN(id, SEL) {
    return N;
}

TEST(Classes, LookupAndSendsIncludeSuperclasses) {
    objc::AutoreleasePool pool;
    auto c = objc::make<DoublingCounter>();
    EXPECT_EQ(c->add(2), 4);  // doubled, then the superclass's add:
    Counter* made = Counter::counterWithValue(5);
    EXPECT_EQ(made->value(), 5);
    EXPECT_TRUE(made->isMemberOfClass(Counter::objcClass()));

    const Method inherited = class_getInstanceMethod(SubCounter::objcClass(), sel<"add:">());
    EXPECT_EQ(inherited, class_getInstanceMethod(Counter::objcClass(), sel<"add:">()));
    EXPECT_NE(class_getInstanceMethod(DoublingCounter::objcClass(), sel<"add:">()), inherited);
    EXPECT_EQ(class_getInstanceMethod(Counter::objcClass(), sel<"noSuchMethod">()), nullptr);
    EXPECT_EQ(class_getInstanceMethod(nullptr, sel<"add:">()), nullptr);
    EXPECT_TRUE(class_respondsToSelector(SubCounter::objcClass(), sel<"value">()));
    EXPECT_FALSE(class_respondsToSelector(SubCounter::objcClass(), sel<"counterWithValue:">()));
}

TEST(Classes, AddMethodAddsAnInheritedSelectorAndRefusesAnOwnOne) {
    const Class cls = objc_allocateClassPair(Counter::objcClass(), "AddMethodCounter", 0);
    ASSERT_NE(cls, nullptr);
    objc_registerClassPair(cls);
    const IMP own = reinterpret_cast<IMP>(&tripleAdd);
    // add: is only inherited: adding it to the class itself succeeds.
    EXPECT_TRUE(class_addMethod(cls, sel<"add:">(), own, "i@:i"));
    // Now the class implements it: a second add is refused and changes nothing.
    EXPECT_FALSE(class_addMethod(cls, sel<"add:">(), reinterpret_cast<IMP>(&returnsN<7>), "i@:"));
    EXPECT_EQ(method_getImplementation(class_getInstanceMethod(cls, sel<"add:">())), own);
    EXPECT_FALSE(class_addMethod(nullptr, sel<"add:">(), own, "i@:i"));
    EXPECT_EQ(objc_allocateClassPair(NSObject::objcClass(), "AddMethodCounter", 0), nullptr);

    auto* c = static_cast<Counter*>(msgSend<id>(msgSend<id>(cls, sel<"alloc">()), sel<"init">()));
    EXPECT_EQ(c->add(2), 6);
    objc_release(c);
    // The superclass keeps its own implementation.
    auto plain = objc::make<Counter>();
    EXPECT_EQ(plain->add(2), 2);
}

TEST(Classes, ReplaceMethodAnswersThePreviousImplementation) {
    const Class cls = objc_allocateClassPair(NSObject::objcClass(), "ReplaceMethodTarget", 0);
    objc_registerClassPair(cls);
    EXPECT_EQ(class_replaceMethod(cls, sel<"number">(), reinterpret_cast<IMP>(&returnsN<7>), "i@:"),
              nullptr);
    const id obj = msgSend<id>(cls, sel<"new">());
    EXPECT_EQ(msgSend<int>(obj, sel<"number">()), 7);
    EXPECT_EQ(class_replaceMethod(cls, sel<"number">(), reinterpret_cast<IMP>(&returnsN<8>), "i@:"),
              reinterpret_cast<IMP>(&returnsN<7>));
    EXPECT_EQ(msgSend<int>(obj, sel<"number">()), 8);
    EXPECT_EQ(class_getMethodImplementation(cls, sel<"number">()),
              reinterpret_cast<IMP>(&returnsN<8>));
    // A selector nobody implements resolves to the forwarding entry, never null.
    EXPECT_NE(class_getMethodImplementation(cls, sel<"noSuchMethod">()), nullptr);
    objc_release(obj);
}

TEST(Classes, RacingAddsAndReplacesNeverLoseAnImplementation) {
    const Class cls = objc_allocateClassPair(NSObject::objcClass(), "RacedMethodTarget", 0);
    objc_registerClassPair(cls);
    const IMP imps[] = {reinterpret_cast<IMP>(&returnsN<0>), reinterpret_cast<IMP>(&returnsN<1>),
                        reinterpret_cast<IMP>(&returnsN<2>), reinterpret_cast<IMP>(&returnsN<3>),
                        reinterpret_cast<IMP>(&returnsN<4>), reinterpret_cast<IMP>(&returnsN<5>)};
    constexpr int kThreads = 6;
    constexpr int kSelectors = 4000;
    std::vector<SEL> sels;
    for (int i = 0; i < kSelectors; ++i) {
        sels.push_back(sel_registerName(("raced" + std::to_string(i)).c_str()));
    }
    // Per selector: every implementation that took effect, and every one handed back.
    std::vector<std::multiset<IMP>> installed(kSelectors), returned(kSelectors);
    std::mutex resultsLock;
    // All threads go for each selector together, so their lookups and additions interleave.
    std::barrier round(kThreads);
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back([&, t] {
            for (int i = 0; i < kSelectors; ++i) {
                round.arrive_and_wait();
                const bool replaces = t % 2 == 0;
                IMP previous = nullptr;
                bool tookEffect = true;
                if (replaces) {
                    previous = class_replaceMethod(cls, sels[i], imps[t], "i@:");
                } else {
                    tookEffect = class_addMethod(cls, sels[i], imps[t], "i@:");
                }
                std::lock_guard lock(resultsLock);
                if (tookEffect) installed[i].insert(imps[t]);
                if (previous != nullptr) returned[i].insert(previous);
            }
        });
    }
    for (auto& thread : threads) thread.join();
    for (int i = 0; i < kSelectors; ++i) {
        returned[i].insert(class_getMethodImplementation(cls, sels[i]));
        ASSERT_EQ(returned[i], installed[i]) << "selector " << i;
    }
}

TEST(Classes, DeclaredPropertiesKeepTheirAttributesAndAreInherited) {
    const Class cls = objc_allocateClassPair(NSObject::objcClass(), "PropertyOwner", 0);
    objc_registerClassPair(cls);
    const objc_property_attribute_t block[] = {{"T", "@?"}, {"C", ""}, {"N", ""}};
    const objc_property_attribute_t count[] = {{"T", "q"}, {"N", ""}, {"V", "_count"}};
    EXPECT_TRUE(class_addProperty(cls, "handler", block, 3));
    EXPECT_FALSE(class_addProperty(cls, "handler", count, 3));
    EXPECT_TRUE(class_addProperty(cls, "count", count, 3));

    const objc_property_t handler = class_getProperty(cls, "handler");
    ASSERT_NE(handler, nullptr);
    EXPECT_STREQ(property_getName(handler), "handler");
    EXPECT_STREQ(property_getAttributes(handler), "T@?,C,N");
    EXPECT_STREQ(property_getAttributes(class_getProperty(cls, "count")), "Tq,N,V_count");
    EXPECT_EQ(class_getProperty(cls, "missing"), nullptr);

    // A subclass finds its superclass's properties but lists only its own.
    const Class sub = objc_allocateClassPair(cls, "PropertyOwnerChild", 0);
    objc_registerClassPair(sub);
    EXPECT_EQ(class_getProperty(sub, "handler"), handler);
    unsigned int n = 99;
    EXPECT_EQ(class_copyPropertyList(sub, &n), nullptr);
    EXPECT_EQ(n, 0u);
    objc_property_t* list = class_copyPropertyList(cls, &n);
    ASSERT_EQ(n, 2u);
    EXPECT_EQ(list[0], handler);
    EXPECT_STREQ(property_getName(list[1]), "count");
    EXPECT_EQ(list[2], nullptr);
    std::free(list);
}

TEST(Classes, LoadRunsOnceSuperclassesFirstThenCategories) {
    // Runtime-made classes with +load, loaded as one image.
    static std::string order;
    struct Loads {
        static void base(id, SEL) { order += "B"; }
        static void sub(id, SEL) { order += "S"; }
    };
    const Class base = objc_allocateClassPair(NSObject::objcClass(), "LoadBase", 0);
    const Class sub = objc_allocateClassPair(base, "LoadSub", 0);
    class_addMethod(object_getClass(base), sel<"load">(), reinterpret_cast<IMP>(&Loads::base),
                    "v@:");
    class_addMethod(object_getClass(sub), sel<"load">(), reinterpret_cast<IMP>(&Loads::sub), "v@:");
    objc_registerClassPair(base);
    objc_registerClassPair(sub);
    static Class subClass = sub;
    static Class baseClass = base;
    objc::loadImage(
        {[]() noexcept { return subClass; }, []() noexcept { return baseClass; }},
        {{"LoadBase", "Extras", [](Class) { order += "a"; }, [](Class) { order += "C"; }}});
    EXPECT_EQ(order, "aBSC");
    objc::loadImage({[]() noexcept { return subClass; }});
    EXPECT_EQ(order, "aBSC");
}

}  // namespace

TEST(Classes, PropertiesFromMembersFollowTheirOptions) {
    const objc::AutoreleasePool pool;
    // The example of <objc/class_builder.h>: a property, a method, a super send.
    const auto tally = objc::make<Tally>();
    EXPECT_EQ(tally->count(), 1);
    EXPECT_EQ(tally->add(2), 3);
    EXPECT_FALSE(tally->respondsToSelector(sel<"setCount:">()));
    tally->setName(NSSTR("beads"));
    EXPECT_STREQ(tally->name()->UTF8String(), "beads");
    EXPECT_STREQ(property_getAttributes(class_getProperty(Tally::objcClass(), "count")),
                 "Tq,R,N,V_count");
    EXPECT_STREQ(property_getAttributes(class_getProperty(Tally::objcClass(), "name")),
                 "T@\"NSString\",C,V_name");
    // In a subclass the super send still starts above Tally (else init would run twice).
    const Class child = objc_allocateClassPair(Tally::objcClass(), "TallyChild", 0);
    objc_registerClassPair(child);
    const auto grown = objc::adopt(static_cast<Tally*>(objc::makeInstance("TallyChild").leak()));
    EXPECT_EQ(grown->count(), 1);
    EXPECT_EQ(objc::makeInstance("NoSuchClass"), nullptr);

    // A scalar read through a getter of its own name, and a weak object.
    const auto counter = objc::make<Counter>();
    msgSend<void>(counter.get(), sel<"setEnabled:">(), true);
    EXPECT_TRUE(msgSend<bool>(counter.get(), sel<"isEnabled">()));
    EXPECT_FALSE(counter->respondsToSelector(sel<"enabled">()));
    const std::uint32_t refs = objc_retainCount(counter.get());
    msgSend<void>(counter.get(), sel<"setOwner:">(), counter.get());
    EXPECT_EQ(msgSend<Counter*>(counter.get(), sel<"owner">()), counter.get());
    EXPECT_EQ(objc_retainCount(counter.get()), refs);
    EXPECT_STREQ(property_getAttributes(class_getProperty(Counter::objcClass(), "enabled")),
                 "TB,N,GisEnabled,V_enabled");
    EXPECT_STREQ(property_getAttributes(class_getProperty(Counter::objcClass(), "owner")),
                 "T@\"Counter\",W,N,V_owner");
    objc::ClassBuilder<Counter> misuse(objc_allocateClassPair(Counter::objcClass(), "BadProp", 0));
    EXPECT_THROW(misuse.property<&Counter::value_>("value", objc::Copy), objc::Exception);

    // An atomic getter answers a live object while another thread replaces it.
    std::thread setter([&] {
        for (int i = 0; i < 2000; ++i) {
            const objc::AutoreleasePool inner;
            tally->setName(NSString::create(std::to_string(i)).get());
        }
    });
    for (int i = 0; i < 2000; ++i) {
        const objc::AutoreleasePool inner;
        EXPECT_GT(tally->name()->length(), 0u);
    }
    setter.join();
}
