// ParcelvaneHelper's texts: byte sizes and units at the band edges, the
// trimming of one-decimal numbers, the abbreviation of large numbers (whose
// single-precision quirks are part of what the user sees), the choice among
// the three translations by the main bundle's localisation, and the
// presentation of the file browser and of the plain alert.
#include <gtest/gtest.h>

#include "support/ParcelvaneHelper.h"

#include <Foundation/NSArray.h>
#include <Foundation/NSBundle.h>
#include <Foundation/NSUserDefaults.h>
#include <Foundation/ProcessEnvironment.h>
#include <TolbrennDevTools/ParcelvaneFileBrowserViewController.h>
#include <UIKit/UIAlertView.h>
#include <UIKit/UINavigationController.h>

#include <objc/strong.h>

#include <stdlib.h>

#include <climits>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

std::string text(NSString* s) {
    return s != nullptr ? s->utf8() : "(nil)";
}

class FormattingTest : public ::testing::Test {
  protected:
    static std::string unit(unsigned long long bytes) {
        return text(ParcelvaneHelper::calculateUnit(bytes));
    }
    static std::string trimmed(float value) { return text(ParcelvaneHelper::floatToString(value)); }
    static std::string abbreviated(int number) {
        return text(ParcelvaneHelper::abbreviateNumber(number));
    }

    objc::AutoreleasePool pool;
};

// ---- Sizes --------------------------------------------------------------------

TEST_F(FormattingTest, UnitsChangeExactlyAtEachPowerOf1024) {
    EXPECT_EQ(unit(0), "Bytes");
    EXPECT_EQ(unit(1023), "Bytes");
    EXPECT_EQ(unit(1024), "KB");
    EXPECT_EQ(unit(1048575), "KB");
    EXPECT_EQ(unit(1048576), "MB");
    EXPECT_EQ(unit((1ull << 30) - 1), "MB");
    EXPECT_EQ(unit(1ull << 30), "GB");
    // Beyond 32 bits the count is still read whole.
    EXPECT_EQ(unit(1ull << 40), "GB");
    EXPECT_EQ(unit(ULLONG_MAX), "GB");
}

TEST_F(FormattingTest, SizesAreScaledToTheirUnitWithoutRounding) {
    EXPECT_EQ(ParcelvaneHelper::calculateFileSizeInUnit(1023), 1023.0f);
    EXPECT_EQ(ParcelvaneHelper::calculateFileSizeInUnit(1024), 1.0f);
    EXPECT_EQ(ParcelvaneHelper::calculateFileSizeInUnit(1536), 1.5f);
    EXPECT_EQ(ParcelvaneHelper::calculateFileSizeInUnit(1572864), 1.5f);
    EXPECT_EQ(ParcelvaneHelper::calculateFileSizeInUnit(1048575), 1048575.0f / 1024.0f);
    EXPECT_EQ(ParcelvaneHelper::calculateFileSizeInUnit(1ull << 30), 1.0f);
    EXPECT_EQ(ParcelvaneHelper::calculateFileSizeInUnit(5ull << 40), 5120.0f);
}

TEST_F(FormattingTest, TheByteCountIsMadeSinglePrecisionBeforeScaling) {
    // 2^30 - 1 has no float of its own: it becomes 2^30, so the top of the
    // MB band reads as 1024 MB rather than 1023.999999.
    EXPECT_EQ(ParcelvaneHelper::calculateFileSizeInUnit((1ull << 30) - 1), 1024.0f);
    EXPECT_EQ(ParcelvaneHelper::calculateFileSizeInUnit((1ull << 30) + 1), 1.0f);
}

// ---- One-decimal texts ----------------------------------------------------------

TEST_F(FormattingTest, TrailingZerosAndABarePointAreDropped) {
    EXPECT_EQ(trimmed(0.0f), "0");
    EXPECT_EQ(trimmed(2.0f), "2");
    EXPECT_EQ(trimmed(10.0f), "10");
    // Zeros before the point stay: only the decimals are trimmed.
    EXPECT_EQ(trimmed(100.0f), "100");
    EXPECT_EQ(trimmed(1000.0f), "1000");
}

