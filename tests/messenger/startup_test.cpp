#include "messenger_process.h"

namespace {

using namespace testsupport;

TEST(Startup, ALibraryThatCannotBeLoadedEndsTheProgram) {
    const ScratchFolder home{"messenger-test"};
    const fs::path garbage = home / "not-a-library.so";
    std::ofstream(garbage) << "this is not an ELF file";
    for (const std::string& library : {(home / "missing.so").string(), garbage.string()}) {
        const Result r = run({"--home", home.path(), "--inject", library}, "screen\n");
        EXPECT_EQ(r.status, 1) << library;
        EXPECT_TRUE(contains(r.err, library)) << r.err;
        EXPECT_TRUE(r.out.empty()) << "no screen is built: " << r.out;
    }
    const Result r = run({"--home", home.path()}, "",
                         {{"MESSENGER_INSERT_LIBRARIES", ":" + garbage.string() + ":"}});
    EXPECT_EQ(r.status, 1);
    EXPECT_TRUE(contains(r.err, garbage.string())) << r.err;
    // A bare name is a file in the current folder, not one of the system's.
    const Result bare =
        run({"--home", home.path(), "--inject", "libc.so.6"}, "screen\n", {}, home.path());
    EXPECT_EQ(bare.status, 1);
    EXPECT_TRUE(contains(bare.err, "./libc.so.6")) << bare.err;
    fs::create_symlink(PARCELVANE_LIBRARY, home / "libpv.so");
    const Result here =
        run({"--home", home.path(), "--inject", "libpv.so"}, "settings\nquit\n", {}, home.path());
    EXPECT_EQ(here.status, 0) << here.err;
    EXPECT_TRUE(contains(here.out, "Parcelvane Settings")) << here.out;
}

TEST(Startup, HomeHoldsTheContainerAndTheProvidersAndNothingGoesOutside) {
    const ScratchFolder base{"messenger-test"};
    const fs::path home = base / "deep" / "device";
    const Result r = run({"--home", home.string()});
    ASSERT_EQ(r.status, 0) << r.err;
    for (const char* folder : {"Documents", "Library/Preferences", "Library/Caches", "tmp"}) {
        EXPECT_TRUE(fs::is_directory(home / "Container" / folder)) << folder;
    }
    EXPECT_TRUE(fs::is_directory(home / "DocumentProviders" / "iCloud Drive"));
    EXPECT_EQ(std::distance(fs::directory_iterator(home.parent_path()), {}), 1);
    EXPECT_EQ(std::distance(fs::directory_iterator(home), {}), 2);
}

TEST(Startup, TheDefaultContainerFollowsXdgStateHome) {
    const ScratchFolder state{"messenger-test"};
    const Result r = run({}, "quit\n", {{"XDG_STATE_HOME", state.path()}});
    ASSERT_EQ(r.status, 0) << r.err;
    EXPECT_TRUE(fs::is_directory(state / "parcelvane-messenger" / "Container" / "Library"));
    EXPECT_TRUE(fs::is_directory(state / "parcelvane-messenger" / "DocumentProviders"));
}

TEST(Startup, BadOptionsAreRefusedWithTheUsage) {
    for (const std::vector<std::string>& args :
         std::vector<std::vector<std::string>>{{"--device", "nokia"},
                                               {"--ios", "nine"},
                                               {"--inject"},
                                               {"--frobnicate"},
                                               {"--language", "e n"},
                                               {"--frobnicate\x1b[2J"}}) {
        const Result r = run(args);
        EXPECT_EQ(r.status, 2) << args[0];
        EXPECT_TRUE(contains(r.err, "usage:")) << r.err;
        EXPECT_FALSE(contains(r.err, "\x1b")) << "escaped, not sent to the terminal";
    }
    // Only versions that devices had, from iOS 4 to 9.
    for (const char* version :
         {"99", "0", "0.0", "9", "9.4", "9.3.7", "3.2", "10.0", "8.5", "4.01"}) {
        const Result r = run({"--ios", version});
        EXPECT_EQ(r.status, 2) << version;
        EXPECT_TRUE(contains(r.err, "4.0-4.3, 5.0-5.1, 6.0-6.1, 7.0-7.1, 8.0-8.4, 9.0-9.3"))
            << r.err;
    }
    const ScratchFolder home{"messenger-test"};
    for (const char* version : {"4.0", "4.2.1", "6.1.6", "8.4.1", "9.3.5"}) {
        const Result r = run({"--home", home.path(), "--ios", version}, "quit\n");
        EXPECT_EQ(r.status, 0) << version << ": " << r.err;
    }
    // Help lists every option and script command.
    const Result help = run({"--help"});
    EXPECT_EQ(help.status, 0);
    for (const char* text : {"--describe-class", "8.0-8.4", "--script FILE", "attach", "share",
                             "choose N|\"TITLE\"", "up ", "open PATH", "cancel", "expect TEXT",
                             "expect-not TEXT", "wait MS", "set KEY VALUE"}) {
        EXPECT_TRUE(contains(help.out, text)) << text;
    }
}

}  // namespace
