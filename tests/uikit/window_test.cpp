#include "uikit_fixture.h"

namespace {

using WindowTest = UIKitTest;

TEST_F(WindowTest, KeyWindowIsAClassMethodAndFollowsTheLastWindowMadeKey) {
    EXPECT_EQ(UIWindow::keyWindow(), nullptr);
    auto first = UIWindow::create();
    auto second = UIWindow::create();
    EXPECT_TRUE(first->isHidden());
    first->makeKeyAndVisible();
    EXPECT_EQ(UIWindow::keyWindow(), first.get());
    EXPECT_FALSE(first->isHidden());
    second->makeKeyAndVisible();
    EXPECT_EQ(UIWindow::keyWindow(), second.get());
    EXPECT_FALSE(first->isKeyWindow());
    // The window is not owned by the key-window slot.
    second.reset();
    EXPECT_EQ(UIWindow::keyWindow(), nullptr);
}

TEST_F(WindowTest, RootControllerFillsTheWindowAndAppearsWhenShown) {
    std::vector<std::string> log;
    auto window = UIWindow::create();
    auto root = RecordingViewController::create("root", &log);
    window->setRootViewController(root.get());
    EXPECT_EQ(root->view()->superview(), window.get());
    EXPECT_EQ(root->view()->frame(), window->bounds());
    EXPECT_EQ(root->view()->window(), window.get());
    EXPECT_EQ(log, (std::vector<std::string>{"root.load"}));
    window->makeKeyAndVisible();
    EXPECT_EQ(log, (std::vector<std::string>{"root.load", "root.willAppear", "root.didAppear"}));

    auto next = RecordingViewController::create("next", &log);
    log.clear();
    window->setRootViewController(next.get());
    EXPECT_EQ(root->view()->superview(), nullptr);
    EXPECT_EQ(log, (std::vector<std::string>{"root.willDisappear", "next.load", "next.willAppear",
                                             "root.didDisappear", "next.didAppear"}));
}

TEST_F(WindowTest, SubviewsAndSuperviewsDoNotOutliveTheirOwners) {
    auto parent = UIView::create(CGRectZero);
    {
        auto child = UIView::create(CGRectZero);
        parent->addSubview(child.get());
    }
    UIView* child = parent->subviewList().front().get();
    child->setTag(7);
    EXPECT_EQ(parent->viewWithTag(7), child);
    child->removeFromSuperview();  // the last reference goes; no use after free
    EXPECT_EQ(parent->viewWithTag(7), nullptr);

    // A dying superview lets its subviews go.
    auto orphan = UIView::create(CGRectZero);
    UIView::create(CGRectZero)->addSubview(orphan.get());  // the parent dies at once
    EXPECT_EQ(orphan->superview(), nullptr);
}

}  // namespace
