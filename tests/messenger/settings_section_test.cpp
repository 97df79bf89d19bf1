// The library's Settings section end to end; icon downloads only reach loopback proxies.
#include "loopback_http_server.h"
#include "messenger_process.h"
#include "tiny_png.h"

namespace {

using namespace testsupport;

constexpr char kIconPath[] = "/apt/depict/ParcelvaneIcon-Small@2x.png";

class SettingsSection : public ::testing::Test {
  protected:
    Result runScript(const std::string& script, std::vector<std::string> options,
                     const std::string& proxy = {}) {
        const fs::path file = base / "settings.script";
        std::ofstream(file) << script;
        std::vector<std::string> args{"--home", base.path(), "--script", file.string()};
        args.insert(args.end(), options.begin(), options.end());
#ifdef PARCELVANE_LIBRARY
        args.insert(args.end(), {"--inject", PARCELVANE_LIBRARY});
#else
        ADD_FAILURE() << "the library was not built";
#endif
        if (proxy.empty()) return run(args);
        return run(args, "", {{"http_proxy", proxy}});
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
)script",
                               {});
    EXPECT_SCRIPT_PASSES(r);
    // The section sits directly below the host's first section.
    const std::string& out = r.out;
    const auto first = out.find("1.1 WhatsApp User");
    const auto library = out.find("[Parcelvane]");
    ASSERT_NE(library, std::string::npos);
    EXPECT_LT(first, library);
    EXPECT_EQ(out.substr(first, library - first).find("[section"), std::string::npos);
}

TEST_F(SettingsSection, TheRowsSpeakTheDevicesLanguageAndEnglishForOthers) {
    const std::vector<std::pair<std::string, std::string>> expected{
        {"fr", "expect 2.1 Parcelvane Réglages >\nexpect 2.2 Debug Réglages >\n"},
        {"ar", "expect 2.1 Parcelvane إعدادات >\nexpect 2.2 Debug >\n"},
        {"de", "expect 2.1 Parcelvane Settings >\nexpect 2.2 Debug Settings >\n"},
    };
    for (const auto& [language, checks] : expected) {
        const Result r =
            runScript("settings\nexpect [Parcelvane]\n" + checks, {"--language", language});
        EXPECT_SCRIPT_PASSES(r) << " (language " << language << ")";
    }
}

TEST_F(SettingsSection, TheIconFromTheMakersServerAppearsBesideTheSettingsRow) {
    testsupport::LoopbackHttpServer server;
    server.respond(kIconPath, testsupport::CannedResponse::ok(testsupport::tinyPng()));
    const Result r = runScript(R"script(settings
expect 2.1 Parcelvane Settings [image] >
expect-not 2.2 Debug Settings [image]
)script",
                               {}, server.baseURL());
    EXPECT_SCRIPT_PASSES(r);
    ASSERT_FALSE(server.requestLines().empty());
    EXPECT_EQ(server.requestLines()[0],
              "GET http://apt.tolbrenn.net/apt/depict/ParcelvaneIcon-Small@2x.png HTTP/1.1");
}

TEST_F(SettingsSection, BeforeIOS7SwitchesShowAndWriteTheirOwnKeys) {
    const Result first = runScript(R"script(set doc_options_bool true
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
)script",
                                   {"--ios", "6.1"});
    EXPECT_SCRIPT_PASSES(first);

    // The next start reads what the toggle wrote: only its own key.
    const Result second = runScript("defaults\n", {"--ios", "6.1"});
    EXPECT_SCRIPT_PASSES(second);
    EXPECT_TRUE(contains(second.out, "doc_options_bool = true")) << second.out;
    EXPECT_TRUE(contains(second.out, "send_documents_enabled = true")) << second.out;
    EXPECT_FALSE(contains(second.out, "send_filesystem_enabled")) << second.out;
}

// Below iOS 8 the share action goes through the file browser once the system-files switch is on.
TEST_F(SettingsSection, TurningOnAnyDocumentLetsTheShareActionSendAZip) {
    const fs::path files = base / "files";
    fs::create_directories(files);
    std::ofstream(files / "archive.zip", std::ios::binary) << "PK\x03\x04 zip";
    std::string script = R"script(chat alice
share
expect Types: com.adobe.pdf
cancel
settings
toggle "Enable Any Document"
toggle "Enable Send System Files"
expect 2.2 Enable Any Document [on]
back
chat alice
share
expect == File Browser ==
open FILES
choose archive.zip
expect You: [document] archive.zip
)script";
    script.replace(script.find("FILES"), 5, files.string());
    const Result r = runScript(script, {"--ios", "6.1"});
    EXPECT_SCRIPT_PASSES(r);
}

}  // namespace
