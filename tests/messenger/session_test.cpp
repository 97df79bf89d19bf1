#include "messenger_process.h"

namespace {

using namespace testsupport;

class Session : public ::testing::Test {
  protected:
    Result send(const std::string& script, std::vector<std::string> extra = {}) {
        std::vector<std::string> args{"--home", home.path()};
        args.insert(args.end(), extra.begin(), extra.end());
        return run(args, script);
    }
    const ScratchFolder home{"messenger-test"};
};

TEST_F(Session, DefaultsWrittenWithSetSurviveARestart) {
    const Result first = send(
        "set send_documents_enabled true\nset retries 3\nset ratio 0.25\n"
        "set greeting hello world\nset quoted \"42\"\nquit\n");
    ASSERT_EQ(first.status, 0) << first.err;
    EXPECT_TRUE(contains(first.out, "send_documents_enabled = true"));

    const Result second = send("defaults\n");
    ASSERT_EQ(second.status, 0) << second.err;
    for (const char* line : {"send_documents_enabled = true", "retries = 3", "ratio = 0.25",
                             "greeting = hello world", "quoted = 42"}) {
        EXPECT_TRUE(contains(second.out, std::string(line) + "\n")) << line << "\n" << second.out;
    }
}

TEST_F(Session, SetSaysWhenItsValueCouldNotBeSaved) {
    // A file where the preferences folder belongs: no write there succeeds, not even root's.
    home.write("Container/Library/Preferences", "not a folder");
    const Result r = send("set retries 3\ndefaults\nquit\n");
    ASSERT_EQ(r.status, 0) << r.err;
    EXPECT_TRUE(contains(r.out, "retries = 3 (not saved: ")) << r.out;
    EXPECT_TRUE(contains(r.out, "Preferences: Not a directory")) << r.out;
    EXPECT_TRUE(contains(r.out, "retries = 3\n")) << "kept in memory:\n" << r.out;
    EXPECT_TRUE(contains(r.err, "the settings could not be saved")) << r.err;
}

TEST_F(Session, MistakesAreExplainedAndTheSessionGoesOn) {
    const Result r = send(
        "frobnicate\nchat nobody\x1b[2J\x07\xc2\x9b\nset lonely\nset k\x1b]0;t\x07 v\nhelp\nquit\n"
        "screen\n");
    ASSERT_EQ(r.status, 0) << r.err;
    EXPECT_TRUE(contains(r.out, "Unknown command 'frobnicate'"));
    // What was typed comes back escaped, in the echo and in the answers.
    EXPECT_TRUE(contains(r.out, "> chat nobody\\x1b[2J\\x07\\u{9b}\n")) << r.out;
    EXPECT_TRUE(contains(r.out, "No chat named 'nobody\\x1b[2J\\x07\\u{9b}'")) << r.out;
    EXPECT_TRUE(contains(r.out, "k\\x1b]0;t\\x07 = v")) << r.out;
    for (const char raw : {'\x1b', '\x07'}) EXPECT_EQ(r.out.find(raw), std::string::npos);
    EXPECT_FALSE(contains(r.out, "\xc2\x9b"));
    EXPECT_TRUE(contains(r.out, "usage: set KEY VALUE"));
    EXPECT_TRUE(contains(r.out, "chat NAME"));
    // Nothing after quit runs.
    EXPECT_TRUE(contains(r.out, "> quit\n")) << r.out;
    EXPECT_FALSE(contains(r.out, "> screen")) << r.out;
}

}  // namespace
