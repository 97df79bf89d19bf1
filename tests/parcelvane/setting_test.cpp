// STSetting against the process's standard user defaults (pointed at a
// scratch container): reads and writes go straight through, and every live
// setting of a key hears of every change of that key.
#include <gtest/gtest.h>

#include "defaults_spy.h"
#include "scratch_defaults.h"
#include "settings-table/STSetting.h"

#include <Foundation/NSNull.h>
#include <Foundation/NSNumber.h>

#include <objc/block.h>

#include <vector>

namespace {

using parcelvane_testing::DefaultsSpy;
using parcelvane_testing::ScratchDefaults;

objc::Strong<STSetting::ChangeBlock> counting(int& count) {
    return objc::makeBlock<void()>([&count] { ++count; });
}

// A setting owned by the test alone, made the way the framework makes them.
objc::Strong<STSetting> settingFor(NSString* key) {
    const objc::AutoreleasePool pool;
    return objc::retained(STSetting::settingWithKey(key));
}

class SettingTest : public testing::Test {
  protected:
    const objc::AutoreleasePool pool_;
    const ScratchDefaults scratch_;
    NSUserDefaults* defaults() const { return scratch_.defaults(); }
};

// Counts the base initialiser's runs on one object.
struct InitSpy {
    static inline id watched = nullptr;
    static inline int runs = 0;
    static inline IMP original = nullptr;
    static id init(id self, SEL sel) {
        if (self == watched) ++runs;
        return objc::callImp<id>(original, self, sel);
    }
    InitSpy() {
        original = method_setImplementation(
            class_getInstanceMethod(NSObject::objcClass(), sel_registerName("init")),
            reinterpret_cast<IMP>(&init));
    }
    ~InitSpy() {
        method_setImplementation(
            class_getInstanceMethod(NSObject::objcClass(), sel_registerName("init")), original);
        watched = nullptr;
        runs = 0;
    }
};

TEST_F(SettingTest, ExistsByNameAsAnNSObject) {
    const Class cls = objc_getClass("STSetting");
    ASSERT_NE(cls, nullptr);
    EXPECT_EQ(class_getSuperclass(cls), NSObject::objcClass());
}

TEST_F(SettingTest, AKeylessSettingIsInertAndNeverTouchesTheObserverRegistry) {
    defaults()->setObjectForKey(NSSTR("stored"), NSSTR("anything"));
    DefaultsSpy spy;
    {
        const InitSpy initSpy;
        STSetting* fresh = objc::alloc<STSetting>();
        InitSpy::watched = fresh;
        const auto setting = objc::adopt(fresh->initWithKey(nullptr));
        EXPECT_EQ(setting.get(), fresh);
        EXPECT_EQ(InitSpy::runs, 0) << "the base initialiser must not run";
        EXPECT_EQ(setting->key(), nullptr);
        EXPECT_EQ(setting->value(), nullptr);
        setting->setValue(NSSTR("ignored"));
    }
    {
        const objc::AutoreleasePool inner;
        STSetting* autoreleased = STSetting::settingWithKey(nullptr);
        ASSERT_NE(autoreleased, nullptr);
        EXPECT_EQ(autoreleased->value(), nullptr);
    }
    EXPECT_TRUE(spy.added.empty());
    EXPECT_TRUE(spy.removed.empty());
    EXPECT_TRUE(spy.writes.empty());
}

TEST_F(SettingTest, ObservesItsKeyFromCreationToDestruction) {
    DefaultsSpy spy;
    id observer = nullptr;
    {
        const objc::AutoreleasePool inner;
        STSetting* setting = STSetting::settingWithKey(NSSTR("observed"));
        observer = setting;
        EXPECT_TRUE(setting->key()->isEqualToString(NSSTR("observed")));
        ASSERT_EQ(spy.added.size(), 1u);
        EXPECT_EQ(spy.added[0].observer, setting);
        EXPECT_EQ(spy.added[0].keyPath, "observed");
        EXPECT_EQ(spy.added[0].options, 1u);
        EXPECT_EQ(spy.added[0].context, nullptr);
        EXPECT_TRUE(spy.removed.empty());
    }
    ASSERT_EQ(spy.removed.size(), 1u);
    EXPECT_EQ(spy.removed[0].observer, observer);
    EXPECT_EQ(spy.removed[0].keyPath, "observed");
    // A dead setting is not told: this write would reach freed memory.
    defaults()->setObjectForKey(NSSTR("after"), NSSTR("observed"));
}

TEST_F(SettingTest, ReadsAndWritesTheStandardDefaultsWithoutCaching) {
    const auto setting = settingFor(NSSTR("colour"));
    EXPECT_EQ(setting->value(), nullptr);

    defaults()->setObjectForKey(NSSTR("red"), NSSTR("colour"));
    EXPECT_EQ(setting->value(), defaults()->objectForKey(NSSTR("colour")));

    setting->setValue(NSSTR("blue"));
    EXPECT_TRUE(NSSTR("blue")->isEqual(defaults()->objectForKey(NSSTR("colour"))));

    setting->setValue(nullptr);
    EXPECT_EQ(defaults()->objectForKey(NSSTR("colour")), nullptr);
    EXPECT_EQ(setting->value(), nullptr);
}

TEST_F(SettingTest, WritingTheStoredObjectItselfWritesNothingAndCallsNoHandler) {
    defaults()->setObjectForKey(NSSTR("kept"), NSSTR("same"));
    const auto setting = settingFor(NSSTR("same"));
    int changes = 0;
    setting->setValueDidChangeBlock(counting(changes).get());
    changes = 0;

    DefaultsSpy spy;
    setting->setValue(setting->value());
    EXPECT_TRUE(spy.writes.empty());
    EXPECT_EQ(changes, 0);
}

TEST_F(SettingTest, AnEqualButDistinctObjectIsWrittenAndEveryLiveSettingOfTheKeyIsToldOnce) {
    const auto first = NSString::create("on");
    const auto second = NSString::create("on");
    ASSERT_NE(first.get(), second.get());
    ASSERT_TRUE(first->isEqual(second));
    defaults()->setObjectForKey(first, NSSTR("mode"));

    const auto writer = settingFor(NSSTR("mode"));
    const auto listener = settingFor(NSSTR("mode"));
    const auto bystander = settingFor(NSSTR("other mode"));
    int writerChanges = 0;
    int listenerChanges = 0;
    int bystanderChanges = 0;
    writer->setValueDidChangeBlock(counting(writerChanges).get());
    listener->setValueDidChangeBlock(counting(listenerChanges).get());
    bystander->setValueDidChangeBlock(counting(bystanderChanges).get());
    writerChanges = listenerChanges = bystanderChanges = 0;

    DefaultsSpy spy;
    writer->setValue(second);
    // One write: the echo that each setting passes back to setValue: is the
    // object now stored, which is not written again.
    ASSERT_EQ(spy.writes.size(), 1u);
    EXPECT_EQ(spy.writes[0].value.get(), second.get());
    EXPECT_EQ(spy.writes[0].key, "mode");
    EXPECT_EQ(writerChanges, 1);
    EXPECT_EQ(listenerChanges, 1);
    EXPECT_EQ(bystanderChanges, 0);
    EXPECT_EQ(defaults()->objectForKey(NSSTR("mode")), second.get());
}

TEST_F(SettingTest, InstallingAHandlerCallsItOnceAtOnceAndNilCallsNothing) {
    const auto setting = settingFor(NSSTR("handled"));
    int firstCalls = 0;
    int secondCalls = 0;
    {
        // The setting keeps its own copy: the caller's reference goes away.
        const auto block = counting(firstCalls);
        setting->setValueDidChangeBlock(block.get());
    }
    EXPECT_EQ(firstCalls, 1);
    ASSERT_NE(setting->valueDidChangeBlock(), nullptr);
    defaults()->setObjectForKey(NSSTR("a"), NSSTR("handled"));
    EXPECT_EQ(firstCalls, 2);

    setting->setValueDidChangeBlock(counting(secondCalls).get());
    EXPECT_EQ(firstCalls, 2);
    EXPECT_EQ(secondCalls, 1);
    defaults()->setObjectForKey(NSSTR("b"), NSSTR("handled"));
    EXPECT_EQ(firstCalls, 2) << "a replaced handler is not called again";
    EXPECT_EQ(secondCalls, 2);

    setting->setValueDidChangeBlock(nullptr);
    EXPECT_EQ(setting->valueDidChangeBlock(), nullptr);
    EXPECT_EQ(secondCalls, 2);
    defaults()->setObjectForKey(NSSTR("c"), NSSTR("handled"));
    EXPECT_EQ(secondCalls, 2);
}

TEST_F(SettingTest, AHandlerMayReplaceItselfWhileItRuns) {
    const auto setting = settingFor(NSSTR("self-replacing"));
    int replacementCalls = 0;
    int originalCalls = 0;
    int originalReturns = 0;
    const auto replacement = counting(replacementCalls);
    STSetting* raw = setting.get();
    const auto replacing = [raw, &originalCalls, &originalReturns, &replacement] {
        // The first call comes from the installation itself.
        if (++originalCalls == 2) raw->setValueDidChangeBlock(replacement.get());
        // Still running on the block's own captures after it was replaced.
        ++originalReturns;
    };
    setting->setValueDidChangeBlock(objc::makeBlock<void()>(replacing).get());
    defaults()->setBoolForKey(true, NSSTR("self-replacing"));
    EXPECT_EQ(originalCalls, 2);
    EXPECT_EQ(originalReturns, 2);
    EXPECT_EQ(replacementCalls, 1);
    defaults()->setBoolForKey(false, NSSTR("self-replacing"));
    EXPECT_EQ(originalCalls, 2);
    EXPECT_EQ(replacementCalls, 2);
}

TEST_F(SettingTest, AChangeMadeByAnybodyCallsTheHandlersOfEveryLiveSetting) {
    std::vector<objc::Strong<STSetting>> settings;
    std::vector<int> changes(3, 0);
    for (int& count : changes) {
        settings.push_back(settingFor(NSSTR("shared")));
        settings.back()->setValueDidChangeBlock(counting(count).get());
        count = 0;
    }
    defaults()->setObjectForKey(NSNumber::create(7), NSSTR("shared"));  // the host
    defaults()->setBoolForKey(true, NSSTR("shared"));                   // a typed setter
    settings[0]->setValue(NSSTR("from a setting"));                     // another setting
    for (const int count : changes) EXPECT_EQ(count, 3);

    // Once a setting is gone, the others are still told.
    settings.pop_back();
    defaults()->setObjectForKey(NSSTR("later"), NSSTR("shared"));
    EXPECT_EQ(changes[0], 4);
    EXPECT_EQ(changes[1], 4);
    EXPECT_EQ(changes[2], 3);
}

// When the key is removed, the change carries the NSNull marker, which is not
// the (absent) stored value, so each setting hands it to setObject:forKey:.
// The defaults keep property lists only and refuse it; the key stays absent,
// the removal completes and every handler runs.
TEST_F(SettingTest, ARemovalPassesTheNullMarkerOnAndLeavesTheKeyAbsent) {
    defaults()->setObjectForKey(NSSTR("present"), NSSTR("removed"));
    const auto first = settingFor(NSSTR("removed"));
    const auto second = settingFor(NSSTR("removed"));
    int firstChanges = 0;
    int secondChanges = 0;
    first->setValueDidChangeBlock(counting(firstChanges).get());
    second->setValueDidChangeBlock(counting(secondChanges).get());
    firstChanges = secondChanges = 0;

    DefaultsSpy spy;
    EXPECT_NO_THROW(defaults()->removeObjectForKey(NSSTR("removed")));
    ASSERT_EQ(spy.writes.size(), 2u);
    for (const auto& write : spy.writes) {
        EXPECT_EQ(write.value.get(), NSNull::null());
        EXPECT_EQ(write.key, "removed");
    }
    EXPECT_EQ(firstChanges, 1);
    EXPECT_EQ(secondChanges, 1);
    EXPECT_EQ(defaults()->objectForKey(NSSTR("removed")), nullptr);
    EXPECT_EQ(first->value(), nullptr);

    // Writing nil through a setting removes the key the same way.
    defaults()->setObjectForKey(NSSTR("back"), NSSTR("removed"));
    spy.writes.clear();
    EXPECT_NO_THROW(first->setValue(nullptr));
    ASSERT_EQ(spy.writes.size(), 3u);  // the removal, then one refused echo per setting
    EXPECT_EQ(spy.writes[0].value.get(), nullptr);
    EXPECT_EQ(defaults()->objectForKey(NSSTR("removed")), nullptr);
    EXPECT_EQ(firstChanges, 3);
    EXPECT_EQ(secondChanges, 3);
}

TEST_F(SettingTest, ANonPropertyListValueIsRefusedToTheWriter) {
    const auto setting = settingFor(NSSTR("refused"));
    EXPECT_THROW(setting->setValue(NSNull::null()), objc::Exception);
    EXPECT_EQ(defaults()->objectForKey(NSSTR("refused")), nullptr);
}

}  // namespace
