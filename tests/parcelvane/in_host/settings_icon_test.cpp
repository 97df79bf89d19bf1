// The settings row's icon, downloaded from the maker's package server each
// time the section is built. The loopback server stands in as the proxy, so
// the request for the maker's host reaches it and nothing leaves the machine.
#include "parcelvane/in_host/settings_fixture.h"
#include "support/loopback_http_server.h"
#include "support/tiny_png.h"

#include <UIKit/UIImage.h>
#include <UIKit/UIImageView.h>

#include <cstdint>
#include <string>
#include <utility>

namespace {

using in_host::SettingsScreenTest;
using testsupport::LoopbackHttpServer;

constexpr char kIconPath[] = "/apt/depict/ParcelvaneIcon-Small@2x.png";
constexpr char kIconRequest[] =
    "GET http://apt.tolbrenn.net/apt/depict/ParcelvaneIcon-Small@2x.png HTTP/1.1";

std::string iconBytes() {
    return testsupport::tinyPng();
}

testsupport::CannedResponse ok(std::string body) {
    testsupport::CannedResponse response;
    response.body = std::move(body);
    return response;
}

class SettingsIconTest : public SettingsScreenTest {
  protected:
    // Downloads go through the server until the fixture puts the refusing
    // proxy back.
    void useProxy() { ::setenv("http_proxy", server.baseURL().c_str(), 1); }
    // Lets the download and the main-queue work after it finish.
    static void settle() { foundation::runMainLoopUntilIdle(true); }
    UIImage* icon() const { return cellAt(0)->imageView()->image(); }

    LoopbackHttpServer server;
};

TEST_F(SettingsIconTest, TheIconFromTheMakersServerAppearsInTheSettingsRow) {
    server.respond(kIconPath, ok(iconBytes()));
    useProxy();
    open("9.0");
    settle();

    ASSERT_EQ(server.requestLines().size(), 1u);
    EXPECT_EQ(server.requestLines()[0], kIconRequest);
    EXPECT_EQ(server.hostHeaders()[0], "apt.tolbrenn.net");
    UIImage* const image = icon();
    ASSERT_NE(image, nullptr);
    EXPECT_EQ(image->pixelWidth(), 2u);
    EXPECT_EQ(image->pixelHeight(), 2u);
    const auto red = image->pixelAt(0, 0);
    EXPECT_EQ(red[0], 255);
    EXPECT_EQ(red[1], 0);
    EXPECT_EQ(image->pixelAt(1, 1)[3], 128);
    // The debug row has no icon.
    EXPECT_EQ(cellAt(1)->imageView()->image(), nullptr);
}

TEST_F(SettingsIconTest, TheImageIsSetOnlyOnceTheMainQueueRuns) {
    server.respond(kIconPath, ok(iconBytes()));
    useProxy();
    open("9.0");
    // Whatever the download does meanwhile, the cell is not touched before
    // the main queue hands the image over.
    EXPECT_EQ(icon(), nullptr);
    settle();
    EXPECT_NE(icon(), nullptr);
}

TEST_F(SettingsIconTest, WithoutAServerTheRowKeepsItsTitleAndDisclosureAndNoImage) {
    // The fixture's proxy refuses every connection.
    open("9.0");
    settle();
    EXPECT_EQ(icon(), nullptr);
    EXPECT_EQ(titleAt(0), "Parcelvane Settings");
    EXPECT_EQ(cellAt(0)->accessoryType(), UITableViewCellAccessoryDisclosureIndicator);
    EXPECT_TRUE(server.requestLines().empty());
}

TEST_F(SettingsIconTest, AnErrorAnswerOrBytesThatAreNoImageLeaveTheRowWithout) {
    useProxy();
    open("9.0");  // nothing served yet: a 404
    settle();
    EXPECT_EQ(icon(), nullptr);

    server.respond(kIconPath, ok("<html>moved</html>"));
    settings->setupTableView();
    settle();
    EXPECT_EQ(icon(), nullptr);
    EXPECT_EQ(server.requestLines().size(), 2u);
}

TEST_F(SettingsIconTest, EveryBuildDownloadsAgain) {
    server.respond(kIconPath, ok(iconBytes()));
    useProxy();
    open("9.0");
    settle();
    settings->setupTableView();
    settle();
    EXPECT_EQ(server.requestLines().size(), 2u);
    // The fresh row got its own image.
    EXPECT_NE(icon(), nullptr);
}

TEST_F(SettingsIconTest, OldSystemsHaveNoIconAndAskForNone) {
    server.respond(kIconPath, ok(iconBytes()));
    useProxy();
    open("6.1");
    settle();
    EXPECT_TRUE(server.requestLines().empty());
}

}  // namespace