TEST_F(FormattingTest, OneDecimalIsKeptWhenItIsNotZero) {
    EXPECT_EQ(trimmed(2.5f), "2.5");
    EXPECT_EQ(trimmed(12.34f), "12.3");
    EXPECT_EQ(trimmed(0.96f), "1");  // rounds up to 1.0 first
    EXPECT_EQ(trimmed(-3.25f), "-3.2");
}

TEST_F(FormattingTest, ValuesThatRoundToZeroDecimalsLoseThem) {
    EXPECT_EQ(trimmed(0.04f), "0");
    EXPECT_EQ(trimmed(-0.04f), "-0");
    EXPECT_EQ(trimmed(99.96f), "100");
}

// ---- Abbreviations ----------------------------------------------------------------

TEST_F(FormattingTest, NumbersBelowAThousandAreWrittenOut) {
    EXPECT_EQ(abbreviated(0), "0");
    EXPECT_EQ(abbreviated(999), "999");
    EXPECT_EQ(abbreviated(-5000), "-5000");
}

TEST_F(FormattingTest, SmallNumbersGoThroughFloatAndBack) {
    EXPECT_EQ(abbreviated(-16777216), "-16777216");
    EXPECT_EQ(abbreviated(-16777217), "-16777216");
    EXPECT_EQ(abbreviated(-123456789), "-123456792");
    EXPECT_EQ(abbreviated(INT_MIN), "-2147483648");
}

TEST_F(FormattingTest, LargeNumbersTakeTheLargestSuffixThatFits) {
    EXPECT_EQ(abbreviated(1000), "1K");
    EXPECT_EQ(abbreviated(1234), "1.2K");
    EXPECT_EQ(abbreviated(1000000), "1M");
    EXPECT_EQ(abbreviated(1500000), "1.5M");
    EXPECT_EQ(abbreviated(2000000000), "2B");
    EXPECT_EQ(abbreviated(INT_MAX), "2.1B");
}

TEST_F(FormattingTest, RoundingAtTheTopOfABandKeepsTheSmallerSuffix) {
    // 999.999 is written 1000.0 and trimmed: the suffix is not promoted.
    EXPECT_EQ(abbreviated(999999), "1000K");
    EXPECT_EQ(abbreviated(999949), "999.9K");
    // In single precision 999999999 is already 10^9.
    EXPECT_EQ(abbreviated(999999999), "1B");
}

// ---- Translations ------------------------------------------------------------------

// The main bundle is a scratch folder with the given localisations, and the
// user prefers the given languages.
class TranslationTest : public ::testing::Test {
  protected:
    ~TranslationTest() override {
        NSUserDefaults::resetStandardUserDefaults();
        foundation::configureProcess({});
        std::error_code ignored;
        std::filesystem::remove_all(folder_, ignored);
    }

