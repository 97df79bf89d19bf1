#include "messenger_process.h"

namespace {

using namespace testsupport;

// The selectors and images of the class's own methods, from the listing.
std::map<std::string, std::string> methodImages(const std::string& listing) {
    std::map<std::string, std::string> images;
    const auto all = lines(listing);
    for (std::size_t i = 1; i < all.size(); ++i) {
        const auto first = all[i].find('\t');
        const auto second = all[i].find('\t', first + 1);
        EXPECT_NE(second, std::string::npos) << all[i];
        if (second == std::string::npos) continue;
        images[all[i].substr(0, first)] = all[i].substr(second + 1);
    }
    return images;
}

// Each method is named with the image its implementation lives in; an unknown class fails.
TEST(DescribeClass, MethodsNameTheirImageAndAnUnknownClassFails) {
    const ScratchFolder home{"messenger-test"};
    const Result r =
        run({"--home", home.path(), "--describe-class", "WAChatSessionViewController"});
    ASSERT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(lines(r.out).at(0), "WAChatSessionViewController : UIViewController");
    const auto images = methodImages(r.out);
    EXPECT_EQ(images.at("presentShareDocumentController"), "messenger");
    EXPECT_EQ(images.count("sendParcelvaneFile"), 0u);
    EXPECT_TRUE(contains(r.out, "documentPicker:didPickDocumentAtURL:\tv@:@@\tmessenger\n"));
    const Result platform =
        run({"--home", home.path(), "--describe-class", "UIDocumentMenuViewController"});
    ASSERT_EQ(platform.status, 0) << platform.err;
    EXPECT_EQ(methodImages(platform.out).at("initWithDocumentTypes:inMode:"), "libuikit.so");
    const Result unknown = run({"--home", home.path(), "--describe-class", "WANoSuchThing"});
    EXPECT_EQ(unknown.status, 1);
    EXPECT_TRUE(unknown.out.empty());
    EXPECT_TRUE(contains(unknown.err, "WANoSuchThing")) << unknown.err;
}

// Through the environment (the scripts use --inject): the library's methods name its image.
TEST(DescribeClass, AnInjectedLibraryReplacesAndAddsMethods) {
    const ScratchFolder home{"messenger-test"};
    const Result r = run({"--home", home.path(), "--describe-class", "WAChatSessionViewController"},
                         "", {{"MESSENGER_INSERT_LIBRARIES", PARCELVANE_LIBRARY}});
    ASSERT_EQ(r.status, 0) << r.err;
    const auto images = methodImages(r.out);
    EXPECT_EQ(images.at("sendParcelvaneFile"), "libparcelvane.so");
    EXPECT_EQ(images.at("presentShareDocumentController"), "libparcelvane.so");
    EXPECT_EQ(images.at("_presentForCurrentInterface:"), "libparcelvane.so");
    EXPECT_EQ(images.at("sendDocumentAttachment:"), "messenger");
}

}  // namespace
