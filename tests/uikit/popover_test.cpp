#include "uikit_fixture.h"

#include <objc/exception.h>

namespace {

class PopoverTest : public UIKitTest {
  protected:
    void SetUp() override {
        UIKitTest::SetUp();
        uikit::configureDevice(uikit::DeviceProfile::iPadAir2());
        window = UIWindow::create();
        root = UIViewController::create();
        window->setRootViewController(root.get());
        window->makeKeyAndVisible();
    }
    objc::Strong<UIWindow> window;
    objc::Strong<UIViewController> root;
};

TEST_F(PopoverTest, AShownPopoverKeepsItselfAliveUntilDismissed) {
    auto content = UIViewController::create();
    UIPopoverController* popover = nullptr;
    {
        auto owned = objc::adopt(
            objc::alloc<UIPopoverController>()->initWithContentViewController(content.get()));
        popover = owned.get();
        popover->presentPopoverFromRect(CGRectMake(10, 20, 1, 1), root->view(),
                                        UIPopoverArrowDirectionAny, true);
    }
    // The caller's reference is gone; the popover is still on screen.
    ASSERT_EQ(UIPopoverController::topVisiblePopover(), popover);
    EXPECT_EQ(popover->presentedRect(), CGRectMake(10, 20, 1, 1));
    EXPECT_EQ(popover->presentedInView(), root->view());
    EXPECT_EQ(popover->permittedArrowDirections(), UIPopoverArrowDirectionAny);
    drain();
    EXPECT_EQ(content->appearance(), UIViewController::Appearance::Appeared);

    popover->dismissPopoverAnimated(true);
    EXPECT_TRUE(UIPopoverController::visiblePopovers().empty());
    drain();
    EXPECT_EQ(content->appearance(), UIViewController::Appearance::Disappeared);
}

TEST_F(PopoverTest, TheUserDismissesThroughTheDelegateAndPhonesBeforeIOS8HaveNone) {
    auto delegate = objc::make<RecordingDelegate>();
    auto popover = objc::adopt(objc::alloc<UIPopoverController>()->initWithContentViewController(
        UIViewController::create().get()));
    popover->setDelegate(delegate.get());
    popover->presentPopoverFromRect(CGRectZero, root->view(), UIPopoverArrowDirectionUp, false);

    delegate->allowPopoverDismissal = false;
    EXPECT_FALSE(popover->dismissByUser());
    EXPECT_TRUE(popover->isPopoverVisible());
    delegate->allowPopoverDismissal = true;
    EXPECT_TRUE(popover->dismissByUser());
    EXPECT_FALSE(popover->isPopoverVisible());
    EXPECT_EQ(delegate->log,
              (std::vector<std::string>{"shouldDismiss", "shouldDismiss", "didDismissPopover"}));

    // A dismissal the code asks for is not reported.
    popover->presentPopoverFromRect(CGRectZero, root->view(), UIPopoverArrowDirectionUp, false);
    delegate->log.clear();
    popover->dismissPopoverAnimated(false);
    EXPECT_TRUE(delegate->log.empty());

    auto profile = uikit::DeviceProfile::iPhone5s();
    profile.systemVersion = "7.1";
    uikit::configureDevice(profile);
    EXPECT_THROW(objc::alloc<UIPopoverController>()->initWithContentViewController(
                     UIViewController::create().get()),
                 objc::Exception);
}

}  // namespace
