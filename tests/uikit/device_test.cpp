#include "uikit_fixture.h"

#include <objc/exception.h>

namespace {

using DeviceTest = UIKitTest;

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

}  // namespace
