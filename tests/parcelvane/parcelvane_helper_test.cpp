// ParcelvaneHelper's device queries: version parsing, numeric comparison, the screen's long side.
#include <gtest/gtest.h>

#include "scratch_defaults.h"
#include "support/ParcelvaneHelper.h"

#include <Foundation/NSBundle.h>
#include <UIKit/device_profile.h>

#include <fstream>
#include <string>

namespace {

class HelperTest : public ::testing::Test {
  protected:
    ~HelperTest() override { uikit::configureDevice(uikit::DeviceProfile::defaultProfile()); }

    static void device(const std::string& systemVersion, CGSize screen = {375, 667}) {
        auto profile = uikit::DeviceProfile::defaultProfile();
        profile.systemVersion = systemVersion;
        profile.idiom = UIUserInterfaceIdiomPhone;
        profile.screenSize = screen;
        uikit::configureDevice(profile);
    }

    objc::AutoreleasePool pool;
};

TEST_F(HelperTest, SystemVersionsCompareByTheirFirstTwoParts) {
    device("8.4.1");
    EXPECT_TRUE(ParcelvaneHelper::isIOS83_OrGreater());
    EXPECT_FALSE(ParcelvaneHelper::isLowerThanIOS8());
    EXPECT_FALSE(ParcelvaneHelper::isIOS90_OrGreater());
    device("8.3");
    EXPECT_TRUE(ParcelvaneHelper::isIOS83_OrGreater());
    device("8.2.9");
    EXPECT_FALSE(ParcelvaneHelper::isIOS83_OrGreater());
    device("7.1.2");
    EXPECT_TRUE(ParcelvaneHelper::isLowerThanIOS8());
    EXPECT_FALSE(ParcelvaneHelper::isLowerThanIOS7());
    // Not a text comparison: 10 is above 9.
    device("10.0");
    EXPECT_TRUE(ParcelvaneHelper::isIOS90_OrGreater());
    EXPECT_FALSE(ParcelvaneHelper::isLowerThanIOS9());
}

TEST_F(HelperTest, TheScreenLengthsAreItsLongAndShortSidesWhateverTheOrientation) {
    device("9.3", {667, 375});
    EXPECT_EQ(ParcelvaneHelper::screenMaxLength(), 667.0);
    EXPECT_EQ(ParcelvaneHelper::screenMinLength(), 375.0);
    EXPECT_TRUE(ParcelvaneHelper::isIPhone6());
    device("9.3", {320, 480});
    EXPECT_EQ(ParcelvaneHelper::screenMaxLength(), 480.0);
    EXPECT_TRUE(ParcelvaneHelper::isIPhone4_OrLess());
    EXPECT_FALSE(ParcelvaneHelper::isIPhone5());
}

TEST_F(HelperTest, AppVersionsCompareNumericallyPartByPart) {
    {
        // No version at all compares as equal.
        const testsupport::ScratchDefaults bare;
        EXPECT_TRUE(ParcelvaneHelper::isAppVersionGreaterThanOrEqualTo(NSSTR("2.12.5")));
        EXPECT_TRUE(ParcelvaneHelper::isAppVersionLessThanOrEqualTo(NSSTR("0.1")));
    }
    const testsupport::ScratchDefaults scratch;  // also the main bundle
    std::ofstream(std::string(NSBundle::mainBundle()->bundlePath()->utf8()) + "/Info.plist")
        << "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\"><dict>"
           "<key>CFBundleVersion</key><string>2.16.4</string></dict></plist>\n";
    EXPECT_TRUE(ParcelvaneHelper::isAppVersionGreaterThanOrEqualTo(NSSTR("2.9")));
    EXPECT_FALSE(ParcelvaneHelper::isAppVersionLessThanOrEqualTo(NSSTR("2.9")));
    EXPECT_TRUE(ParcelvaneHelper::isAppVersionLessThanOrEqualTo(NSSTR("2.16.10")));
    EXPECT_FALSE(ParcelvaneHelper::isAppVersionGreaterThanOrEqualTo(NSSTR("2.16.10")));
    EXPECT_TRUE(ParcelvaneHelper::isAppVersionGreaterThanOrEqualTo(NSSTR("2.16.4")));
    EXPECT_TRUE(ParcelvaneHelper::isAppVersionLessThanOrEqualTo(NSSTR("2.16.4")));
}

}  // namespace
