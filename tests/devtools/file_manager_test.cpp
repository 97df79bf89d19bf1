// NSFileManager over real files: refusals report why and never lose data.
#include "scratch_folder.h"

#include <Foundation/NSError.h>
#include <Foundation/NSFileManager.h>

#include <objc/string.h>

#include <gtest/gtest.h>

#include <cerrno>

namespace {

namespace fs = std::filesystem;

TEST(FileManager, CopiesMovesAndRemovesWithoutLosingAnything) {
    objc::AutoreleasePool pool;
    const testsupport::ScratchFolder temp{"pv-devtools"};
    NSFileManager* fm = NSFileManager::defaultManager();
    NSError* error = nullptr;
    const auto str = [](const std::string& s) {
        return objc::autorelease(NSString::create(s).leak());
    };
    temp.write("src/inner/deep.txt", std::string(3, 'x'));
    temp.link("src/link", "inner/deep.txt");
    ASSERT_TRUE(fm->copyItemAtPath(str(temp / "src"), str(temp / "dst"), &error));
    EXPECT_EQ(fs::file_size(temp / "dst/inner/deep.txt"), 3u);
    EXPECT_TRUE(fs::is_symlink(temp / "dst/link"));
    EXPECT_TRUE(fs::exists(temp / "src/inner/deep.txt"));
    // Never overwrites, and a missing source says so.
    EXPECT_FALSE(fm->copyItemAtPath(str(temp / "src"), str(temp / "dst"), &error));
    EXPECT_EQ(error->code(), EEXIST);
    EXPECT_FALSE(fm->copyItemAtPath(str(temp / "missing"), str(temp / "x"), &error));
    EXPECT_EQ(error->code(), ENOENT);

    temp.write("a", std::string(7, 'x'));
    temp.write("c");
    EXPECT_FALSE(fm->moveItemAtPath(str(temp / "a"), str(temp / "c"), &error));
    EXPECT_EQ(error->code(), EEXIST);
    EXPECT_EQ(fs::file_size(temp / "a"), 7u);
    ASSERT_TRUE(fm->moveItemAtPath(str(temp / "a"), str(temp / "b"), &error));
    EXPECT_FALSE(fs::exists(temp / "a"));

    EXPECT_FALSE(fm->createDirectoryAtPath(str(temp / "x/y"), false, nullptr, &error));
    EXPECT_EQ(error->code(), ENOENT);
    ASSERT_TRUE(fm->createDirectoryAtPath(str(temp / "x/y"), true, nullptr, &error));
    temp.link("x/link-out", temp / "b");
    ASSERT_TRUE(fm->removeItemAtPath(str(temp / "x"), &error));
    EXPECT_FALSE(fs::exists(temp / "x"));
    EXPECT_TRUE(fs::exists(temp / "b"));  // a link's target survives its removal
    EXPECT_EQ(fm->contentsOfDirectoryAtPath(str(temp / "b"), &error), nullptr);
    EXPECT_EQ(error->code(), ENOTDIR);
    EXPECT_TRUE(error->domain()->isEqualToString(NSPOSIXErrorDomain));
}

}  // namespace
