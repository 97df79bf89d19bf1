// The container's folders: home, temporary folder and search paths.
#include <gtest/gtest.h>

#include <Foundation/NSArray.h>
#include <Foundation/NSPathUtilities.h>
#include <Foundation/process_environment.h>

#include <filesystem>

#include "foundation_helpers.h"
#include "scratch_folder.h"

namespace {

using namespace testsupport;

TEST(PathUtilities, FoldersOfTheConfiguredContainer) {
    objc::AutoreleasePool pool;
    ScratchFolder home;
    foundation::configureProcess({home.path() + "/", "", {"en"}});
    EXPECT_EQ(NSHomeDirectory()->utf8(), home.path());  // without the trailing slash
    using V = std::vector<std::string>;
    EXPECT_EQ(
        texts(NSSearchPathForDirectoriesInDomains(NSDocumentDirectory, NSUserDomainMask, true)),
        V{home / "Documents"});
    EXPECT_EQ(texts(NSSearchPathForDirectoriesInDomains(NSCachesDirectory, NSUserDomainMask, true)),
              V{home / "Library/Caches"});
    EXPECT_EQ(
        texts(NSSearchPathForDirectoriesInDomains(NSCachesDirectory, NSAllDomainsMask, false)),
        V{"~/Library/Caches"});
    // The temporary folder is the container's when it has one.
    const std::string outside = NSTemporaryDirectory()->utf8();
    EXPECT_EQ(outside.back(), '/');
    EXPECT_NE(outside, home / "tmp/");
    std::filesystem::create_directory(home / "tmp");
    EXPECT_EQ(NSTemporaryDirectory()->utf8(), home / "tmp/");
    foundation::configureProcess({});
}

}  // namespace
