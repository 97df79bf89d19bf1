// The browser over real folders, driven as a terminal UI drives it, and the picker around it.
#include "scratch_folder.h"
#include "unprivileged.h"

#include <TolbrennDevTools/ParcelvaneFileBrowserViewController.h>
#include <TolbrennDevTools/TolbrennDevTools.h>

#include <Foundation/NSRunLoop.h>

#include <UIKit/UINavigationController.h>

#include <objc/exception.h>
#include <objc/string.h>

#include <gtest/gtest.h>

#include <sys/stat.h>

#include <thread>
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
    static NSUInteger indexOf(Browser* browser, const std::string& name) {
        const auto list = names(browser);
        const auto at = std::find(list.begin(), list.end(), name);
        if (at == list.end()) ADD_FAILURE() << name << " is not listed";
        return static_cast<NSUInteger>(at - list.begin());
    }
    static const Browser::Entry& entry(Browser* browser, const std::string& name) {
        return browser->entries().at(indexOf(browser, name));
    }

    objc::AutoreleasePool pool;
    const testsupport::ScratchFolder temp{"pv-devtools"};
};

TEST_F(FileBrowserTest, ListsFoldersFirstThenFilesSortedAsPeopleSortNamesWithSizes) {
    for (const char* folder : {"dir10", "Zeta", "dir9", ".config"}) temp.folder(folder);
    for (const char* file : {"file10", "B.txt", "file2", "a.txt"}) temp.write(file);
    temp.write(".profile", std::string(1, 'x'));
    temp.write("big", std::string(1500, 'x'));
    temp.link("big-link", temp / "big");
    auto browser = browserAt(temp.path());
    EXPECT_EQ(names(browser.get()),
              (std::vector<std::string>{".config", "dir9", "dir10", "Zeta", ".profile", "a.txt",
                                        "B.txt", "big", "big-link", "file2", "file10"}));
    EXPECT_EQ(entry(browser.get(), ".config").kind, Kind::Folder);
    EXPECT_TRUE(entry(browser.get(), ".config").sizeText.empty());
    EXPECT_EQ(entry(browser.get(), ".profile").sizeText, "1 byte");
    EXPECT_EQ(entry(browser.get(), "a.txt").sizeText, "0 bytes");
    EXPECT_EQ(entry(browser.get(), "big").sizeText, "1.5 KB");
    EXPECT_EQ(entry(browser.get(), "big-link").size, 1500u);  // the size of what it points to
    EXPECT_TRUE(browser->errorText().empty());

    EXPECT_EQ(Browser::formatSize(999), "999 bytes");
    EXPECT_EQ(Browser::formatSize(999'999), "1 MB");  // never "1000 KB"
    EXPECT_EQ(Browser::formatSize(1'500'000'000), "1.5 GB");
}

TEST_F(FileBrowserTest, WhatCannotBeOpenedOrChosenSaysSoAndTheBrowserStays) {
    temp.link("dangling", temp / "missing");
    temp.link("a", temp / "b");
    temp.link("b", temp / "a");
    temp.folder("gone");
    temp.folder("now-a-file");
    bool chosen = false;
    auto browser = browserAt(temp.path());
    auto nav = UINavigationController::create(browser.get());
    browser->setDidSelectFile(
        objc::makeBlock<void(id, NSString*)>([&](id, NSString*) { chosen = true; }).get());
    ASSERT_EQ(names(browser.get()),
              (std::vector<std::string>{"gone", "now-a-file", "a", "b", "dangling"}));
    EXPECT_EQ(entry(browser.get(), "a").kind, Kind::BrokenLink);
    EXPECT_FALSE(browser->openEntryAtIndex(indexOf(browser.get(), "a")));
    EXPECT_EQ(browser->errorText(), "Cannot open link: Too many levels of symbolic links");
    EXPECT_FALSE(browser->openEntryAtIndex(indexOf(browser.get(), "dangling")));
    EXPECT_EQ(browser->errorText(), "Cannot open link: No such file or directory");
    EXPECT_FALSE(browser->chooseEntryAtIndex(indexOf(browser.get(), "b")));
    EXPECT_FALSE(chosen);
    // Folders that vanished or became files since the listing.
    std::filesystem::remove(temp / "gone");
    std::filesystem::remove(temp / "now-a-file");
    temp.write("now-a-file");
    EXPECT_FALSE(browser->openEntryAtIndex(indexOf(browser.get(), "gone")));
    EXPECT_EQ(browser->errorText(), "Cannot open folder: No such file or directory");
    EXPECT_FALSE(browser->openEntryAtIndex(indexOf(browser.get(), "now-a-file")));
    EXPECT_EQ(browser->errorText(), "Cannot open folder: Not a directory");
    EXPECT_FALSE(browser->openEntryAtIndex(9));
    EXPECT_EQ(browser->errorText(), "No entry at index 9");
    EXPECT_EQ(nav->childList().size(), 1u);
    EXPECT_EQ(browser->currentPath(), temp.path());
    EXPECT_TRUE(browser->reloadData());  // an error does not stick once something works
    EXPECT_TRUE(browser->errorText().empty());
}

TEST_F(FileBrowserTest, ALinkBackUpTheTreeReturnsToItsScreenInsteadOfStackingMore) {
    temp.folder("sub");
    temp.link("sub/up", "..");
    auto root = browserAt(temp.path());
    auto nav = UINavigationController::create(root.get());
    for (int i = 0; i < 3; ++i) {
        ASSERT_TRUE(root->openEntryAtIndex(indexOf(root.get(), "sub")));
        auto* sub = static_cast<Browser*>(nav->topViewController());
        EXPECT_EQ(sub->currentPath(), temp / "sub");
        ASSERT_TRUE(sub->openEntryAtIndex(indexOf(sub, "up")));
        EXPECT_EQ(nav->childList().size(), 1u);
        EXPECT_EQ(nav->topViewController(), root.get());
    }
}

// Root reads any folder: the browser runs as an ordinary user.
TEST_F(FileBrowserTest, AnUnreadableFolderSaysSoAndTheBrowserStays) {
    temp.write("locked/secret");
    ::chmod(temp.path().c_str(), 0755);
    ::chmod((temp / "locked").c_str(), 0);
    const std::string failure = testsupport::runUnprivileged([&]() -> std::string {
        const objc::AutoreleasePool inner;
        auto browser = browserAt(temp.path());
        const auto list = names(browser.get());
        const auto locked = std::find(list.begin(), list.end(), "locked");
        if (locked == list.end()) return "the locked folder is not listed";
        if (browser->openEntryAtIndex(static_cast<NSUInteger>(locked - list.begin()))) {
            return "the locked folder opened";
        }
        if (browser->errorText() != "Cannot open folder: Permission denied") {
            return "error text: " + browser->errorText();
        }
        if (browser->currentPath() != temp.path()) return "moved to " + browser->currentPath();
        return {};
    });
    EXPECT_EQ(failure, "");
    ::chmod((temp / "locked").c_str(), 0700);
}

class FilePickerTest : public FileBrowserTest {
  protected:
    // Records each call; when `dismiss`, dismisses the controller handed over, as the library does.
    static objc::Strong<Browser::PathBlock> recorder(Calls* calls, bool dismiss) {
        return objc::makeBlock<void(id, NSString*)>(
            [calls, dismiss](id controller, NSString* path) {
                calls->emplace_back(controller, path->UTF8String());
                if (dismiss)
                    static_cast<UIViewController*>(controller)
                        ->dismissViewControllerAnimated(true, nullptr);
            });
    }
    void show() {
        TolbrennDevTools::showFilePickerFromViewController(
            presenter.get(), recorder(&selected, true).get(), recorder(&loaded, false).get(),
            recorder(&cancelled, true).get());
        foundation::runMainLoopUntilIdle();
    }
    UINavigationController* navigation() {
        return static_cast<UINavigationController*>(presenter->presentedViewController());
    }
    Browser* browser() { return static_cast<Browser*>(navigation()->topViewController()); }

    objc::Strong<UIViewController> presenter = UIViewController::create();
    Calls selected, loaded, cancelled;
};

TEST_F(FilePickerTest, ReportsAFileChosenInAPushedFolderOnceOrTheFolderCancelledIn) {
    temp.write("folder/notes.txt", std::string(4, 'x'));
    show();
    UINavigationController* nav = navigation();
    EXPECT_EQ(loaded, (Calls{{nav, "/"}}));  // appearing read "/" once

    ASSERT_TRUE(browser()->openPath(NSString::create(temp.path()).get()));
    ASSERT_TRUE(browser()->openEntryAtIndex(0));  // pushed: the new browser carries the blocks
    ASSERT_TRUE(browser()->chooseEntryAtIndex(0));
    EXPECT_EQ(selected, (Calls{{nav, temp / "folder/notes.txt"}}));
    EXPECT_EQ(loaded.back(), (std::pair<id, std::string>{nav, temp / "folder"}));
    foundation::runMainLoopUntilIdle();
    EXPECT_EQ(presenter->presentedViewController(), nullptr);
    EXPECT_TRUE(cancelled.empty());

    // Shown again and cancelled: the current folder is reported and nothing more is chosen.
    show();
    nav = navigation();
    ASSERT_TRUE(browser()->openPath(NSString::create((temp / "folder").string()).get()));
    browser()->cancel();
    EXPECT_EQ(cancelled, (Calls{{nav, temp / "folder"}}));
    EXPECT_EQ(selected.size(), 1u);
    foundation::runMainLoopUntilIdle();
    EXPECT_EQ(presenter->presentedViewController(), nullptr);
}

// Each test runs in a process of its own under CTest, so nothing prepared the browser yet.
TEST(TolbrennDevTools, PreparesTheFileBrowserOnceFromManyThreads) {
    if (TolbrennDevTools::fileBrowserLibrariesLoaded()) GTEST_SKIP() << "already prepared";
    std::vector<std::thread> threads;
    std::vector<char> ready(8, 0);
    for (std::size_t i = 0; i < ready.size(); ++i) {
        threads.emplace_back([&ready, i] {
            const objc::AutoreleasePool pool;
            TolbrennDevTools::loadFileBrowserLibrariesIfNeeded();
            // Also a thread that arrived while another was preparing it finds it ready.
            ready[i] = TolbrennDevTools::fileBrowserLibrariesLoaded() ? 1 : 0;
        });
    }
    for (auto& t : threads) t.join();
    for (const char r : ready) EXPECT_EQ(r, 1);
}

}  // namespace
