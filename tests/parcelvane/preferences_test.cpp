// The settings keys and the exported accessors that read them through a
// short-lived STSetting, plus the library's other exported pieces.
#include <gtest/gtest.h>

#include "defaults_spy.h"
#include "hooks/preferences.h"
#include "hooks/settings_keys.h"
#include "scratch_defaults.h"

#include <Foundation/NSNumber.h>

#include <objc/message.h>
#include <objc/runtime.h>

#include <dlfcn.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

namespace {

using parcelvane_testing::DefaultsSpy;
using parcelvane_testing::ScratchDefaults;

class PreferencesTest : public testing::Test {
  protected:
    const objc::AutoreleasePool pool_;
    const ScratchDefaults scratch_;
    NSUserDefaults* defaults() const { return scratch_.defaults(); }
};

NSString* const* allKeys() {
    static NSString* const keys[] = {parcelvane::keys::sendDocumentsEnabled(),
                                     parcelvane::keys::sendFilesystemEnabled(),
                                     parcelvane::keys::docOptions()};
    return keys;
}

TEST_F(PreferencesTest, NothingWrittenReadsAsOffZeroAndNil) {
    for (int i = 0; i < 3; ++i) {
        NSString* key = allKeys()[i];
        EXPECT_FALSE(GetBool(key)) << key->utf8();
        EXPECT_EQ(GetInt(key), 0);
        EXPECT_EQ(GetLongLong(key), 0);
        EXPECT_EQ(GetFloat(key), 0.0f);
        EXPECT_EQ(GetValue(key), nullptr);
    }
    EXPECT_EQ(GetValue(NSSTR("never written")), nullptr);
}

// The host's defaults hold the keys under these exact names.
TEST_F(PreferencesTest, TheKeysAreTheHostsNamesAndNumbersReadAsBooleans) {
    for (const char* name :
         {"send_documents_enabled", "send_filesystem_enabled", "doc_options_bool"}) {
        const auto key = NSString::create(name);
        defaults()->setObjectForKey(NSNumber::create(1), key);
    }
    for (int i = 0; i < 3; ++i) EXPECT_TRUE(GetBool(allKeys()[i])) << allKeys()[i]->utf8();

    defaults()->setObjectForKey(NSNumber::create(0), NSSTR("send_documents_enabled"));
    EXPECT_FALSE(GetBool(parcelvane::keys::sendDocumentsEnabled()));
    EXPECT_TRUE(GetBool(parcelvane::keys::sendFilesystemEnabled()));
    defaults()->setBoolForKey(true, NSSTR("send_documents_enabled"));
    EXPECT_TRUE(GetBool(parcelvane::keys::sendDocumentsEnabled()));
}

TEST_F(PreferencesTest, ValuesConvertAsThePlatformsNumbersDo) {
    defaults()->setObjectForKey(NSNumber::create(3.75), NSSTR("ratio"));
    EXPECT_EQ(GetInt(NSSTR("ratio")), 3);
    EXPECT_EQ(GetLongLong(NSSTR("ratio")), 3);
    EXPECT_FLOAT_EQ(GetFloat(NSSTR("ratio")), 3.75f);
    EXPECT_TRUE(GetBool(NSSTR("ratio")));

    const long long big = 1LL << 40;
    defaults()->setObjectForKey(NSNumber::create(big), NSSTR("big"));
    EXPECT_EQ(GetLongLong(NSSTR("big")), big);

    defaults()->setObjectForKey(NSSTR("42"), NSSTR("text"));
    EXPECT_EQ(GetInt(NSSTR("text")), 42);
}

TEST_F(PreferencesTest, GetValueAnswersTheStoredObjectForTheCallersPool) {
    const auto stored = NSString::create("stored text");
    defaults()->setObjectForKey(stored, NSSTR("value"));
    id value = nullptr;
    {
        const objc::AutoreleasePool callers;
        value = GetValue(NSSTR("value"));
        EXPECT_EQ(value, defaults()->objectForKey(NSSTR("value")));
        // Still alive when the key changes: the caller's pool holds it.
        defaults()->setObjectForKey(NSSTR("replaced"), NSSTR("value"));
        EXPECT_TRUE(stored->isEqual(value));
    }
}

// Each read makes its own setting, which is gone (and no longer observes the
// key) by the time the accessor returns, although the caller's pool is open.
TEST_F(PreferencesTest, EachReadObservesTheKeyOnlyDuringTheCall) {
    DefaultsSpy spy;
    GetBool(parcelvane::keys::sendDocumentsEnabled());
    ASSERT_EQ(spy.added.size(), 1u);
    ASSERT_EQ(spy.removed.size(), 1u);
    EXPECT_EQ(spy.added[0].observer, spy.removed[0].observer);
    EXPECT_EQ(spy.added[0].keyPath, "send_documents_enabled");

    GetValue(NSSTR("other"));
    GetInt(NSSTR("other"));
    GetLongLong(NSSTR("other"));
    GetFloat(NSSTR("other"));
    EXPECT_EQ(spy.added.size(), 5u);
    EXPECT_EQ(spy.removed.size(), 5u);
    EXPECT_TRUE(spy.writes.empty());
}

TEST_F(PreferencesTest, EveryReadSeesTheLatestWrite) {
    NSString* key = parcelvane::keys::sendFilesystemEnabled();
    for (int i = 0; i < 4; ++i) {
        defaults()->setBoolForKey(i % 2 == 0, key);
        EXPECT_EQ(GetBool(key), i % 2 == 0);
    }
}

// Readers on several threads make and drop observing settings while another
// thread keeps changing the key they observe.
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

TEST(ParcelvaneHelper, NamesThePreferencesFileAndChangeNotification) {
    const objc::AutoreleasePool pool;
    const Class helper = objc_getClass("ParcelvaneHelper");
    ASSERT_NE(helper, nullptr);
    auto* path =
        objc::msgSend<NSString*>(reinterpret_cast<id>(helper), sel_registerName("preferencesPath"));
    auto* changed = objc::msgSend<NSString*>(reinterpret_cast<id>(helper),
                                             sel_registerName("preferencesChanged"));
    ASSERT_NE(path, nullptr);
    ASSERT_NE(changed, nullptr);
    EXPECT_EQ(path->utf8(), "/User/Library/Preferences/com.tolbrenn.parcelvane.plist");
    EXPECT_EQ(changed->utf8(), "com.tolbrenn.parcelvane.preferences-changed");
}

TEST(ParcelvaneLibrary, ExportsMainAndTheAccessors) {
    void* library = dlopen(PARCELVANE_LIBRARY, RTLD_NOW | RTLD_NOLOAD);
    ASSERT_NE(library, nullptr) << dlerror();
    for (const char* name : {"GetBool", "GetInt", "GetLongLong", "GetFloat", "GetValue"}) {
        EXPECT_NE(dlsym(library, name), nullptr) << name;
    }
    auto* libraryMain = reinterpret_cast<int (*)()>(dlsym(library, "main"));
    ASSERT_NE(libraryMain, nullptr);
    Dl_info info{};
    ASSERT_NE(dladdr(reinterpret_cast<void*>(libraryMain), &info), 0);
    EXPECT_NE(std::string(info.dli_fname).find("libparcelvane"), std::string::npos)
        << info.dli_fname;
    EXPECT_EQ(libraryMain(), 0);
    dlclose(library);
}

}  // namespace
