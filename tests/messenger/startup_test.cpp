#include "messenger_process.h"

namespace {

using namespace messengertest;

TEST(Startup, ALibraryThatCannotBeLoadedEndsTheProgram) {
    TempFolder home;
    const fs::path garbage = home.path() / "not-a-library.so";
    std::ofstream(garbage) << "this is not an ELF file";
    for (const std::string& library : {(home.path() / "missing.so").string(), garbage.string()}) {
        const Result r = run({"--home", home.path().string(), "--inject", library}, "screen\n");
        EXPECT_EQ(r.status, 1) << library;
        EXPECT_TRUE(contains(r.err, library)) << r.err;
        EXPECT_TRUE(r.out.empty()) << "no screen is built: " << r.out;
    }
    const Result r = run({"--home", home.path().string()}, "",
                         {{"MESSENGER_INSERT_LIBRARIES", ":" + garbage.string() + ":"}});
    EXPECT_EQ(r.status, 1);
    EXPECT_TRUE(contains(r.err, garbage.string())) << r.err;
}

TEST(Startup, HomeMakesTheContainer) {
    TempFolder base;
    const fs::path home = base.path() / "deep" / "container";
    const Result r = run({"--home", home.string()});
    ASSERT_EQ(r.status, 0) << r.err;
    for (const char* folder : {"Documents", "Library/Preferences", "Library/Caches", "tmp"}) {
        EXPECT_TRUE(fs::is_directory(home / folder)) << folder;
    }
}

TEST(Startup, TheDefaultContainerFollowsXdgStateHome) {
    TempFolder state;
    const Result r = run({}, "quit\n", {{"XDG_STATE_HOME", state.path().string()}});
    ASSERT_EQ(r.status, 0) << r.err;
    EXPECT_TRUE(
        fs::is_directory(state.path() / "parcelvane-messenger" / "Library" / "Preferences"));
}

TEST(Startup, BadOptionsAreRefusedWithTheUsage) {
    for (const std::vector<std::string>& args :
         std::vector<std::vector<std::string>>{{"--device", "nokia"},
                                               {"--ios", "nine"},
                                               {"--inject"},
                                               {"--frobnicate"},
                                               {"--language", "e n"}}) {
        const Result r = run(args);
        EXPECT_EQ(r.status, 2) << args[0];
        EXPECT_TRUE(contains(r.err, "usage:")) << r.err;
    }
    const Result help = run({"--help"});
    EXPECT_EQ(help.status, 0);
    EXPECT_TRUE(contains(help.out, "--describe-class"));
}

}  // namespace
