// The container's folders: home, temporary folder and search paths.
#include <gtest/gtest.h>

#include <Foundation/NSArray.h>
#include <Foundation/NSPathUtilities.h>
#include <Foundation/ProcessEnvironment.h>

#include <filesystem>

#include "temp_folder.h"

namespace {

using testing_support::TempFolder;

std::vector<std::string> paths(NSArray* array) {
    std::vector<std::string> out;
    for (id item : *array) out.push_back(static_cast<NSString*>(item)->utf8());
    return out;
}

TEST(PathUtilities, FoldersOfTheConfiguredContainer) {
    objc::AutoreleasePool pool;
    TempFolder home;
    foundation::configureProcess({home.path() + "/", "", {"en"}});
    EXPECT_EQ(NSHomeDirectory()->utf8(), home.path());  // without the trailing slash
    using V = std::vector<std::string>;
    EXPECT_EQ(
        paths(NSSearchPathForDirectoriesInDomains(NSLibraryDirectory, NSUserDomainMask, true)),
        V{home / "Library"});
    EXPECT_EQ(
        paths(NSSearchPathForDirectoriesInDomains(NSDocumentDirectory, NSUserDomainMask, true)),
        V{home / "Documents"});
    EXPECT_EQ(paths(NSSearchPathForDirectoriesInDomains(NSCachesDirectory, NSUserDomainMask, true)),
              V{home / "Library/Caches"});
    EXPECT_EQ(
        paths(NSSearchPathForDirectoriesInDomains(NSCachesDirectory, NSAllDomainsMask, false)),
        V{"~/Library/Caches"});
    EXPECT_TRUE(
        paths(NSSearchPathForDirectoriesInDomains(NSDocumentDirectory, NSSystemDomainMask, true))
            .empty());
    EXPECT_TRUE(paths(NSSearchPathForDirectoriesInDomains(999, NSUserDomainMask, true)).empty());

    // The temporary folder is the container's when it has one.
    const std::string outside = NSTemporaryDirectory()->utf8();
    EXPECT_EQ(outside.back(), '/');
    EXPECT_NE(outside, home / "tmp/");
    std::filesystem::create_directory(home / "tmp");
    EXPECT_EQ(NSTemporaryDirectory()->utf8(), home / "tmp/");
    foundation::configureProcess({});
}

TEST(PathUtilities, DefaultsComeFromTheEnvironment) {
    foundation::configureProcess({});
    const auto& environment = foundation::processEnvironment();
    EXPECT_FALSE(environment.homeDirectory.empty());
    EXPECT_FALSE(environment.mainBundlePath.empty());
    EXPECT_FALSE(environment.preferredLanguages.empty());
    // The executable's folder is the default main bundle.
    EXPECT_EQ(environment.mainBundlePath,
              std::filesystem::read_symlink("/proc/self/exe").parent_path().string());
}

}  // namespace
