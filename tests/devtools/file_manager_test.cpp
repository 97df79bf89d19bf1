// NSFileManager over real files: what the browser and the libraries rely on.
#include "temp_folder.h"

#include <Foundation/NSArray.h>
#include <Foundation/NSDate.h>
#include <Foundation/NSDictionary.h>
#include <Foundation/NSError.h>
#include <Foundation/NSFileManager.h>
#include <Foundation/NSNumber.h>

#include <objc/string.h>

#include <gtest/gtest.h>

#include <cerrno>
#include <ctime>
#include <set>

namespace {

class FileManagerTest : public ::testing::Test {
  protected:
    objc::AutoreleasePool pool;
    TempFolder temp;
    NSFileManager* fm = NSFileManager::defaultManager();

    static NSString* str(const std::string& s) {
        return objc::autorelease(NSString::create(s).leak());
    }
    static std::set<std::string> names(NSArray* array) {
        std::set<std::string> out;
        for (NSUInteger i = 0; i < array->count(); ++i) {
            out.insert(static_cast<NSString*>(array->objectAtIndex(i))->UTF8String());
        }
        return out;
    }
};

TEST_F(FileManagerTest, ExistenceFollowsLinksAndTellsFoldersApart) {
    temp.file("f");
    temp.folder("d");
    temp.link("to-d", temp / "d");
    temp.link("dangling", temp / "nowhere");
    bool isDirectory = true;
    EXPECT_TRUE(fm->fileExistsAtPath(str(temp / "f"), &isDirectory));
    EXPECT_FALSE(isDirectory);
    EXPECT_TRUE(fm->fileExistsAtPath(str(temp / "to-d"), &isDirectory));
    EXPECT_TRUE(isDirectory);
    EXPECT_FALSE(fm->fileExistsAtPath(str(temp / "dangling")));
    EXPECT_FALSE(fm->fileExistsAtPath(nullptr));
    EXPECT_TRUE(fm->isReadableFileAtPath(str(temp / "f")));
    EXPECT_FALSE(fm->isReadableFileAtPath(str(temp / "missing")));
    EXPECT_EQ(NSFileManager::defaultManager(), fm);
}

TEST_F(FileManagerTest, ListsEveryNameButTheDotEntriesAndReportsFailures) {
    temp.file(".hidden");
    temp.file("a");
    temp.folder("sub");
    NSError* error = nullptr;
    NSArray* list = fm->contentsOfDirectoryAtPath(str(temp.path()), &error);
    ASSERT_NE(list, nullptr);
    EXPECT_EQ(error, nullptr);
    EXPECT_EQ(names(list), (std::set<std::string>{".hidden", "a", "sub"}));

    EXPECT_EQ(fm->contentsOfDirectoryAtPath(str(temp / "a"), &error), nullptr);
    ASSERT_NE(error, nullptr);
    EXPECT_EQ(error->code(), ENOTDIR);
    EXPECT_TRUE(error->domain()->isEqualToString(NSPOSIXErrorDomain));
    EXPECT_STREQ(error->localizedDescription()->UTF8String(), "Not a directory");
    auto* failedPath = static_cast<NSString*>(error->userInfo()->objectForKey(NSFilePathErrorKey));
    ASSERT_NE(failedPath, nullptr);
    EXPECT_EQ(std::string(failedPath->UTF8String()), temp / "a");

    EXPECT_EQ(fm->contentsOfDirectoryAtPath(str(temp / "missing"), nullptr), nullptr);
}

TEST_F(FileManagerTest, AttributesDescribeTheItemItselfNotItsLinkTarget) {
    temp.file("five", 5);
    temp.link("link", temp / "five");
    const std::time_t before = std::time(nullptr);
    NSDictionary* file = fm->attributesOfItemAtPath(str(temp / "five"), nullptr);
    ASSERT_NE(file, nullptr);
    EXPECT_EQ(static_cast<NSNumber*>(file->objectForKey(NSFileSize))->unsignedLongLongValue(), 5u);
    EXPECT_TRUE(
        static_cast<NSString*>(file->objectForKey(NSFileType))->isEqualToString(NSFileTypeRegular));
    auto* modified = static_cast<NSDate*>(file->objectForKey(NSFileModificationDate));
    ASSERT_NE(modified, nullptr);
    EXPECT_NEAR(modified->timeIntervalSince1970(), static_cast<double>(before), 5.0);

    NSDictionary* link = fm->attributesOfItemAtPath(str(temp / "link"), nullptr);
    EXPECT_TRUE(static_cast<NSString*>(link->objectForKey(NSFileType))
                    ->isEqualToString(NSFileTypeSymbolicLink));
    NSDictionary* folder = fm->attributesOfItemAtPath(str(temp.path()), nullptr);
    EXPECT_TRUE(static_cast<NSString*>(folder->objectForKey(NSFileType))
                    ->isEqualToString(NSFileTypeDirectory));
    EXPECT_STREQ(fm->destinationOfSymbolicLinkAtPath(str(temp / "link"), nullptr)->UTF8String(),
                 (temp / "five").c_str());

    NSError* error = nullptr;
    EXPECT_EQ(fm->attributesOfItemAtPath(str(temp / "missing"), &error), nullptr);
    ASSERT_NE(error, nullptr);
    EXPECT_EQ(error->code(), ENOENT);
    EXPECT_EQ(fm->destinationOfSymbolicLinkAtPath(str(temp / "five"), &error), nullptr);
    EXPECT_EQ(error->code(), EINVAL);
}

TEST_F(FileManagerTest, CopiesFilesAndWholeFoldersKeepingLinksAsLinks) {
    temp.file("src/inner/deep.txt", 3);
    temp.link("src/link", "inner/deep.txt");
    NSError* error = nullptr;
    ASSERT_TRUE(fm->copyItemAtPath(str(temp / "src"), str(temp / "dst"), &error));
    EXPECT_EQ(std::filesystem::file_size(temp / "dst/inner/deep.txt"), 3u);
    EXPECT_TRUE(std::filesystem::is_symlink(temp / "dst/link"));
    EXPECT_TRUE(std::filesystem::exists(temp / "src/inner/deep.txt"));  // a copy, not a move

    // Never overwrites, and a missing source says so.
    EXPECT_FALSE(fm->copyItemAtPath(str(temp / "src"), str(temp / "dst"), &error));
    EXPECT_EQ(error->code(), EEXIST);
    EXPECT_FALSE(fm->copyItemAtPath(str(temp / "missing"), str(temp / "x"), &error));
    EXPECT_EQ(error->code(), ENOENT);
}

TEST_F(FileManagerTest, MovesRemovesAndCreatesFolders) {
    temp.file("a", 7);
    NSError* error = nullptr;
    ASSERT_TRUE(fm->moveItemAtPath(str(temp / "a"), str(temp / "b"), &error));
    EXPECT_FALSE(std::filesystem::exists(temp / "a"));
    EXPECT_EQ(std::filesystem::file_size(temp / "b"), 7u);
    temp.file("c");
    EXPECT_FALSE(fm->moveItemAtPath(str(temp / "b"), str(temp / "c"), &error));
    EXPECT_EQ(error->code(), EEXIST);
    EXPECT_TRUE(std::filesystem::exists(temp / "b"));  // nothing lost on refusal

    EXPECT_FALSE(fm->createDirectoryAtPath(str(temp / "x/y/z"), false, nullptr, &error));
    EXPECT_EQ(error->code(), ENOENT);
    ASSERT_TRUE(fm->createDirectoryAtPath(str(temp / "x/y/z"), true, nullptr, &error));
    EXPECT_TRUE(fm->createDirectoryAtPath(str(temp / "x/y/z"), true, nullptr, &error));
    EXPECT_FALSE(fm->createDirectoryAtPath(str(temp / "x/y/z"), false, nullptr, &error));
    EXPECT_EQ(error->code(), EEXIST);

    temp.link("x/link-out", temp / "b");
    ASSERT_TRUE(fm->removeItemAtPath(str(temp / "x"), &error));
    EXPECT_FALSE(std::filesystem::exists(temp / "x"));
    EXPECT_TRUE(std::filesystem::exists(temp / "b"));  // a link's target survives its removal
    EXPECT_FALSE(fm->removeItemAtPath(str(temp / "x"), &error));
    EXPECT_EQ(error->code(), ENOENT);

    EXPECT_STREQ(fm->currentDirectoryPath()->UTF8String(), std::filesystem::current_path().c_str());
}

}  // namespace
