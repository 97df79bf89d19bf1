#include "uikit_fixture.h"

#include <objc/exception.h>

namespace {

using DeviceTest = UIKitTest;

TEST_F(DeviceTest, ProfilesCarryTheRealModelsFigures) {
    EXPECT_EQ(UIDevice::currentDevice()->systemVersion()->utf8(), "9.3");  // the default
    struct Expected {
        uikit::DeviceProfile profile;
        CGFloat width, height, scale, nativeScale;
        UIUserInterfaceIdiom idiom;
    };
    const Expected cases[] = {
        {uikit::DeviceProfile::defaultProfile(), 375, 667, 2, 2, UIUserInterfaceIdiomPhone},
        {uikit::DeviceProfile::iPhone4s(), 320, 480, 2, 2, UIUserInterfaceIdiomPhone},
        {uikit::DeviceProfile::iPhone6sPlus(), 414, 736, 3, 2.608, UIUserInterfaceIdiomPhone},
        {uikit::DeviceProfile::iPadAir2(), 768, 1024, 2, 2, UIUserInterfaceIdiomPad},
    };
    for (const Expected& e : cases) {
        uikit::configureDevice(e.profile);
        SCOPED_TRACE(e.profile.name);
        EXPECT_EQ(UIScreen::mainScreen()->bounds().size, CGSizeMake(e.width, e.height));
        EXPECT_EQ(UIScreen::mainScreen()->scale(), e.scale);
        EXPECT_DOUBLE_EQ(UIScreen::mainScreen()->nativeScale(), e.nativeScale);
        EXPECT_EQ(UIDevice::currentDevice()->userInterfaceIdiom(), e.idiom);
        EXPECT_EQ(UIDevice::currentDevice()->model()->utf8(),
                  e.idiom == UIUserInterfaceIdiomPad ? "iPad" : "iPhone");
    }
    uikit::configureDevice(uikit::DeviceProfile::iPhone6sPlus());
    EXPECT_EQ(UIScreen::mainScreen()->nativeBounds(), CGRectMake(0, 0, 1080, 1920));
}

TEST_F(DeviceTest, NamedProfilesForTheCommandLine) {
    EXPECT_EQ(uikit::DeviceProfile::named("iphone")->name, "iPhone 6s");
    EXPECT_EQ(uikit::DeviceProfile::named("IPAD")->idiom, UIUserInterfaceIdiomPad);
    EXPECT_EQ(uikit::DeviceProfile::named("ipad-pro")->screenSize, CGSizeMake(1024, 1366));
    EXPECT_FALSE(uikit::DeviceProfile::named("nokia").has_value());
}

TEST_F(DeviceTest, VersionsCompareNumericallyNotAsText) {
    auto profile = uikit::DeviceProfile::iPadAir2();
    profile.systemVersion = "7.1.2";
    uikit::configureDevice(profile);
    EXPECT_EQ(UIDevice::currentDevice()->systemVersion()->utf8(), "7.1.2");
    EXPECT_TRUE(uikit::systemVersionAtLeast("7.1"));
    EXPECT_FALSE(uikit::systemVersionAtLeast("7.1.3"));
    EXPECT_LT(uikit::compareSystemVersions("9.3", "10.0"), 0);
    EXPECT_EQ(uikit::compareSystemVersions("8", "8.0.0"), 0);
    EXPECT_GT(uikit::compareSystemVersions("7.10", "7.9"), 0);
    EXPECT_TRUE(uikit::isValidSystemVersion("4.3.5"));
    for (const char* bad : {"", "9.", "9..1", "nine", "9.3.1.1", "-1"}) {
        EXPECT_FALSE(uikit::isValidSystemVersion(bad)) << bad;
    }
}

TEST_F(DeviceTest, NoNativeScaleBeforeIOS8) {
    auto profile = uikit::DeviceProfile::iPhone4s();
    profile.systemVersion = "7.1";
    uikit::configureDevice(profile);
    UIScreen* screen = UIScreen::mainScreen();
    EXPECT_FALSE(screen->respondsToSelector(objc::sel<"nativeScale">()));
    EXPECT_TRUE(screen->respondsToSelector(objc::sel<"scale">()));
    EXPECT_THROW(screen->nativeScale(), objc::Exception);

    profile.systemVersion = "8.0";
    uikit::configureDevice(profile);
    EXPECT_TRUE(screen->respondsToSelector(objc::sel<"nativeScale">()));
    EXPECT_EQ(screen->nativeScale(), 2.0);
}

}  // namespace
