#include "uikit_fixture.h"

#include <Foundation/NSArray.h>

#include <objc/exception.h>

namespace {

using PresentationTest = UIKitTest;

objc::Strong<objc::Block<void()>> logBlock(std::vector<std::string>* log, std::string entry) {
    return objc::makeBlock<void()>([log, entry] { log->push_back(entry); });
}

TEST_F(PresentationTest, PresentingLinksBothControllersAndRunsTheCompletionAfterTheLoop) {
    std::vector<std::string> log;
    auto presenter = RecordingViewController::create("a", &log);
    auto presented = RecordingViewController::create("b", &log);
    presenter->beginAppearanceTransition(true, false);
    presenter->endAppearanceTransition();
    log.clear();

    presenter->presentViewController(presented.get(), true, logBlock(&log, "completion").get());
    EXPECT_EQ(presenter->presentedViewController(), presented.get());
    EXPECT_EQ(presented->presentingViewController(), presenter.get());
    EXPECT_EQ(log, (std::vector<std::string>{"b.load", "b.willAppear", "a.willDisappear"}));

    drain();
    EXPECT_EQ(log, (std::vector<std::string>{"b.load", "b.willAppear", "a.willDisappear",
                                             "b.didAppear", "a.didDisappear", "completion"}));
    EXPECT_EQ(presenter->appearance(), UIViewController::Appearance::Disappeared);

    // Nothing to dismiss runs nothing.
    log.clear();
    auto lonely = UIViewController::create();
    lonely->dismissViewControllerAnimated(true, logBlock(&log, "ran").get());
    drain();
    EXPECT_TRUE(log.empty());

    // A presenter may die while its completion is pending.
    auto orphan = UIViewController::create();
    UIViewController::create()->presentViewController(orphan.get(), true,
                                                      logBlock(&log, "done").get());
    drain();
    EXPECT_EQ(log, std::vector<std::string>{"done"});
    EXPECT_EQ(orphan->presentingViewController(), nullptr);
}

TEST_F(PresentationTest, BadPresentationsAreRefusedAndTheirCompletionNeverRuns) {
    std::vector<std::string> log;
    auto presenter = UIViewController::create();
    auto first = UIViewController::create();
    auto second = UIViewController::create();
    presenter->presentViewController(first.get(), false, nullptr);
    testing::internal::CaptureStderr();
    presenter->presentViewController(second.get(), false, logBlock(&log, "second").get());
    const std::string warning = testing::internal::GetCapturedStderr();
    drain();
    EXPECT_NE(warning.find("Attempt to present"), std::string::npos) << warning;
    EXPECT_NE(warning.find("already presenting"), std::string::npos) << warning;
    EXPECT_EQ(presenter->presentedViewController(), first.get());
    EXPECT_EQ(second->presentingViewController(), nullptr);
    EXPECT_TRUE(log.empty());

    // Nil, or a controller another one presents, raises.
    EXPECT_THROW(presenter->presentViewController(nullptr, false, nullptr), objc::Exception);
    auto other = UIViewController::create();
    try {
        other->presentViewController(first.get(), false, nullptr);
        FAIL() << "presenting an already presented controller must raise";
    } catch (const objc::Exception& e) {
        EXPECT_EQ(e.name(), "NSInvalidArgumentException");
    }
    EXPECT_EQ(first->presentingViewController(), presenter.get());
}

TEST_F(PresentationTest, DismissingFromEitherSideOrBelowTakesThePresentedControllersAway) {
    std::vector<std::string> log;
    auto presenter = UIViewController::create();
    for (bool fromPresenter : {true, false}) {
        auto presented = UIViewController::create();
        presenter->presentViewController(presented.get(), false, nullptr);
        drain();
        log.clear();
        UIViewController* target = fromPresenter ? presenter.get() : presented.get();
        target->dismissViewControllerAnimated(true, logBlock(&log, "dismissed").get());
        EXPECT_EQ(presenter->presentedViewController(), nullptr);
        EXPECT_EQ(presented->presentingViewController(), nullptr);
        EXPECT_TRUE(log.empty()) << "the completion waits for the main loop";
        drain();
        EXPECT_EQ(log, std::vector<std::string>{"dismissed"});
        EXPECT_EQ(presented->appearance(), UIViewController::Appearance::Disappeared);
    }
    // Dismissing a presenter takes the whole chain away.
    auto root = UIViewController::create();
    auto middle = UIViewController::create();
    auto top = UIViewController::create();
    root->presentViewController(middle.get(), false, nullptr);
    middle->presentViewController(top.get(), false, nullptr);
    drain();
    EXPECT_EQ(root->topPresentedController(), top.get());
    root->dismissViewControllerAnimated(false, nullptr);
    drain();
    EXPECT_EQ(root->presentedViewController(), nullptr);
    EXPECT_EQ(top->presentingViewController(), nullptr);
}

TEST_F(PresentationTest, PresentedViewsJoinThePresentersWindowAndIPadSheetsLeaveItOnScreen) {
    auto window = UIWindow::create();
    auto root = UIViewController::create();
    window->setRootViewController(root.get());
    window->makeKeyAndVisible();
    auto sheet = UIViewController::create();
    root->presentViewController(sheet.get(), false, nullptr);
    EXPECT_EQ(window->subviews()->lastObject(), sheet->view());
    sheet->dismissViewControllerAnimated(false, nullptr);
    drain();
    EXPECT_EQ(window->subviews()->lastObject(), root->view());

    uikit::configureDevice(uikit::DeviceProfile::iPadAir2());
    auto formSheet = UIViewController::create();
    formSheet->setModalPresentationStyle(UIModalPresentationFormSheet);
    root->presentViewController(formSheet.get(), false, nullptr);
    drain();
    EXPECT_EQ(root->appearance(), UIViewController::Appearance::Appeared);
}

}  // namespace
