// The browser over real folders, driven from C++ as a terminal UI drives it.
#include "temp_folder.h"

#include <TolbrennDevTools/ParcelvaneFileBrowserViewController.h>

#include <Foundation/NSRunLoop.h>

#include <UIKit/UINavigationController.h>

#include <objc/string.h>

#include <gtest/gtest.h>

#include <sys/stat.h>

#include <string>
#include <utility>
#include <vector>

namespace {

using Browser = ParcelvaneFileBrowserViewController;
using Kind = Browser::Entry::Kind;
using Calls = std::vector<std::pair<id, std::string>>;

class FileBrowserTest : public ::testing::Test {
  protected:
    void TearDown() override { foundation::runMainLoopUntilIdle(); }

    static objc::Strong<Browser> browserAt(const std::string& path) {
        return Browser::create(NSString::create(path).get());
    }
    static std::vector<std::string> names(Browser* browser) {
        std::vector<std::string> out;
        for (const auto& entry : browser->entries()) out.push_back(entry.name);
        return out;
    }
    static const Browser::Entry* find(Browser* browser, const std::string& name) {
        for (const auto& entry : browser->entries()) {
            if (entry.name == name) return &entry;
        }
        return nullptr;
    }
    static NSUInteger indexOf(Browser* browser, const std::string& name) {
        const auto& list = browser->entries();
        for (std::size_t i = 0; i < list.size(); ++i) {
            if (list[i].name == name) return i;
        }
        ADD_FAILURE() << name << " is not listed";
        return list.size();
    }
    static objc::Strong<Browser::PathBlock> recorder(Calls* calls) {
        return objc::makeBlock<void(id, NSString*)>([calls](id controller, NSString* path) {
            calls->emplace_back(controller, path->UTF8String());
        });
    }

