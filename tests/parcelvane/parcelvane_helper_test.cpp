// ParcelvaneHelper's device, screen and host-version queries, against
// configured devices and main bundles.
#include <gtest/gtest.h>

#include "scratch_defaults.h"
#include "support/ParcelvaneHelper.h"

#include <Foundation/NSBundle.h>
#include <UIKit/DeviceProfile.h>

#include <objc/strong.h>

#include <fstream>
#include <string>

namespace {

using parcelvane_testing::ScratchDefaults;

// Puts the device back to the default one after each test.
class HelperTest : public ::testing::Test {
  protected:
    ~HelperTest() override { uikit::configureDevice(uikit::DeviceProfile::defaultProfile()); }

    static void runOn(const std::string& systemVersion) {
        auto profile = uikit::DeviceProfile::defaultProfile();
        profile.systemVersion = systemVersion;
        uikit::configureDevice(profile);
    }
    static void screen(UIUserInterfaceIdiom idiom, CGFloat width, CGFloat height) {
        auto profile = uikit::DeviceProfile::defaultProfile();
        profile.idiom = idiom;
        profile.screenSize = CGSize{width, height};
        uikit::configureDevice(profile);
    }

    objc::AutoreleasePool pool;
};

// ---- System version ---------------------------------------------------------

TEST_F(HelperTest, AThreePartVersionReadsAsItsFirstTwoParts) {
    runOn("8.4.1");
    EXPECT_TRUE(ParcelvaneHelper::isIOS83_OrGreater());
    EXPECT_TRUE(ParcelvaneHelper::isIOS80_OrGreater());
    EXPECT_FALSE(ParcelvaneHelper::isLowerThanIOS8());
    EXPECT_FALSE(ParcelvaneHelper::isIOS90_OrGreater());
    EXPECT_TRUE(ParcelvaneHelper::isLowerThanIOS9());
}

TEST_F(HelperTest, Version83ItselfCountsAsAtLeast83) {
    runOn("8.3");
    EXPECT_TRUE(ParcelvaneHelper::isIOS83_OrGreater());
    runOn("8.2.9");
    EXPECT_FALSE(ParcelvaneHelper::isIOS83_OrGreater());
}

TEST_F(HelperTest, Versions8And712FallOnEitherSideOfIOS8) {
    runOn("8.0");
    EXPECT_TRUE(ParcelvaneHelper::isIOS80_OrGreater());
    EXPECT_FALSE(ParcelvaneHelper::isLowerThanIOS8());
    EXPECT_TRUE(ParcelvaneHelper::isIOS70_OrGreater());
    EXPECT_FALSE(ParcelvaneHelper::isLowerThanIOS7());

    runOn("7.1.2");
    EXPECT_FALSE(ParcelvaneHelper::isIOS80_OrGreater());
    EXPECT_TRUE(ParcelvaneHelper::isLowerThanIOS8());
    EXPECT_TRUE(ParcelvaneHelper::isIOS70_OrGreater());
    EXPECT_FALSE(ParcelvaneHelper::isLowerThanIOS7());

    runOn("6.1");
    EXPECT_TRUE(ParcelvaneHelper::isLowerThanIOS7());
    EXPECT_TRUE(ParcelvaneHelper::isIOS60_OrGreater());
}

TEST_F(HelperTest, Version10IsNewerThanEveryNamedVersion) {
    runOn("10.0");
    EXPECT_TRUE(ParcelvaneHelper::isIOS90_OrGreater());
    EXPECT_TRUE(ParcelvaneHelper::isIOS83_OrGreater());
    EXPECT_TRUE(ParcelvaneHelper::isIOS80_OrGreater());
    EXPECT_TRUE(ParcelvaneHelper::isIOS70_OrGreater());
    EXPECT_TRUE(ParcelvaneHelper::isIOS60_OrGreater());
    EXPECT_TRUE(ParcelvaneHelper::isIOS50_OrGreater());
    EXPECT_TRUE(ParcelvaneHelper::isIOS40_OrGreater());
    EXPECT_FALSE(ParcelvaneHelper::isLowerThanIOS9());
    EXPECT_FALSE(ParcelvaneHelper::isLowerThanIOS8());
    EXPECT_FALSE(ParcelvaneHelper::isLowerThanIOS7());
}

TEST_F(HelperTest, TheOldestVersionsAnswerOnlyTheirOwnQueries) {
    runOn("4.3");
    EXPECT_TRUE(ParcelvaneHelper::isIOS40_OrGreater());
    EXPECT_FALSE(ParcelvaneHelper::isIOS50_OrGreater());
    runOn("5.1.1");
    EXPECT_TRUE(ParcelvaneHelper::isIOS50_OrGreater());
    EXPECT_FALSE(ParcelvaneHelper::isIOS60_OrGreater());
}

// ---- Device kind and screen -------------------------------------------------

TEST_F(HelperTest, ALandscapeScreenAnswersItsLongAndShortSides) {
    screen(UIUserInterfaceIdiomPhone, 667, 375);
    EXPECT_EQ(ParcelvaneHelper::screenWidth(), 667.0);
    EXPECT_EQ(ParcelvaneHelper::screenHeight(), 375.0);
    EXPECT_EQ(ParcelvaneHelper::screenMaxLength(), 667.0);
    EXPECT_EQ(ParcelvaneHelper::screenMinLength(), 375.0);
    EXPECT_TRUE(ParcelvaneHelper::isIPhone6());
}

TEST_F(HelperTest, ASquareScreenAnswersItsHeightForBothLengths) {
    screen(UIUserInterfaceIdiomPhone, 500, 500);
    EXPECT_EQ(ParcelvaneHelper::screenMaxLength(), 500.0);
    EXPECT_EQ(ParcelvaneHelper::screenMinLength(), 500.0);
}

TEST_F(HelperTest, PhoneSizesAreToldApartByTheLongSide) {
    screen(UIUserInterfaceIdiomPhone, 414, 736);
    EXPECT_TRUE(ParcelvaneHelper::isIPhone6_Plus());
    EXPECT_FALSE(ParcelvaneHelper::isIPhone6());
    screen(UIUserInterfaceIdiomPhone, 320, 568);
    EXPECT_TRUE(ParcelvaneHelper::isIPhone5());
    EXPECT_FALSE(ParcelvaneHelper::isIPhone4_OrLess());
    screen(UIUserInterfaceIdiomPhone, 320, 480);
    EXPECT_TRUE(ParcelvaneHelper::isIPhone4_OrLess());
    EXPECT_FALSE(ParcelvaneHelper::isIPhone5());
    // Exact sizes only: a phone a fraction of a point longer is none of them.
    screen(UIUserInterfaceIdiomPhone, 375, 667.5);
    EXPECT_FALSE(ParcelvaneHelper::isIPhone6());
}

TEST_F(HelperTest, AnIPadIsNoPhoneWhateverItsScreen) {
    screen(UIUserInterfaceIdiomPad, 375, 667);
    EXPECT_TRUE(ParcelvaneHelper::isIPad());
    EXPECT_FALSE(ParcelvaneHelper::isIPhone());
    EXPECT_FALSE(ParcelvaneHelper::isIPhone6());
    EXPECT_FALSE(ParcelvaneHelper::isIPhone4_OrLess());
    screen(UIUserInterfaceIdiomPhone, 375, 667);
    EXPECT_FALSE(ParcelvaneHelper::isIPad());
    EXPECT_TRUE(ParcelvaneHelper::isIPhone());
}

TEST_F(HelperTest, RetinaReadsTheNativeScaleFromIOS8OnAndTheScaleBefore) {
    auto profile = uikit::DeviceProfile::defaultProfile();
    profile.scale = 2.0;
    profile.nativeScale = 1.0;
    profile.systemVersion = "9.0";
    uikit::configureDevice(profile);
    EXPECT_FALSE(ParcelvaneHelper::isRetina());
    profile.systemVersion = "7.1";
    uikit::configureDevice(profile);
    EXPECT_TRUE(ParcelvaneHelper::isRetina());
    profile.scale = 1.0;
    uikit::configureDevice(profile);
    EXPECT_FALSE(ParcelvaneHelper::isRetina());
}

// ---- Host version -------------------------------------------------------------

class HostVersionTest : public HelperTest {
  protected:
    // Writes the main bundle's Info.plist (the scratch folder is the bundle).
    void hostVersion(const std::string& version) {
        std::ofstream(std::string(NSBundle::mainBundle()->bundlePath()->utf8()) + "/Info.plist")
            << "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
               "<plist version=\"1.0\"><dict>"
               "<key>CFBundleIdentifier</key><string>net.whatsapp.WhatsApp</string>"
               "<key>CFBundleVersion</key><string>"
            << version << "</string></dict></plist>\n";
    }

