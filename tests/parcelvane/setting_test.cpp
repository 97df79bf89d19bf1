// STSetting against the standard defaults in a scratch container: writes go through, settings hear.
#include <gtest/gtest.h>

#include "defaults_spy.h"
#include "scratch_defaults.h"
#include "settings-table/STSetting.h"

#include <Foundation/NSNull.h>
#include <Foundation/NSNumber.h>

#include <objc/block.h>

namespace {

using testsupport::DefaultsSpy;

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
    // A setting of the key with a counting handler, counted from zero.
    objc::Strong<STSetting> counted(NSString* key, int& changes) {
        auto setting = settingFor(key);
        setting->setValueDidChangeBlock(counting(changes).get());
        changes = 0;  // installing a handler calls it once
        return setting;
    }

    const objc::AutoreleasePool pool_;
    const testsupport::ScratchDefaults scratch_;
    NSUserDefaults* defaults() const { return scratch_.defaults(); }
};

TEST_F(SettingTest, ReadsAndWritesTheStandardDefaultsWithoutCaching) {
    const auto setting = settingFor(NSSTR("colour"));
    EXPECT_EQ(setting->value(), nullptr);
    defaults()->setObjectForKey(NSSTR("red"), NSSTR("colour"));
    EXPECT_EQ(setting->value(), defaults()->objectForKey(NSSTR("colour")));
    setting->setValue(NSSTR("blue"));
    EXPECT_TRUE(NSSTR("blue")->isEqual(defaults()->objectForKey(NSSTR("colour"))));
    setting->setValue(nullptr);
    EXPECT_EQ(defaults()->objectForKey(NSSTR("colour")), nullptr);
    // Only property lists are stored: the writer hears of anything else.
    EXPECT_THROW(setting->setValue(NSNull::null()), objc::Exception);
    EXPECT_EQ(defaults()->objectForKey(NSSTR("colour")), nullptr);
}

TEST_F(SettingTest, EveryLiveSettingOfTheKeyHearsOfAChangeOnce) {
    const auto first = NSString::create("on");
    const auto second = NSString::create("on");
    defaults()->setObjectForKey(first, NSSTR("mode"));
    int writerChanges = 0, listenerChanges = 0, bystanderChanges = 0;
    const auto writer = counted(NSSTR("mode"), writerChanges);
    auto listener = counted(NSSTR("mode"), listenerChanges);
    const auto bystander = counted(NSSTR("other mode"), bystanderChanges);

    DefaultsSpy spy;
    // Equal but distinct: written once; each echo is the stored object, not written again.
    writer->setValue(second);
    ASSERT_EQ(spy.writes.size(), 1u);
    EXPECT_EQ(spy.writes[0].value.get(), second.get());
    EXPECT_EQ(writerChanges, 1);
    EXPECT_EQ(listenerChanges, 1);
    EXPECT_EQ(bystanderChanges, 0);

    defaults()->setObjectForKey(NSNumber::create(7), NSSTR("mode"));  // the host
    EXPECT_EQ(writerChanges, 2);
    EXPECT_EQ(listenerChanges, 2);
    // A dead setting is not told (that would reach freed memory); the others are.
    listener.reset();
    defaults()->setBoolForKey(true, NSSTR("mode"));
    EXPECT_EQ(writerChanges, 3);
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

// A removal's change carries NSNull, which each setting hands to setObject:forKey: and the
// defaults refuse: the key stays absent and every handler runs.
TEST_F(SettingTest, ARemovalPassesTheNullMarkerOnAndLeavesTheKeyAbsent) {
    defaults()->setObjectForKey(NSSTR("present"), NSSTR("removed"));
    int firstChanges = 0, secondChanges = 0;
    const auto first = counted(NSSTR("removed"), firstChanges);
    const auto second = counted(NSSTR("removed"), secondChanges);

    DefaultsSpy spy;
    EXPECT_NO_THROW(defaults()->removeObjectForKey(NSSTR("removed")));
    ASSERT_EQ(spy.writes.size(), 2u);
    for (const auto& write : spy.writes) EXPECT_EQ(write.value.get(), NSNull::null());
    EXPECT_EQ(firstChanges, 1);
    EXPECT_EQ(secondChanges, 1);
    EXPECT_EQ(first->value(), nullptr);

    // Writing nil through a setting removes the key the same way.
    defaults()->setObjectForKey(NSSTR("back"), NSSTR("removed"));
    spy.writes.clear();
    EXPECT_NO_THROW(first->setValue(nullptr));
    ASSERT_EQ(spy.writes.size(), 3u);  // the removal, then one refused echo per setting
    EXPECT_EQ(spy.writes[0].value.get(), nullptr);
    EXPECT_EQ(defaults()->objectForKey(NSSTR("removed")), nullptr);
    EXPECT_EQ(secondChanges, 3);
}

}  // namespace
