// User defaults: values and conversions, non-property-lists refused, registered defaults.
#include <gtest/gtest.h>

#include <Foundation/NSArray.h>
#include <Foundation/NSBundle.h>
#include <Foundation/NSData.h>
#include <Foundation/NSDate.h>
#include <Foundation/NSDictionary.h>
#include <Foundation/NSMutableString.h>
#include <Foundation/NSNumber.h>
#include <Foundation/NSUserDefaults.h>
#include <Foundation/process_environment.h>

#include <filesystem>

#include "foundation_helpers.h"
#include "scratch_folder.h"

namespace {

using namespace testsupport;

using UserDefaults = PoolTest;

objc::Strong<NSUserDefaults> inMemory() {
    return NSUserDefaults::create("");
}

TEST_F(UserDefaults, TypedSettersAndReadersConvertAsThePlatformDoes) {
    auto defaults = inMemory();
    defaults->setBoolForKey(true, S("flag"));
    defaults->setIntegerForKey(-7, S("count"));
    defaults->setDoubleForKey(2.25, S("precise"));
    auto* flag = objc::cast<NSNumber>(defaults->objectForKey(S("flag")));
    ASSERT_NE(flag, nullptr);
    EXPECT_TRUE(flag->isBoolean());
    EXPECT_EQ(defaults->integerForKey(S("precise")), 2);
    EXPECT_TRUE(S("-7")->isEqual(defaults->stringForKey(S("count"))));
    // Strings convert to numbers and booleans; other classes answer zero.
    defaults->setObjectForKey(S(" 42 "), S("numeric"));
    defaults->setObjectForKey(S("YES"), S("yes"));
    defaults->setObjectForKey(S("0"), S("zero"));
    EXPECT_EQ(defaults->integerForKey(S("numeric")), 42);
    EXPECT_TRUE(defaults->boolForKey(S("yes")));
    EXPECT_FALSE(defaults->boolForKey(S("zero")));
    defaults->setObjectForKey(NSArray::create({}), S("list"));
    EXPECT_EQ(defaults->doubleForKey(S("list")), 0.0);
}

TEST_F(UserDefaults, RefusesNonPropertyListsNamingKeyAndClassAndStoresNothing) {
    auto defaults = inMemory();
    defaults->setObjectForKey(S("before"), S("key"));
    const auto stranger = objc::make<NSObject>();
    const auto nested = NSArray::create({S("fine"), stranger.get()});
    const auto numberKey = NSDictionary::create({{NSNumber::create(1).get(), S("v")}});
    for (id value : {static_cast<id>(stranger.get()), static_cast<id>(nested.get()),
                     static_cast<id>(numberKey.get())}) {
        try {
            defaults->setObjectForKey(value, S("key"));
            ADD_FAILURE() << "accepted " << static_cast<NSObject*>(value)->description()->utf8();
        } catch (const objc::Exception& e) {
            EXPECT_EQ(e.name(), "NSInvalidArgumentException");
            const std::string reason = e.reason();
            EXPECT_NE(reason.find("\"key\""), std::string::npos) << reason;
            EXPECT_TRUE(reason.find("NSObject") != std::string::npos ||
                        reason.find("NSNumber") != std::string::npos)
                << reason;
        }
        EXPECT_TRUE(S("before")->isEqual(defaults->objectForKey(S("key"))));
    }
    EXPECT_THROW(defaults->setObjectForKey(S("v"), nullptr), objc::Exception);
    EXPECT_THROW(defaults->setObjectForKey(S("v"), reinterpret_cast<NSString*>(stranger.get())),
                 objc::Exception);
}

TEST_F(UserDefaults, StoresImmutableCopiesSoCallersCanKeepChangingTheirObjects) {
    auto defaults = inMemory();
    auto text = NSMutableString::create("draft");
    auto items = NSMutableArray::create({text.get()});
    auto settings = NSMutableDictionary::create({{S("items"), items.get()}});
    defaults->setObjectForKey(settings, S("settings"));
    defaults->setObjectForKey(text, S("text"));
    text->appendString(S(" changed"));
    items->addObject(S("more"));
    settings->setObjectForKey(S("x"), S("added"));
    auto* stored = objc::cast<NSDictionary>(defaults->objectForKey(S("settings")));
    ASSERT_NE(stored, nullptr);
    EXPECT_FALSE(objc::isKindOf(stored, NSMutableDictionary::objcClass()));
    auto* storedItems = objc::cast<NSArray>(stored->objectForKey(S("items")));
    ASSERT_NE(storedItems, nullptr);
    EXPECT_TRUE(NSArray::create({S("draft")})->isEqual(storedItems));
    EXPECT_FALSE(objc::isKindOf(storedItems->objectAtIndex(0), NSMutableString::objcClass()));
    EXPECT_TRUE(S("draft")->isEqual(defaults->objectForKey(S("text"))));
    // Keys are copied too: a mutable key changed later finds nothing new.
    auto key = NSMutableString::create("k1");
    defaults->setObjectForKey(S("v"), key);
    key->setString(S("k2"));
    EXPECT_NE(defaults->objectForKey(S("k1")), nullptr);
    EXPECT_EQ(defaults->objectForKey(S("k2")), nullptr);
}

TEST_F(UserDefaults, AnsweredValuesOutliveLaterChanges) {
    auto defaults = inMemory();
    NSObject* value = nullptr;
    {
        objc::AutoreleasePool pool;
        defaults->setObjectForKey(NSMutableString::create("first value"), S("k"));
        value = static_cast<NSObject*>(defaults->objectForKey(S("k")));
        defaults->setObjectForKey(S("second"), S("k"));
        defaults->removeObjectForKey(S("k"));
        // Still alive: the answer was retained and autoreleased for us.
        EXPECT_EQ(value->description()->utf8(), "first value");
    }
}

TEST_F(UserDefaults, RegisteredDefaultsAnswerUntilAValueIsSet) {
    auto defaults = inMemory();
    defaults->registerDefaults(
        NSDictionary::create({{S("volume"), NSNumber::create(5).get()}, {S("name"), S("anon")}}));
    EXPECT_EQ(defaults->integerForKey(S("volume")), 5);
    defaults->setIntegerForKey(9, S("volume"));
    EXPECT_EQ(defaults->integerForKey(S("volume")), 9);
    defaults->removeObjectForKey(S("volume"));
    EXPECT_EQ(defaults->integerForKey(S("volume")), 5);
    defaults->setObjectForKey(S("me"), S("name"));
    NSDictionary* all = defaults->dictionaryRepresentation();
    EXPECT_TRUE(S("me")->isEqual(all->objectForKey(S("name"))));
    EXPECT_EQ(all->count(), 2u);
    const auto bad = NSDictionary::create({{S("x"), objc::make<NSObject>().get()}});
    EXPECT_THROW(defaults->registerDefaults(bad), objc::Exception);
}

TEST_F(UserDefaults, StandardDefaultsLiveInTheContainerUnderTheBundleIdentifier) {
    ScratchFolder home;
    ScratchFolder app;
    app.write("Info.plist", R"(<?xml version="1.0" encoding="UTF-8"?>
<plist version="1.0"><dict><key>CFBundleIdentifier</key><string>net.example.defaults-test</string></dict></plist>)");
    foundation::configureProcess({home.path(), app.path(), {"en"}});
    NSUserDefaults::resetStandardUserDefaults();
    NSUserDefaults* standard = NSUserDefaults::standardUserDefaults();
    const std::string expected = home / "Library/Preferences/net.example.defaults-test.plist";
    EXPECT_EQ(standard->filePath(), expected);
    standard->setObjectForKey(S("stored"), S("key"));
    EXPECT_TRUE(standard->synchronize());
    EXPECT_TRUE(std::filesystem::exists(expected));
    // A fresh process-wide object reads what the previous one wrote.
    NSUserDefaults::resetStandardUserDefaults();
    NSUserDefaults* fresh = NSUserDefaults::standardUserDefaults();
    EXPECT_TRUE(S("stored")->isEqual(fresh->objectForKey(S("key"))));
    NSUserDefaults::resetStandardUserDefaults();
    foundation::configureProcess({});
}

}  // namespace
