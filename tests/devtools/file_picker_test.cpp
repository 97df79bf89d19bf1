// The picker as the library uses it: presented modally from its controller,
// reporting through blocks that dismiss it.
#include "temp_folder.h"

#include <TolbrennDevTools/ParcelvaneFileBrowserViewController.h>
#include <TolbrennDevTools/TolbrennDevTools.h>

#include <Foundation/NSRunLoop.h>

#include <UIKit/UINavigationController.h>

#include <objc/exception.h>
#include <objc/string.h>

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace {

using Browser = ParcelvaneFileBrowserViewController;
using Calls = std::vector<std::pair<id, std::string>>;

class FilePickerTest : public ::testing::Test {
  protected:
    void TearDown() override { foundation::runMainLoopUntilIdle(); }

    // Records each call; when `dismiss`, dismisses the controller it is
    // handed, as the library does.
    static objc::Strong<Browser::PathBlock> recorder(Calls* calls, bool dismiss) {
        return objc::makeBlock<void(id, NSString*)>(
            [calls, dismiss](id controller, NSString* path) {
                calls->emplace_back(controller, path->UTF8String());
                if (dismiss)
                    static_cast<UIViewController*>(controller)
                        ->dismissViewControllerAnimated(true, nullptr);
            });
    }
    void show(bool dismissOnSelect = true) {
        TolbrennDevTools::showFilePickerFromViewController(
            presenter.get(), recorder(&selected, dismissOnSelect).get(),
            recorder(&loaded, false).get(), recorder(&cancelled, true).get());
    }
    UINavigationController* navigation() {
        return static_cast<UINavigationController*>(presenter->presentedViewController());
    }
    Browser* browser() { return static_cast<Browser*>(navigation()->topViewController()); }

    objc::AutoreleasePool pool;
    TempFolder temp;
    objc::Strong<UIViewController> presenter = UIViewController::create();
    Calls selected;
    Calls loaded;
    Calls cancelled;
};

TEST_F(FilePickerTest, PresentsABrowserOfTheWholeFileSystemInANavigationController) {
    show();
    EXPECT_TRUE(TolbrennDevTools::fileBrowserLibrariesLoaded());
    UIViewController* presented = presenter->presentedViewController();
    ASSERT_NE(presented, nullptr);
    ASSERT_TRUE(objc::isKindOf(presented, UINavigationController::objcClass()));
    EXPECT_EQ(presented->presentingViewController(), presenter.get());
    ASSERT_TRUE(objc::isKindOf(navigation()->topViewController(), Browser::objcClass()));
    EXPECT_EQ(browser()->currentPath(), "/");
    EXPECT_EQ(browser()->presentedController(), presented);

    foundation::runMainLoopUntilIdle();
    // Appearing read "/" once and reported it with the presented controller.
    EXPECT_EQ(loaded, (Calls{{presented, "/"}}));
    EXPECT_FALSE(browser()->entries().empty());
    EXPECT_EQ(presented->appearance(), UIViewController::Appearance::Appeared);
}

TEST_F(FilePickerTest, ChoosingAFileReportsItOnceAndTheCallersDismissalClosesThePicker) {
    temp.file("folder/notes.txt", 4);
    show();
    foundation::runMainLoopUntilIdle();
    UINavigationController* nav = navigation();
    ASSERT_TRUE(browser()->openPath(NSString::create(temp / "folder").get()));
    ASSERT_EQ(browser()->currentPath(), temp / "folder");
    ASSERT_TRUE(browser()->chooseEntryAtIndex(0));

    EXPECT_EQ(selected, (Calls{{nav, temp / "folder/notes.txt"}}));
    EXPECT_TRUE(cancelled.empty());
    foundation::runMainLoopUntilIdle();
    EXPECT_EQ(presenter->presentedViewController(), nullptr);
    EXPECT_EQ(selected.size(), 1u);
}

TEST_F(FilePickerTest, CancellingReportsTheCurrentFolderAndNothingIsChosen) {
    temp.folder("here");
    show();
    UINavigationController* nav = navigation();
    ASSERT_TRUE(browser()->openPath(NSString::create(temp / "here").get()));
    browser()->cancel();
    EXPECT_EQ(cancelled, (Calls{{nav, temp / "here"}}));
    EXPECT_TRUE(selected.empty());
    foundation::runMainLoopUntilIdle();
    EXPECT_EQ(presenter->presentedViewController(), nullptr);
}

TEST_F(FilePickerTest, ThePickerNeverClosesItselfAndWorksWithoutBlocks) {
    temp.file("a");
    show(/*dismissOnSelect=*/false);
    ASSERT_TRUE(browser()->openPath(NSString::create(temp.path()).get()));
    ASSERT_TRUE(browser()->chooseEntryAtIndex(0));
    foundation::runMainLoopUntilIdle();
    EXPECT_NE(presenter->presentedViewController(), nullptr);
    navigation()->dismissViewControllerAnimated(false, nullptr);
    foundation::runMainLoopUntilIdle();

    TolbrennDevTools::showFilePickerFromViewController(presenter.get(), nullptr, nullptr, nullptr);
    ASSERT_TRUE(browser()->openPath(NSString::create(temp.path()).get()));
    EXPECT_TRUE(browser()->chooseEntryAtIndex(0));
    browser()->cancel();
    EXPECT_NE(presenter->presentedViewController(), nullptr);
}

TEST_F(FilePickerTest, ANilPresenterIsRefused) {
    EXPECT_THROW(
        TolbrennDevTools::showFilePickerFromViewController(nullptr, nullptr, nullptr, nullptr),
        objc::Exception);
}

}  // namespace