    void localise(const std::vector<std::string>& localizations,
                  const std::vector<std::string>& preferred) {
        std::string pattern = "/tmp/pv-translation-XXXXXX";
        if (::mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("mkdtemp failed");
        folder_ = pattern;
        for (const auto& name : localizations) {
            std::filesystem::create_directory(folder_ + "/" + name + ".lproj");
        }
        foundation::configureProcess({folder_, folder_, preferred});
        NSUserDefaults::resetStandardUserDefaults();
    }

    static std::string pick(NSString* arabic, NSString* english, NSString* french) {
        return text(ParcelvaneHelper::translate(arabic, english, french));
    }
    static std::string pickAll() {
        return pick(NSSTR("إعدادات"), NSSTR("Settings"), NSSTR("Réglages"));
    }

    objc::AutoreleasePool pool;
    std::string folder_;
};

const std::vector<std::string> kHostLocalizations = {"ar", "en", "fr"};

TEST_F(TranslationTest, EachOfTheThreeLanguagesGetsItsOwnText) {
    localise(kHostLocalizations, {"ar"});
    EXPECT_EQ(pickAll(), "إعدادات");
}

TEST_F(TranslationTest, FrenchIsChosenForAFrenchLocalisation) {
    localise(kHostLocalizations, {"fr", "en"});
    EXPECT_EQ(pickAll(), "Réglages");
}

TEST_F(TranslationTest, EnglishIsChosenForAnEnglishLocalisation) {
    localise(kHostLocalizations, {"en", "fr"});
    EXPECT_EQ(pickAll(), "Settings");
}

TEST_F(TranslationTest, ArabicWithoutAnArabicTextFallsBackToEnglish) {
    localise(kHostLocalizations, {"ar"});
    EXPECT_EQ(pick(nullptr, NSSTR("Settings"), NSSTR("Réglages")), "Settings");
}

TEST_F(TranslationTest, FrenchWithoutAFrenchTextFallsBackToEnglish) {
    localise(kHostLocalizations, {"fr"});
    EXPECT_EQ(pick(NSSTR("إعدادات"), NSSTR("Settings"), nullptr), "Settings");
}

TEST_F(TranslationTest, ARegionalLocalisationIsNotItsLanguage) {
    // The bundle has fr-CA itself, so that is the localisation chosen; the
    // comparison is exact and it falls to English.
    localise({"en", "fr", "fr-CA"}, {"fr-CA"});
    EXPECT_EQ(pickAll(), "Settings");
}

TEST_F(TranslationTest, ARegionalPreferenceMatchesItsLanguagesLocalisation) {
    // Without fr-CA in the bundle the user's fr-CA is served by fr.
    localise(kHostLocalizations, {"fr-CA"});
    EXPECT_EQ(pickAll(), "Réglages");
}

TEST_F(TranslationTest, AnyOtherLanguageGetsEnglish) {
    localise({"ar", "de", "en", "fr"}, {"de"});
    EXPECT_EQ(pickAll(), "Settings");
    EXPECT_EQ(pick(NSSTR("إعدادات"), nullptr, NSSTR("Réglages")), "(nil)");
}

TEST_F(TranslationTest, ABundleWithoutLocalisationsSpeaksItsDevelopmentRegion) {
    localise({}, {"fr"});
    EXPECT_EQ(pickAll(), "Settings");
}

// ---- Presentation ---------------------------------------------------------------------

class PresentationTest : public ::testing::Test {
  protected:
    objc::AutoreleasePool pool;
    const objc::Strong<UIViewController> presenter = objc::make<UIViewController>();
    const objc::Strong<NSObject> target = objc::make<NSObject>();
};

TEST_F(PresentationTest, TheFileBrowserIsPresentedAsAFormSheetInANavigationController) {
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
}

TEST_F(PresentationTest, TheAlertHasOnlyAnOKButtonAndTheControllerAsDelegate) {
    ParcelvaneHelper::showAlertViewForExt(presenter.get(), NSSTR("Unsupported"),
                                          NSSTR("This file cannot be sent."));

    UIAlertView* const alert = UIAlertView::topVisibleAlert();
    ASSERT_NE(alert, nullptr);
    EXPECT_EQ(text(alert->title()), "Unsupported");
    EXPECT_EQ(text(alert->message()), "This file cannot be sent.");
    EXPECT_EQ(alert->delegate(), static_cast<id>(presenter.get()));
    EXPECT_EQ(alert->buttonTitles(), std::vector<std::string>{"OK"});
    EXPECT_EQ(alert->cancelButtonIndex(), 0);

    // The controller does not answer the alert's messages: the tap only
    // takes the alert away.
    EXPECT_TRUE(alert->tapButton(0));
    EXPECT_EQ(UIAlertView::topVisibleAlert(), nullptr);
}

}  // namespace
