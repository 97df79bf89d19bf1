// Scripts: how they are read, echoed and checked, and how a failure ends them.
#include "messenger_process.h"

namespace {

using namespace testsupport;

class Script : public ::testing::Test {
  protected:
    Result runScript(const std::string& text) {
        return testsupport::runScript(device, text, {}, false, {}, "chat family\n");
    }
    const ScratchFolder device{"messenger-test"};
};

TEST_F(Script, TheFirstUnmetExpectationEndsTheScriptWithItsLineAndTheScreen) {
    const Result r = runScript(
        "# a comment, then a blank line\n"
        "\n"
        "  chat bob  \n"
        "expect Lunch tomorrow?\n"
        "wait 10\n"
        "expect-not Lunch tomorrow?\n"
        "chat alice\n");
    EXPECT_EQ(r.status, 1);
    EXPECT_TRUE(contains(r.err, (device / "test.script").string() +
                                    ":6: expected no \"Lunch tomorrow?\"\n== Bob =="))
        << r.err;
    EXPECT_TRUE(contains(r.out, "> chat bob\n== Bob ==")) << r.out;
    EXPECT_TRUE(contains(r.out, "> expect Lunch tomorrow?\n> wait 10\n> expect-not")) << r.out;
    EXPECT_FALSE(contains(r.out, "a comment"));
    EXPECT_FALSE(contains(r.out, "> chat alice")) << "nothing after the failure runs";
    EXPECT_FALSE(contains(r.out, "== Family ==")) << "standard input is not read";
}

TEST_F(Script, UnknownCommandsAndMisusedOnesFailButAGoodScriptSucceeds) {
    const Result unknown = runScript("chat bob\nfrobnicate now\n");
    EXPECT_EQ(unknown.status, 1);
    EXPECT_TRUE(contains(unknown.err, ":2: Unknown command 'frobnicate'")) << unknown.err;

    const Result nothing = runScript("choose 1\n");
    EXPECT_EQ(nothing.status, 1);
    EXPECT_TRUE(contains(nothing.err, ":1: Nothing to choose from here.")) << nothing.err;

    const Result covered = runScript("chat bob\nattach\nshare\n");
    EXPECT_EQ(covered.status, 1);
    EXPECT_TRUE(contains(covered.err, ":3: The chat is covered")) << covered.err;

    const Result good = runScript(
        "chat bob\nattach\nexpect 1. Take Photo or Video\nchoose 1\n"
        "expect == Alert: Camera Unavailable ==\nchoose OK\nexpect-not Alert\n");
    EXPECT_EQ(good.status, 0) << good.out << good.err;
    EXPECT_TRUE(good.err.empty()) << good.err;
}

TEST(ScriptOptions, AMissingScriptIsRefused) {
    const ScratchFolder base{"messenger-test"};
    const Result missing = run({"--home", base.path(), "--script", (base / "none").string()});
    EXPECT_EQ(missing.status, 2);
    EXPECT_TRUE(contains(missing.err, "cannot read the script")) << missing.err;
}

}  // namespace
