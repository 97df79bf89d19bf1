// The exported accessors that read the settings through a short-lived STSetting.
#include <gtest/gtest.h>

#include "hooks/preferences.h"
#include "hooks/settings_keys.h"
#include "scratch_defaults.h"

#include <Foundation/NSNumber.h>

#include <atomic>
#include <thread>
#include <vector>

namespace {

class PreferencesTest : public testing::Test {
  protected:
    const objc::AutoreleasePool pool_;
    const testsupport::ScratchDefaults scratch_;
    NSUserDefaults* defaults() const { return scratch_.defaults(); }
};

TEST_F(PreferencesTest, AMissingKeyReadsAsTheDefaultAndEveryReadSeesTheLatestWrite) {
    NSString* key = parcelvane::keys::sendFilesystemEnabled();
    EXPECT_FALSE(GetBool(key));
    EXPECT_EQ(GetInt(key), 0);
    EXPECT_EQ(GetLongLong(key), 0);
    EXPECT_EQ(GetFloat(key), 0.0f);
    EXPECT_EQ(GetValue(key), nullptr);
    for (int i = 0; i < 4; ++i) {
        defaults()->setBoolForKey(i % 2 == 0, key);
        EXPECT_EQ(GetBool(key), i % 2 == 0);
    }
    defaults()->setObjectForKey(NSNumber::create(3.75), key);
    EXPECT_EQ(GetInt(key), 3);
    EXPECT_FLOAT_EQ(GetFloat(key), 3.75f);
}

// Readers on several threads make and drop observing settings while another changes the key.
TEST_F(PreferencesTest, ReadsFromManyThreadsWhileTheKeyChanges) {
    NSString* key = parcelvane::keys::docOptions();
    std::atomic<bool> stop{false};
    std::atomic<int> reads{0};
    std::vector<std::thread> readers;
    for (int t = 0; t < 3; ++t) {
        readers.emplace_back([&] {
            const objc::AutoreleasePool pool;
            while (!stop.load()) {
                GetBool(key);
                reads.fetch_add(1);
            }
        });
    }
    for (int i = 0; i < 2000 || reads.load() < 300; ++i) {
        const objc::AutoreleasePool pool;
        defaults()->setBoolForKey(i % 2 == 0, key);
    }
    stop.store(true);
    for (auto& t : readers) t.join();
    defaults()->setBoolForKey(true, key);
    EXPECT_TRUE(GetBool(key));
}

}  // namespace
