// Scripts: how they are read, echoed and checked, and how a failure ends them.
#include "messenger_process.h"

#include <UIKit/UIImage.h>

#include <fstream>
#include <iterator>

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

// The pixel at a point of a 2x screenshot, as grey-ish RGB.
std::array<int, 3> rgbAt(UIImage* image, int x, int y) {
    const auto p = image->pixelAt(static_cast<std::size_t>(x * 2), static_cast<std::size_t>(y * 2));
    return {p[0], p[1], p[2]};
}

objc::Strong<UIImage> readPng(const fs::path& path) {
    std::ifstream in(path, std::ios::binary);
    const std::vector<std::uint8_t> bytes{std::istreambuf_iterator<char>(in), {}};
    return UIImage::decodePNG(bytes, 2);
}

TEST_F(Script, ScreenshotsAreTheScreenInFrontAtTheDeviceSizeAndScale) {
    const fs::path shots = device / "shots";
    const Result r =
        testsupport::runScript(device,
                               "settings\nscreenshot " + (device / "settings.png").string() +
                                   "\nback\nchat bob\nattach\nchoose 1\n",
                               {"--screenshots", shots.string()});
    ASSERT_EQ(r.status, 0) << r.err;
    const auto settings = readPng(device / "settings.png");
    ASSERT_TRUE(settings);
    EXPECT_EQ(settings->pixelWidth(), 750u);
    EXPECT_EQ(settings->pixelHeight(), 1334u);
    // The bar, the grouped background above the first section, its first row (left of its text).
    EXPECT_EQ(rgbAt(settings.get(), 187, 40), (std::array{247, 247, 247}));
    EXPECT_EQ(rgbAt(settings.get(), 187, 64 + 10), (std::array{239, 239, 244}));
    EXPECT_EQ(rgbAt(settings.get(), 8, 64 + 35 + 22), (std::array{255, 255, 255}));

    // One numbered picture per command; the last shows the alert's panel
    // over the dimmed chat.
    for (const char* name : {"001.png", "002.png", "003.png", "004.png", "005.png", "006.png"}) {
        EXPECT_TRUE(fs::exists(shots / name)) << name;
    }
    EXPECT_FALSE(fs::exists(shots / "007.png"));
    // The attach menu: a sheet's cancel button at the bottom, the chat dimmed above.
    const auto sheet = readPng(shots / "005.png");
    ASSERT_TRUE(sheet);
    EXPECT_GT(rgbAt(sheet.get(), 187, 667 - 8 - 28)[0], 230);
    EXPECT_LT(rgbAt(sheet.get(), 187, 120)[0], 170);
    const auto alert = readPng(shots / "006.png");
    ASSERT_TRUE(alert);
    const auto panel = rgbAt(alert.get(), 187, 333);
    const auto dimmed = rgbAt(alert.get(), 20, 333);
    EXPECT_GT(panel[0], 230);
    EXPECT_LT(dimmed[0], 170);
}

}  // namespace
