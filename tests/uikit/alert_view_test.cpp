#include "uikit_fixture.h"

#include <Foundation/NSMutableString.h>

namespace {

using AlertViewTest = UIKitTest;

TEST_F(AlertViewTest, ButtonsAreNumberedCancelFirst) {
    auto alert = UIAlertView::create(NSSTR("Title"), NSSTR("Message"), nullptr, NSSTR("Cancel"),
                                     NSSTR("OK"));
    EXPECT_EQ(alert->numberOfButtons(), 2);
    EXPECT_EQ(alert->cancelButtonIndex(), 0);
    EXPECT_EQ(alert->firstOtherButtonIndex(), 1);
    EXPECT_EQ(alert->addButtonWithTitle(NSSTR("More")), 2);
    EXPECT_EQ(alert->buttonTitleAtIndex(3), nullptr);
    EXPECT_EQ(alert->buttonTitleAtIndex(-1), nullptr);

    auto plain = UIAlertView::create(nullptr, nullptr, nullptr, nullptr, NSSTR("OK"));
    EXPECT_EQ(plain->cancelButtonIndex(), -1);
    EXPECT_EQ(plain->buttonTitles(), std::vector<std::string>{"OK"});
}

TEST_F(AlertViewTest, ShowingMakesItVisibleAndKeepsItAlive) {
    auto delegate = objc::make<RecordingDelegate>();
    UIAlertView* alert = nullptr;
    {
        auto owned = UIAlertView::create(NSSTR("T"), nullptr, delegate.get(), NSSTR("OK"));
        alert = owned.get();
        alert->show();
    }
    EXPECT_EQ(UIAlertView::topVisibleAlert(), alert);
    EXPECT_TRUE(alert->isVisible());
    EXPECT_EQ(delegate->log, (std::vector<std::string>{"willPresent", "didPresent"}));
    // A dismissal from code skips the click, and happens once.
    const auto held = objc::retained(alert);
    delegate->log.clear();
    alert->dismissWithClickedButtonIndex(0, true);
    alert->dismissWithClickedButtonIndex(0, true);
    EXPECT_EQ(delegate->log, (std::vector<std::string>{"willDismiss:0", "didDismiss:0"}));
    EXPECT_EQ(UIAlertView::topVisibleAlert(), nullptr);
}

TEST_F(AlertViewTest, TappingTellsTheDelegateInOrder) {
    auto delegate = objc::make<RecordingDelegate>();
    auto alert =
        UIAlertView::create(NSSTR("T"), NSSTR("M"), delegate.get(), NSSTR("Cancel"), NSSTR("Go"));
    EXPECT_FALSE(alert->tapButton(1)) << "an alert that is not shown cannot be tapped";
    alert->show();
    delegate->log.clear();
    EXPECT_FALSE(alert->tapButton(5));
    EXPECT_TRUE(alert->tapButton(1));
    EXPECT_EQ(delegate->log,
              (std::vector<std::string>{"clicked:1", "willDismiss:1", "didDismiss:1"}));
    EXPECT_FALSE(alert->isVisible());
}

TEST_F(AlertViewTest, TextIsCopiedAndVisibilityCannotBeSet) {
    auto alert = UIAlertView::create(nullptr, nullptr, nullptr, NSSTR("OK"));
    auto text = NSMutableString::create();
    text->appendString(NSSTR("Saved"));
    alert->setTitle(text.get());
    alert->setMessage(text.get());
    text->appendString(NSSTR(" twice"));
    EXPECT_EQ(alert->title()->utf8(), "Saved");
    EXPECT_EQ(alert->message()->utf8(), "Saved");
    EXPECT_FALSE(objc::msgSend<bool>(alert.get(), objc::sel<"respondsToSelector:">(),
                                     objc::sel<"setVisible:">()));
}

}  // namespace
