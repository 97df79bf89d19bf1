#include "uikit_fixture.h"

#include <Foundation/NSArray.h>

#include <objc/exception.h>

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

TEST_F(WindowTest, OnlyInstancesAnswerRootViewController) {
    const SEL root = objc::sel<"rootViewController">();
    const id windowClass = UIWindow::objcClass();
    EXPECT_FALSE(objc::msgSend<bool>(windowClass, objc::sel<"respondsToSelector:">(), root));
    EXPECT_TRUE(objc::msgSend<bool>(windowClass, objc::sel<"instancesRespondToSelector:">(), root));
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

TEST_F(WindowTest, ViewGeometryKeepsFrameBoundsAndCentreConsistent) {
    auto view = UIView::create(CGRectMake(10, 20, 100, 50));
    EXPECT_EQ(view->center(), CGPointMake(60, 45));
    view->setCenter(CGPointMake(0, 0));
    EXPECT_EQ(view->frame(), CGRectMake(-50, -25, 100, 50));
    view->setBounds(CGRectMake(0, 0, 10, 10));
    EXPECT_EQ(view->frame(), CGRectMake(-5, -5, 10, 10));
}

TEST_F(WindowTest, SubviewsMoveBetweenParentsAndKeepOrder) {
    auto a = UIView::create(CGRectZero);
    auto b = UIView::create(CGRectZero);
    auto x = UIView::create(CGRectZero);
    auto y = UIView::create(CGRectZero);
    a->addSubview(x.get());
    a->addSubview(y.get());
    a->insertSubviewAtIndex(b.get(), 1);
    ASSERT_EQ(a->subviews()->count(), 3u);
    EXPECT_EQ(a->subviews()->objectAtIndex(1), b.get());
    a->bringSubviewToFront(x.get());
    EXPECT_EQ(a->subviews()->lastObject(), x.get());

    b->addSubview(x.get());
    EXPECT_EQ(x->superview(), b.get());
    EXPECT_EQ(a->subviews()->count(), 2u);
    EXPECT_TRUE(x->isDescendantOfView(a.get()));

    EXPECT_THROW(a->addSubview(a.get()), objc::Exception);
    EXPECT_THROW(x->addSubview(a.get()), objc::Exception);
    a->addSubview(nullptr);
    EXPECT_EQ(a->subviews()->count(), 2u);

    x->removeFromSuperview();
    EXPECT_EQ(x->superview(), nullptr);
    EXPECT_TRUE(b->subviews()->count() == 0);
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
