#include "uikit_fixture.h"

#include <Foundation/NSMutableString.h>

namespace {

using AlertViewTest = UIKitTest;

TEST_F(AlertViewTest, ButtonsAreNumberedCancelFirstAndTextIsCopied) {
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
    auto text = NSMutableString::create();
    text->appendString(NSSTR("Saved"));
    plain->setTitle(text.get());
    plain->setMessage(text.get());
    text->appendString(NSSTR(" twice"));
    EXPECT_EQ(plain->title()->utf8(), "Saved");
    EXPECT_EQ(plain->message()->utf8(), "Saved");
}

TEST_F(AlertViewTest, ShowingKeepsItAliveAndTappingTellsTheDelegateInOrder) {
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

    auto tapped =
        UIAlertView::create(NSSTR("T"), NSSTR("M"), delegate.get(), NSSTR("Cancel"), NSSTR("Go"));
    EXPECT_FALSE(tapped->tapButton(1)) << "an alert that is not shown cannot be tapped";
    tapped->show();
    delegate->log.clear();
    EXPECT_FALSE(tapped->tapButton(5));
    EXPECT_TRUE(tapped->tapButton(1));
    EXPECT_EQ(delegate->log,
              (std::vector<std::string>{"clicked:1", "willDismiss:1", "didDismiss:1"}));
    EXPECT_FALSE(tapped->isVisible());
}

}  // namespace
