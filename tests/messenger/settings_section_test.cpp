// The library's Settings section end to end (its icon is checked in process, with a server).
#include "messenger_process.h"

namespace {

using namespace testsupport;

class SettingsSection : public ::testing::Test {
  protected:
    Result runScript(const std::string& script, std::vector<std::string> options = {},
                     const std::map<std::string, std::string>& env = {}) {
        return testsupport::runScript(base, script, std::move(options), true, env);
    }

    const ScratchFolder base{"messenger-test"};
};

#define EXPECT_SCRIPT_PASSES(result) \
    EXPECT_EQ((result).status, 0) << (result).err << "\n--- output ---\n" << (result).out

TEST_F(SettingsSection, FromIOS7OnASettingsPageRowAndADebugRowFollowTheFirstSection) {
    const Result r = runScript(R"script(settings
expect [section 1]
expect 1.1 WhatsApp User
expect [Parcelvane]
expect 2.1 Parcelvane Settings >
expect-not 2.1 Parcelvane Settings [image]
expect 2.2 Debug Settings >
expect-not 2.3
expect footer: ""
expect [section 3]
tap "Debug Settings"
expect == Debug ==
expect Version: 2.16.4
back
expect [Parcelvane]
)script");
    EXPECT_SCRIPT_PASSES(r);
    // The section sits directly below the host's first section.
    const std::string& out = r.out;
    const auto first = out.find("1.1 WhatsApp User");
    const auto library = out.find("[Parcelvane]");
    ASSERT_NE(library, std::string::npos);
    EXPECT_LT(first, library);
    EXPECT_EQ(out.substr(first, library - first).find("[section"), std::string::npos);
}

// Others get English, as the helper's translation test shows.
TEST_F(SettingsSection, TheRowsSpeakTheDevicesLanguage) {
    const std::vector<std::pair<std::string, std::string>> expected{
        {"fr", "expect 2.1 Parcelvane Réglages >\nexpect 2.2 Debug Réglages >\n"},
        {"ar", "expect 2.1 Parcelvane إعدادات >\nexpect 2.2 Debug >\n"},
    };
    for (const auto& [language, checks] : expected) {
        const Result r =
            runScript("settings\nexpect [Parcelvane]\n" + checks, {"--language", language});
        EXPECT_SCRIPT_PASSES(r) << " (language " << language << ")";
    }
}

// Below iOS 7 the section is switches; below iOS 8, with them on, sharing goes through the browser.
TEST_F(SettingsSection, BeforeIOS7SwitchesShowTheirKeysAndLetTheShareActionSendAZip) {
    base.write("files/archive.zip", "PK\x03\x04 zip");
    std::string script = R"script(set doc_options_bool true
chat alice
share
expect Types: com.adobe.pdf
cancel
settings
expect 2.1 Enable advanced option [on]
expect 2.2 Enable Any Document [off]
expect 2.3 Enable Send System Files [off]
expect 2.4 Debug Settings >
expect-not 2.5
# A tap on a switch row only clears its highlight.
tap 2.1
expect-not > 2.1
expect 2.1 Enable advanced option [on]
toggle "Enable Any Document"
expect 2.2 Enable Any Document [on]
expect 2.3 Enable Send System Files [off]
toggle "Enable Send System Files"
back
chat alice
share
expect == File Browser ==
open FILES
choose archive.zip
expect You: [document] archive.zip
)script";
    script.replace(script.find("FILES"), 5, base.path() + "/files");
    EXPECT_SCRIPT_PASSES(runScript(script, {"--ios", "6.1"}));
}

}  // namespace
