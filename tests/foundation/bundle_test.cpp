// Bundles: Info.plist, resources, localisations for the user's languages, translations.
#include <gtest/gtest.h>

#include <Foundation/NSArray.h>
#include <Foundation/NSBundle.h>
#include <Foundation/NSData.h>
#include <Foundation/NSDictionary.h>
#include <Foundation/NSNumber.h>
#include <Foundation/NSPropertyListSerialization.h>
#include <Foundation/process_environment.h>

#include <thread>
#include <vector>

#include "foundation_helpers.h"
#include "scratch_folder.h"

namespace {

using namespace testsupport;

// A bundle like the host's: English development region, French and Arabic, some resources.
class BundleTest : public ::testing::Test {
  protected:
    void SetUp() override {
        folder_.write("Info.plist", R"(<?xml version="1.0" encoding="UTF-8"?>
<!DOCTYPE plist PUBLIC "-//Apple//DTD PLIST 1.0//EN" "http://www.apple.com/DTDs/PropertyList-1.0.dtd">
<plist version="1.0"><dict>
  <key>CFBundleIdentifier</key><string>net.example.messenger</string>
  <key>CFBundleDevelopmentRegion</key><string>en</string>
  <key>CFBundleDisplayName</key><string>Messenger</string>
  <key>CFBundleVersion</key><integer>42</integer>
</dict></plist>)");
        folder_.write("en.lproj/Localizable.strings",
                      "\"Settings\" = \"Settings\";\n\"Only English\" = \"English text\";\n");
        folder_.write("fr.lproj/Localizable.strings",
                      "/* French */\n\"Settings\" = \"Réglages\";\n\"Empty\" = \"\";\n");
        folder_.write("ar.lproj/Localizable.strings", "\"Settings\" = \"الإعدادات\";");
        folder_.write("fr.lproj/Chat.strings", "\"Send\" = \"Envoyer\";");
        folder_.write("fr.lproj/InfoPlist.strings", "CFBundleDisplayName = \"Messagerie\";");
        folder_.write("ar.lproj/Broken.strings", "\"unterminated = \"x\";");
        folder_.write("en.lproj/Broken.strings", "\"Key\" = \"from English\";");
        folder_.write("icon.png", "png");
        folder_.write("fr.lproj/welcome.html", "<p>Bienvenue</p>");
        folder_.write("en.lproj/welcome.html", "<p>Welcome</p>");
        folder_.write("Themes/dark.plist", "<plist/>");
        folder_.write("README", "no extension");
        bundle_ = NSBundle::bundleWithPath(S(folder_.path().c_str()));
        ASSERT_NE(bundle_, nullptr);
    }
    void TearDown() override { foundation::configureProcess({}); }

    // Each test sees its own bundle folder, hence a bundle object of its own.
    void prefer(std::vector<std::string> languages) {
        foundation::configureProcess({"", "", std::move(languages)});
    }