    objc::AutoreleasePool pool;
    TempFolder temp;
};

TEST_F(FileBrowserTest, ListsFoldersFirstThenFilesEachInTheOrderPeopleSortNames) {
    for (const char* folder : {"dir10", "Zeta", "dir9", "alpha"}) temp.folder(folder);
    for (const char* file : {"file10", "B.txt", "file2", "a.txt"}) temp.file(file);
    auto browser = browserAt(temp.path());
    EXPECT_EQ(names(browser.get()),
              (std::vector<std::string>{"alpha", "dir9", "dir10", "Zeta", "a.txt", "B.txt", "file2",
                                        "file10"}));
    EXPECT_EQ(browser->entries()[0].kind, Kind::Folder);
    EXPECT_EQ(browser->entries()[4].kind, Kind::File);
    EXPECT_EQ(browser->entries()[4].path, temp / "a.txt");
    EXPECT_TRUE(browser->errorText().empty());
}

TEST_F(FileBrowserTest, ShowsHiddenFilesAndEachFileSize) {
    temp.file(".profile", 1);
    temp.file("empty");
    temp.file("big", 1500);
    temp.folder(".config");
    temp.link("big-link", temp / "big");
    auto browser = browserAt(temp.path());
    ASSERT_NE(find(browser.get(), ".config"), nullptr);
    EXPECT_EQ(find(browser.get(), ".config")->kind, Kind::Folder);
    EXPECT_TRUE(find(browser.get(), ".config")->sizeText.empty());
    ASSERT_NE(find(browser.get(), ".profile"), nullptr);
    EXPECT_EQ(find(browser.get(), ".profile")->sizeText, "1 byte");
    EXPECT_EQ(find(browser.get(), "empty")->size, 0u);
    EXPECT_EQ(find(browser.get(), "empty")->sizeText, "0 bytes");
    EXPECT_EQ(find(browser.get(), "big")->size, 1500u);
    EXPECT_EQ(find(browser.get(), "big")->sizeText, "1.5 KB");
    // A link to a file shows the size of what it points to.
    EXPECT_EQ(find(browser.get(), "big-link")->size, 1500u);
    EXPECT_TRUE(find(browser.get(), "big-link")->isSymbolicLink);
}

TEST(FileBrowserSizes, ReadLikeThePlatformsFileSizes) {
    EXPECT_EQ(Browser::formatSize(999), "999 bytes");
    EXPECT_EQ(Browser::formatSize(1000), "1 KB");
    EXPECT_EQ(Browser::formatSize(1049), "1 KB");
    EXPECT_EQ(Browser::formatSize(9960), "10 KB");
    EXPECT_EQ(Browser::formatSize(999'999), "1 MB");  // never "1000 KB"
    EXPECT_EQ(Browser::formatSize(12'345'678), "12 MB");
    EXPECT_EQ(Browser::formatSize(1'500'000'000), "1.5 GB");
    EXPECT_EQ(Browser::formatSize(~0ull), "18 EB");
}

TEST_F(FileBrowserTest, LinksToFoldersOpenAsFoldersAtTheirRealPath) {
    temp.file("real/inside");
    temp.link("shortcut", temp / "real");
    auto browser = browserAt(temp.path());
    const Browser::Entry* link = find(browser.get(), "shortcut");
    ASSERT_NE(link, nullptr);
    EXPECT_EQ(link->kind, Kind::Folder);
    EXPECT_TRUE(link->isSymbolicLink);

    ASSERT_TRUE(browser->openEntryAtIndex(indexOf(browser.get(), "shortcut")));
    EXPECT_EQ(browser->currentPath(), temp / "real");
    EXPECT_STREQ(browser->title()->UTF8String(), "real");
    EXPECT_EQ(names(browser.get()), std::vector<std::string>{"inside"});
}

TEST_F(FileBrowserTest, DanglingAndLoopingLinksAreListedButCannotBeOpenedOrChosen) {
    temp.file("keep");
    temp.link("dangling", temp / "gone");
    temp.link("a", temp / "b");
    temp.link("b", temp / "a");
    Calls chosen;
    auto browser = browserAt(temp.path());
    browser->setDidSelectFile(recorder(&chosen).get());
    ASSERT_EQ(names(browser.get()), (std::vector<std::string>{"a", "b", "dangling", "keep"}));
    EXPECT_EQ(find(browser.get(), "a")->kind, Kind::BrokenLink);
    EXPECT_EQ(find(browser.get(), "dangling")->kind, Kind::BrokenLink);

    EXPECT_FALSE(browser->openEntryAtIndex(indexOf(browser.get(), "a")));
    EXPECT_EQ(browser->errorText(), "Cannot open link: Too many levels of symbolic links");
    EXPECT_FALSE(browser->openEntryAtIndex(indexOf(browser.get(), "dangling")));
    EXPECT_EQ(browser->errorText(), "Cannot open link: No such file or directory");
    EXPECT_FALSE(browser->chooseEntryAtIndex(indexOf(browser.get(), "b")));
    EXPECT_TRUE(chosen.empty());
    EXPECT_EQ(browser->currentPath(), temp.path());
    EXPECT_EQ(browser->entries().size(), 4u);

    // An error does not stick once something works again.
    EXPECT_TRUE(browser->reloadData());
    EXPECT_TRUE(browser->errorText().empty());
}

TEST_F(FileBrowserTest, ALinkBackUpTheTreeReturnsToItsScreenInsteadOfStackingMore) {
    temp.folder("sub");
    temp.link("sub/up", "..");
    auto root = browserAt(temp.path());
    auto nav = UINavigationController::create(root.get());

    ASSERT_TRUE(root->openEntryAtIndex(indexOf(root.get(), "sub")));
    ASSERT_EQ(nav->childList().size(), 2u);
    auto* sub = static_cast<Browser*>(nav->topViewController());
    EXPECT_EQ(sub->currentPath(), temp / "sub");
    for (int i = 0; i < 3; ++i) {
        ASSERT_TRUE(sub->openEntryAtIndex(indexOf(sub, "up")));
        EXPECT_EQ(nav->childList().size(), 1u);
        EXPECT_EQ(nav->topViewController(), root.get());
        ASSERT_TRUE(root->openEntryAtIndex(indexOf(root.get(), "sub")));
        sub = static_cast<Browser*>(nav->topViewController());
    }
    EXPECT_EQ(nav->childList().size(), 2u);
}

TEST_F(FileBrowserTest, InANavigationControllerFoldersPushAndGoUpPops) {
    temp.file("docs/readme", 3);
    Calls loaded;
    Calls chosen;
    auto root = browserAt(temp.path());
    root->setDidLoadPath(recorder(&loaded).get());
    root->setDidSelectFile(recorder(&chosen).get());
    auto nav = UINavigationController::create(root.get());
    ASSERT_FALSE(root->entries().empty());
    ASSERT_EQ(loaded, (Calls{{nav.get(), temp.path()}}));

    ASSERT_TRUE(root->openEntryAtIndex(indexOf(root.get(), "docs")));
    auto* docs = static_cast<Browser*>(nav->topViewController());
    ASSERT_NE(docs, root.get());
    EXPECT_EQ(root->currentPath(), temp.path());  // the folder below keeps its place
    EXPECT_EQ(loaded.back(), (std::pair<id, std::string>{nav.get(), temp / "docs"}));

    // The pushed browser carries the blocks: choosing reports the container.
    ASSERT_TRUE(docs->chooseEntryAtIndex(0));
    EXPECT_EQ(chosen, (Calls{{nav.get(), temp / "docs/readme"}}));

    ASSERT_TRUE(docs->goUp());
    EXPECT_EQ(nav->topViewController(), root.get());
    // The bottom browser goes up in place.
    ASSERT_TRUE(root->goUp());
    EXPECT_EQ(nav->childList().size(), 1u);
    EXPECT_EQ(root->currentPath(), std::filesystem::path(temp.path()).parent_path().string());
}

TEST_F(FileBrowserTest, OnItsOwnItChangesPathAndStopsAtTheRoot) {
    temp.folder("x/y");
    auto browser = browserAt(temp / "x");
    ASSERT_TRUE(browser->openEntryAtIndex(0));
    EXPECT_EQ(browser->currentPath(), temp / "x/y");
    EXPECT_TRUE(browser->entries().empty());
    ASSERT_TRUE(browser->goUp());
    EXPECT_EQ(browser->currentPath(), temp / "x");

    auto atRoot = objc::adopt(static_cast<Browser*>(objc::alloc<Browser>()->init()));
    EXPECT_EQ(atRoot->currentPath(), "/");
    EXPECT_STREQ(atRoot->title()->UTF8String(), "/");
    EXPECT_FALSE(atRoot->goUp());
    EXPECT_EQ(atRoot->currentPath(), "/");
    EXPECT_FALSE(atRoot->entries().empty());
    EXPECT_TRUE(atRoot->openPath(NSString::create(temp / "x/./y/..").get()));
    EXPECT_EQ(atRoot->currentPath(), temp / "x");
}

TEST_F(FileBrowserTest, AnUnreadableFolderSaysSoAndTheBrowserStays) {
    if (runningAsRoot()) GTEST_SKIP() << "root reads any folder; see the removed-folder case";
    temp.file("locked/secret");
    ::chmod((temp / "locked").c_str(), 0);
    auto browser = browserAt(temp.path());
    EXPECT_FALSE(browser->openEntryAtIndex(indexOf(browser.get(), "locked")));
    EXPECT_EQ(browser->errorText(), "Cannot open folder: Permission denied");
    EXPECT_EQ(browser->currentPath(), temp.path());
    ::chmod((temp / "locked").c_str(), 0700);
}

TEST_F(FileBrowserTest, AFolderThatVanishedOrChangedSinceTheListingSaysSoAndTheBrowserStays) {
    temp.folder("gone");
    temp.folder("now-a-file");
    Calls loaded;
    auto browser = browserAt(temp.path());
    auto nav = UINavigationController::create(browser.get());
    browser->setDidLoadPath(recorder(&loaded).get());
    ASSERT_EQ(browser->entries().size(), 2u);
    ASSERT_EQ(loaded.size(), 1u);
    loaded.clear();
    std::filesystem::remove(temp / "gone");
    std::filesystem::remove(temp / "now-a-file");
    temp.file("now-a-file");

    EXPECT_FALSE(browser->openEntryAtIndex(indexOf(browser.get(), "gone")));
    EXPECT_EQ(browser->errorText(), "Cannot open folder: No such file or directory");
    EXPECT_FALSE(browser->openEntryAtIndex(indexOf(browser.get(), "now-a-file")));
    EXPECT_EQ(browser->errorText(), "Cannot open folder: Not a directory");
    EXPECT_EQ(nav->childList().size(), 1u);
    EXPECT_EQ(browser->currentPath(), temp.path());
    EXPECT_TRUE(loaded.empty());

    // A browser started on something that is not a folder is empty and says why.
    auto onFile = browserAt(temp / "now-a-file");
    EXPECT_TRUE(onFile->entries().empty());
    EXPECT_EQ(onFile->errorText(), "Cannot open folder: Not a directory");
    EXPECT_FALSE(onFile->openEntryAtIndex(0));
    EXPECT_EQ(onFile->errorText(), "No entry at index 0");
}

}  // namespace
