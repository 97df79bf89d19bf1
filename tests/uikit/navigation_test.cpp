#include "uikit_fixture.h"

#include <Foundation/NSArray.h>

namespace {

using NavigationTest = UIKitTest;

TEST_F(NavigationTest, PushAndPopMoveTheStack) {
    auto root = UIViewController::create();
    auto nav = UINavigationController::create(root.get());
    auto second = UIViewController::create();
    auto third = UIViewController::create();
    EXPECT_EQ(nav->topViewController(), root.get());
    EXPECT_EQ(root->navigationController(), nav.get());

    nav->pushViewController(second.get(), true);
    nav->pushViewController(third.get(), false);
    EXPECT_EQ(nav->viewControllers()->count(), 3u);
    EXPECT_EQ(third->parentViewController(), nav.get());

    EXPECT_EQ(nav->popViewControllerAnimated(true), third.get());
    EXPECT_EQ(third->navigationController(), nullptr);
    EXPECT_EQ(nav->topViewController(), second.get());

    nav->pushViewController(third.get(), false);
    NSArray* popped = nav->popToRootViewControllerAnimated(false);
    ASSERT_NE(popped, nullptr);
    EXPECT_EQ(popped->count(), 2u);
    EXPECT_EQ(popped->objectAtIndex(0), second.get());
    EXPECT_EQ(nav->topViewController(), root.get());
    EXPECT_EQ(nav->popViewControllerAnimated(true), nullptr) << "the root stays";
    EXPECT_EQ(nav->popToRootViewControllerAnimated(false), nullptr);
}

TEST_F(NavigationTest, OnScreenPushesAndPopsMoveAppearance) {
    std::vector<std::string> log;
    auto window = UIWindow::create();
    auto root = RecordingViewController::create("root", &log);
    auto nav = UINavigationController::create(root.get());
    window->setRootViewController(nav.get());
    window->makeKeyAndVisible();
    EXPECT_EQ(log, (std::vector<std::string>{"root.load", "root.willAppear", "root.didAppear"}));
    EXPECT_EQ(root->view()->window(), window.get());

    log.clear();
    auto detail = RecordingViewController::create("detail", &log);
    nav->pushViewController(detail.get(), true);
    EXPECT_EQ(log,
              (std::vector<std::string>{"root.willDisappear", "detail.load", "detail.willAppear",
                                        "root.didDisappear", "detail.didAppear"}));
    EXPECT_EQ(detail->view()->window(), window.get());
    EXPECT_EQ(root->view()->window(), nullptr);

    log.clear();
    nav->popViewControllerAnimated(true);
    EXPECT_EQ(log, (std::vector<std::string>{"detail.willDisappear", "root.willAppear",
                                             "detail.didDisappear", "root.didAppear"}));
    EXPECT_EQ(root->view()->window(), window.get());
}

}  // namespace