    objc::AutoreleasePool pool_;
    ScratchFolder folder_;
    NSBundle* bundle_ = nullptr;
};

TEST_F(BundleTest, OneObjectPerFolderAndItsLocalisedInfoDictionary) {
    EXPECT_EQ(NSBundle::bundleWithPath(S((folder_.path() + "/./Themes/..").c_str())), bundle_);
    EXPECT_EQ(NSBundle::bundleWithPath(S((folder_ / "missing").c_str())), nullptr);
    EXPECT_EQ(NSBundle::bundleWithPath(S((folder_ / "icon.png").c_str())), nullptr);
    EXPECT_EQ(NSBundle::bundleWithPath(nullptr), nullptr);
    EXPECT_EQ(text(bundle_->bundleIdentifier()), "net.example.messenger");
    EXPECT_TRUE(NSNumber::create(42)->isEqual(
        bundle_->infoDictionary()->objectForKey(S("CFBundleVersion"))));
    // Info.plist values are localised through InfoPlist.strings.
    prefer({"fr"});
    EXPECT_EQ(
        text(static_cast<NSString*>(bundle_->objectForInfoDictionaryKey(S("CFBundleDisplayName")))),
        "Messagerie");
    prefer({"en"});
    EXPECT_EQ(
        text(static_cast<NSString*>(bundle_->objectForInfoDictionaryKey(S("CFBundleDisplayName")))),
        "Messenger");
}

TEST(Bundle, BinaryInfoPlistAndBundlesWithoutOne) {
    objc::AutoreleasePool pool;
    ScratchFolder folder;
    NSData* binary = NSPropertyListSerialization::dataWithPropertyList(
        NSDictionary::create({{S("CFBundleIdentifier"), S("net.example.binary")},
                              {S("CFBundleDevelopmentRegion"), S("fr")}}),
        NSPropertyListBinaryFormat_v1_0, {}, nullptr);
    folder.write("app/Info.plist", binary->view());
    folder.write("app/fr.lproj/Localizable.strings", "\"k\" = \"v\";");
    NSBundle* bundle = NSBundle::bundleWithPath(S((folder / "app").c_str()));
    ASSERT_NE(bundle, nullptr);
    EXPECT_EQ(text(bundle->bundleIdentifier()), "net.example.binary");
    folder.write("bare/file.txt", "x");
    NSBundle* bare = NSBundle::bundleWithPath(S((folder / "bare").c_str()));
    ASSERT_NE(bare, nullptr);
    EXPECT_EQ(bare->bundleIdentifier(), nullptr);
    EXPECT_EQ(bare->infoDictionary()->count(), 0u);
    EXPECT_EQ(bare->preferredLocalizations()->count(), 0u);
    EXPECT_EQ(text(bare->localizedStringForKey(S("k"), nullptr, nullptr)), "k");
    folder.write("broken/Info.plist", "garbage");
    EXPECT_EQ(NSBundle::bundleWithPath(S((folder / "broken").c_str()))->infoDictionary()->count(),
              0u);
}

TEST(Bundle, LocalizationMatchingRules) {
    objc::AutoreleasePool pool;
    const auto available = NSArray::create(
        {S("Base"), S("en"), S("fr"), S("pt-PT"), S("zh-Hant"), S("zh-Hans"), S("en_GB")});
    const auto match = [&](std::vector<const char*> languages) {
        std::vector<id> prefs;
        for (const char* l : languages) prefs.push_back(S(l));
        return texts(NSBundle::preferredLocalizationsFromArray(available, NSArray::create(prefs)));
    };
    using V = std::vector<std::string>;
    EXPECT_EQ(match({"zh-Hant-TW"}), V{"zh-Hant"});
    EXPECT_EQ(match({"pt-BR"}), V{"pt-PT"});  // same language, other region
    EXPECT_EQ(match({"en-GB"}), V{"en_GB"});  // spelled either way
    EXPECT_EQ(match({"ja", "ko"}), V{"en"});  // the development region
    EXPECT_EQ(match({"base"}), V{"en"});      // Base is not a language
    const auto noEnglish = NSArray::create({S("fr"), S("de")});
    EXPECT_EQ(
        texts(NSBundle::preferredLocalizationsFromArray(noEnglish, NSArray::create({S("ja")}))),
        V{"fr"});  // something rather than nothing
}

TEST_F(BundleTest, TranslationsFallBackToTheDevelopmentRegionThenToValueOrKey) {
    prefer({"fr-FR"});
    EXPECT_EQ(text(bundle_->localizedStringForKey(S("Settings"), nullptr, nullptr)), "Réglages");
    EXPECT_EQ(text(bundle_->localizedStringForKey(S("Only English"), nullptr, nullptr)),
              "English text");
    EXPECT_EQ(text(bundle_->localizedStringForKey(S("Missing"), S(""), nullptr)), "Missing");
    // An empty translation is a translation.
    EXPECT_EQ(text(bundle_->localizedStringForKey(S("Empty"), S("x"), nullptr)), "");
    EXPECT_EQ(text(bundle_->localizedStringForKey(S("Send"), nullptr, S("Chat"))), "Envoyer");
    EXPECT_EQ(text(bundle_->localizedStringForKey(nullptr, S("v"), nullptr)), "v");
    prefer({"ar"});
    EXPECT_EQ(text(bundle_->localizedStringForKey(S("Settings"), nullptr, nullptr)), "الإعدادات");
    EXPECT_EQ(text(bundle_->localizedStringForKey(S("Send"), nullptr, S("Chat"))), "Send");
    // A malformed table gives no entries; the lookup goes on to English.
    EXPECT_EQ(text(bundle_->localizedStringForKey(S("Key"), nullptr, S("Broken"))), "from English");
    prefer({"de"});
    EXPECT_EQ(text(bundle_->localizedStringForKey(S("Settings"), nullptr, nullptr)), "Settings");
}

TEST_F(BundleTest, ResourcesAreFoundInTheFolderThenInTheLocalisation) {
    prefer({"fr"});
    EXPECT_EQ(text(bundle_->pathForResource(S("icon.png"), nullptr)), folder_ / "icon.png");
    EXPECT_EQ(text(bundle_->pathForResource(S("README"), S(""))), folder_ / "README");
    EXPECT_EQ(text(bundle_->pathForResource(S("welcome"), S("html"))),
              folder_ / "fr.lproj/welcome.html");
    EXPECT_EQ(text(bundle_->pathForResource(S("dark"), S("plist"), S("Themes"))),
              folder_ / "Themes/dark.plist");
    EXPECT_EQ(bundle_->pathForResource(S("dark"), S("plist")), nullptr);
    EXPECT_EQ(text(bundle_->pathForResource(nullptr, S("png"))), folder_ / "icon.png");
    prefer({"de"});
    EXPECT_EQ(text(bundle_->pathForResource(S("welcome"), S("html"))),
              folder_ / "en.lproj/welcome.html");
}

TEST_F(BundleTest, TranslationsFromManyThreadsAtOnce) {
    prefer({"fr"});
    std::vector<std::thread> threads;
    std::atomic<int> wrong{0};
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([&] {
            for (int i = 0; i < 300; ++i) {
                objc::AutoreleasePool pool;
                if (text(bundle_->localizedStringForKey(S("Settings"), nullptr, nullptr)) !=
                    "Réglages") {
                    ++wrong;
                }
                (void)bundle_->preferredLocalizations();
                (void)bundle_->localizedStringForKey(S("Send"), nullptr, S("Chat"));
            }
        });
    }
    for (auto& t : threads) t.join();
    EXPECT_EQ(wrong, 0);
}

}  // namespace
