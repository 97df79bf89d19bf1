// ParcelvaneHelper's texts where they go wrong, its translation, the browser and the plain alert.
#include "scratch_folder.h"

#include <gtest/gtest.h>

#include "support/ParcelvaneHelper.h"

#include <Foundation/NSArray.h>
#include <Foundation/NSBundle.h>
#include <Foundation/NSUserDefaults.h>
#include <Foundation/process_environment.h>
#include <TolbrennDevTools/ParcelvaneFileBrowserViewController.h>
#include <UIKit/UIAlertView.h>
#include <UIKit/UINavigationController.h>

#include <objc/strong.h>

#include <optional>
#include <string>
#include <vector>

namespace {

std::string text(NSString* s) {
    return s != nullptr ? s->utf8() : "(nil)";
}

// Where the texts go wrong: units at each power of 1024, one decimal only when not zero, suffixes.
TEST(Formatting, UnitsDecimalsAndSuffixesChangeExactlyAtTheirLimits) {
    const objc::AutoreleasePool pool;
    const auto unit = [](unsigned long long bytes) {
        return text(ParcelvaneHelper::calculateUnit(bytes));
    };
    EXPECT_EQ(unit(1023), "Bytes");
    EXPECT_EQ(unit(1024), "KB");
    EXPECT_EQ(unit(1048575), "KB");
    EXPECT_EQ(unit(1048576), "MB");
    EXPECT_EQ(unit((1ull << 30) - 1), "MB");
    EXPECT_EQ(unit(1ull << 30), "GB");
    // Beyond 32 bits the count is still read whole.
    EXPECT_EQ(unit(1ull << 40), "GB");
    EXPECT_EQ(ParcelvaneHelper::calculateFileSizeInUnit(1023), 1023.0f);
    EXPECT_EQ(ParcelvaneHelper::calculateFileSizeInUnit(1572864), 1.5f);
    EXPECT_EQ(ParcelvaneHelper::calculateFileSizeInUnit(5ull << 40), 5120.0f);
    // Made single precision before scaling: 2^30 - 1 becomes 2^30.
    EXPECT_EQ(ParcelvaneHelper::calculateFileSizeInUnit((1ull << 30) - 1), 1024.0f);

    const auto trimmed = [](float value) { return text(ParcelvaneHelper::floatToString(value)); };
    EXPECT_EQ(trimmed(0.04f), "0");
    EXPECT_EQ(trimmed(1000.0f), "1000");  // zeros before the point stay
    EXPECT_EQ(trimmed(12.34f), "12.3");
    EXPECT_EQ(trimmed(99.96f), "100");

    const auto abbreviated = [](int n) { return text(ParcelvaneHelper::abbreviateNumber(n)); };
    EXPECT_EQ(abbreviated(999), "999");
    EXPECT_EQ(abbreviated(1234), "1.2K");
    // 999.999 is written 1000.0 and trimmed: the suffix is not promoted.
    EXPECT_EQ(abbreviated(999999), "1000K");
    EXPECT_EQ(abbreviated(2000000000), "2B");
    // Negative numbers are written out, through single precision and back.
    EXPECT_EQ(abbreviated(-123456789), "-123456792");
}

// ---- Translations ------------------------------------------------------------------

// The main bundle is a scratch folder with these localisations; the user prefers these languages.
class TranslationTest : public ::testing::Test {
  protected:
    ~TranslationTest() override { reset(); }

    std::string pick(const std::vector<std::string>& localizations,
                     const std::vector<std::string>& preferred, NSString* arabic = NSSTR("إعدادات"),
                     NSString* french = NSSTR("Réglages")) {
        reset();
        folder_.emplace("pv-translation");
        for (const auto& name : localizations) folder_->folder(name + ".lproj");
        foundation::configureProcess({folder_->path(), folder_->path(), preferred});
        NSUserDefaults::resetStandardUserDefaults();
        return text(ParcelvaneHelper::translate(arabic, NSSTR("Settings"), french));
    }
    void reset() {
        NSUserDefaults::resetStandardUserDefaults();
        foundation::configureProcess({});
        folder_.reset();
    }

    objc::AutoreleasePool pool;
    std::optional<testsupport::ScratchFolder> folder_;
};

TEST_F(TranslationTest, TheBundlesLocalisationChoosesTheTextAndEnglishCoversTheRest) {
    const std::vector<std::string> host = {"ar", "en", "fr"};
    EXPECT_EQ(pick(host, {"ar"}), "إعدادات");
    EXPECT_EQ(pick(host, {"ar"}, nullptr), "Settings");
    EXPECT_EQ(pick(host, {"fr", "en"}), "Réglages");
    // Without fr-CA in the bundle the user's fr-CA is served by fr...
    EXPECT_EQ(pick(host, {"fr-CA"}), "Réglages");
    // ...but a bundle's own fr-CA is compared exactly and falls to English.
    EXPECT_EQ(pick({"en", "fr", "fr-CA"}, {"fr-CA"}), "Settings");
    EXPECT_EQ(pick({"ar", "de", "en", "fr"}, {"de"}), "Settings");
}

TEST(Presentation, TheFileBrowserIsAFormSheetInANavigationControllerAndTheAlertHasOnlyOK) {
    const objc::AutoreleasePool pool;
    const auto presenter = objc::make<UIViewController>();
    const auto target = objc::make<NSObject>();
    ParcelvaneHelper::showFilePicker(presenter.get(), target.get());
    auto* const navigation =
        objc::cast<UINavigationController>(presenter->presentedViewController());
    ASSERT_NE(navigation, nullptr);
    EXPECT_EQ(navigation->modalPresentationStyle(), UIModalPresentationFormSheet);
    ASSERT_EQ(navigation->viewControllers()->count(), 1u);
    auto* const browser = objc::cast<ParcelvaneFileBrowserViewController>(
        navigation->viewControllers()->firstObject());
    ASSERT_NE(browser, nullptr);
    EXPECT_EQ(browser->delegate(), static_cast<id>(target.get()));
    EXPECT_EQ(text(browser->path()), "/");
    presenter->dismissViewControllerAnimated(false, nullptr);

    ParcelvaneHelper::showAlertViewForExt(presenter.get(), NSSTR("Unsupported"), NSSTR("No."));
    UIAlertView* const alert = UIAlertView::topVisibleAlert();
    ASSERT_NE(alert, nullptr);
    EXPECT_EQ(text(alert->title()), "Unsupported");
    EXPECT_EQ(text(alert->message()), "No.");
    EXPECT_EQ(alert->delegate(), static_cast<id>(presenter.get()));
    EXPECT_EQ(alert->buttonTitles(), std::vector<std::string>{"OK"});
    EXPECT_EQ(alert->cancelButtonIndex(), 0);
    // The controller does not answer the alert's messages: a tap only takes it away.
    EXPECT_TRUE(alert->tapButton(0));
    EXPECT_EQ(UIAlertView::topVisibleAlert(), nullptr);
}

}  // namespace