    ScratchDefaults scratch;
};

TEST_F(HostVersionTest, VersionsCompareNumericallyPartByPart) {
    hostVersion("2.12.5");
    EXPECT_TRUE(ParcelvaneHelper::isAppVersionGreaterThanOrEqualTo(NSSTR("2.9")));
    EXPECT_FALSE(ParcelvaneHelper::isAppVersionLessThanOrEqualTo(NSSTR("2.9")));
    EXPECT_TRUE(ParcelvaneHelper::isAppVersionLessThanOrEqualTo(NSSTR("2.12.10")));
    EXPECT_FALSE(ParcelvaneHelper::isAppVersionGreaterThanOrEqualTo(NSSTR("2.12.10")));
}

TEST_F(HostVersionTest, AnEqualVersionSatisfiesBothBounds) {
    hostVersion("2.12.5");
    EXPECT_TRUE(ParcelvaneHelper::isAppVersionGreaterThanOrEqualTo(NSSTR("2.12.5")));
    EXPECT_TRUE(ParcelvaneHelper::isAppVersionLessThanOrEqualTo(NSSTR("2.12.5")));
}

TEST_F(HostVersionTest, AHostWithoutAVersionComparesAsEqual) {
    // No Info.plist at all in the scratch bundle.
    EXPECT_TRUE(ParcelvaneHelper::isAppVersionGreaterThanOrEqualTo(NSSTR("2.12.5")));
    EXPECT_TRUE(ParcelvaneHelper::isAppVersionLessThanOrEqualTo(NSSTR("0.1")));
}

// ---- Others ---------------------------------------------------------------------

TEST_F(HelperTest, OnlyDigitTextsAreAllDigits) {
    EXPECT_TRUE(ParcelvaneHelper::isIOS60_OrGreater_was(NSSTR("0123")));
    EXPECT_TRUE(ParcelvaneHelper::isIOS60_OrGreater_was(NSSTR("")));
    EXPECT_FALSE(ParcelvaneHelper::isIOS60_OrGreater_was(NSSTR("12a")));
    EXPECT_FALSE(ParcelvaneHelper::isIOS60_OrGreater_was(NSSTR("8.4")));
    EXPECT_FALSE(ParcelvaneHelper::isIOS60_OrGreater_was(NSSTR(" 1")));
}

TEST_F(HelperTest, TheLibraryHasNoWindowOrScreenOfItsOwn) {
    EXPECT_EQ(ParcelvaneHelper::mainParcelvaneWindow(), nullptr);
    EXPECT_EQ(ParcelvaneHelper::mainParcelvaneViewController(), nullptr);
}

}  // namespace
