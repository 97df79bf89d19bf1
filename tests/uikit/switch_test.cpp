// UIControl target-action as UISwitch uses it: who hears a toggle, with what argument.
#include <UIKit/UISwitch.h>

#include <objc/image.h>

#include <gtest/gtest.h>

#include <string>
#include <type_traits>
#include <vector>

namespace {

// Masks combine into masks of their own set.
static_assert(std::is_same_v<decltype(UIControlEventTouchDown | UIControlEventValueChanged),
                             UIControlEvents> &&
              objc::bits(UIControlEventAllTouchEvents & ~UIControlEventTouchDown) == 0xFFE);

// Logs "<name>:<action>" with the sender it received.
class ActionTarget : public NSObject {
    OBJC_CLASS(ActionTarget)

    std::string name;
    std::vector<std::string>* log = nullptr;
    std::vector<id> senders;
    // When set, each action unregisters `evict` from `control`.
    UIControl* control = nullptr;
    id evict = nullptr;

  private:
    void record(const char* action, id sender) {
        senders.push_back(sender);
        if (log != nullptr) log->push_back(name + ":" + action);
        if (control != nullptr) {
            control->removeTargetActionForControlEvents(evict, nullptr, UIControlEventAllEvents);
        }
    }
    void imp_changed(id sender) { record("changed", sender); }
    void imp_tapped(id sender) { record("tapped", sender); }
};

OBJC_DEFINE_CLASS(ActionTarget, NSObject, "SwitchTestActionTarget")
OBJC_REGISTER_CLASS(ActionTarget)

void ActionTarget::objcDefine(objc::ClassBuilder<ActionTarget>& b) {
    b.method<&ActionTarget::imp_changed>("changed:").method<&ActionTarget::imp_tapped>("tapped:");
}

const SEL kChanged = sel_registerName("changed:");
const SEL kTapped = sel_registerName("tapped:");

class SwitchTest : public ::testing::Test {
  protected:
    objc::Strong<ActionTarget> makeTarget(std::string name) {
        auto target = objc::make<ActionTarget>();
        target->name = std::move(name);
        target->log = &log;
        return target;
    }

    objc::AutoreleasePool pool;
    std::vector<std::string> log;
    objc::Strong<UISwitch> control = UISwitch::create();
};

TEST_F(SwitchTest, UserToggleSendsValueChangedOnceWithTheSwitchAndCodeSendsNothing) {
    auto first = makeTarget("first");
    auto second = makeTarget("second");
    control->addTargetActionForControlEvents(first.get(), kChanged, UIControlEventValueChanged);
    control->addTargetActionForControlEvents(second.get(), kTapped, UIControlEventTouchUpInside);
    // Adding the same pair again does not send twice.
    control->addTargetActionForControlEvents(first.get(), kChanged, UIControlEventValueChanged);
    EXPECT_TRUE(control->userToggle());
    EXPECT_TRUE(control->isOn());
    ASSERT_EQ(log, std::vector<std::string>{"first:changed"});
    EXPECT_EQ(first->senders, std::vector<id>{control.get()});

    log.clear();
    control->setOnAnimated(false, false);
    EXPECT_FALSE(control->isOn());
    control->setOn(true);
    EXPECT_TRUE(log.empty());
    // A disabled switch ignores the user but not the code.
    control->setEnabled(false);
    EXPECT_FALSE(control->userToggle());
    EXPECT_TRUE(control->isOn());
    control->setOn(false);
    EXPECT_FALSE(control->isOn());
    EXPECT_TRUE(log.empty());
}

TEST_F(SwitchTest, RemovedTargetsHearNothing) {
    auto kept = makeTarget("kept");
    auto removed = makeTarget("removed");
    control->addTargetActionForControlEvents(removed.get(), kChanged, UIControlEventValueChanged);
    control->addTargetActionForControlEvents(kept.get(), kChanged, UIControlEventValueChanged);
    control->removeTargetActionForControlEvents(removed.get(), kChanged,
                                                UIControlEventValueChanged);
    control->userToggle();
    EXPECT_EQ(log, std::vector<std::string>{"kept:changed"});

    // Removing some events keeps the registration for the others.
    control->addTargetActionForControlEvents(
        removed.get(), kTapped, UIControlEventValueChanged | UIControlEventTouchUpInside);
    control->removeTargetActionForControlEvents(removed.get(), kTapped, UIControlEventValueChanged);
    log.clear();
    control->sendActionsForControlEvents(UIControlEventValueChanged);
    control->sendActionsForControlEvents(UIControlEventTouchUpInside);
    EXPECT_EQ(log, (std::vector<std::string>{"kept:changed", "removed:tapped"}));

    // A nil target removes the action for everybody.
    control->removeTargetActionForControlEvents(nullptr, nullptr, UIControlEventAllEvents);
    log.clear();
    control->userToggle();
    EXPECT_TRUE(log.empty());
}

TEST_F(SwitchTest, TargetsAreNotRetainedAndMayLeaveDuringAnAction) {
    auto leaver = makeTarget("leaver");
    auto other = makeTarget("other");
    const auto before = objc_retainCount(leaver.get());
    control->addTargetActionForControlEvents(leaver.get(), kChanged, UIControlEventValueChanged);
    EXPECT_EQ(objc_retainCount(leaver.get()), before);
    control->addTargetActionForControlEvents(other.get(), kChanged, UIControlEventValueChanged);
    // The first target unregisters the second while actions are sent: the second hears nothing.
    leaver->control = control.get();
    leaver->evict = other.get();
    control->userToggle();
    control->userToggle();
    EXPECT_EQ(log, (std::vector<std::string>{"leaver:changed", "leaver:changed"}));
    EXPECT_TRUE(other->senders.empty());
}

}  // namespace
