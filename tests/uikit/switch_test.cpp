// UIControl target-action as UISwitch uses it: who hears a toggle, with what
// argument, and who does not.
#include <UIKit/UISwitch.h>

#include <objc/image.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

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

objc::Strong<ActionTarget> makeTarget(std::string name, std::vector<std::string>* log) {
    auto target = objc::make<ActionTarget>();
    target->name = std::move(name);
    target->log = log;
    return target;
}

const SEL kChanged = sel_registerName("changed:");
const SEL kTapped = sel_registerName("tapped:");

TEST(Switch, UserToggleSendsValueChangedOnceWithTheSwitch) {
    objc::AutoreleasePool pool;
    std::vector<std::string> log;
    auto first = makeTarget("first", &log);
    auto second = makeTarget("second", &log);
    auto control = UISwitch::create();
    EXPECT_FALSE(control->isOn());
    EXPECT_EQ(control->frame().size.width, 51.0);
    control->addTargetActionForControlEvents(first.get(), kChanged, UIControlEventValueChanged);
    control->addTargetActionForControlEvents(second.get(), kTapped, UIControlEventTouchUpInside);
    // Adding the same pair again does not send twice.
    control->addTargetActionForControlEvents(first.get(), kChanged, UIControlEventValueChanged);

    EXPECT_TRUE(control->userToggle());
    EXPECT_TRUE(control->isOn());
    ASSERT_EQ(log, std::vector<std::string>{"first:changed"});
    ASSERT_EQ(first->senders.size(), 1u);
    EXPECT_EQ(first->senders[0], control.get());

    EXPECT_TRUE(control->userToggle());
    EXPECT_FALSE(control->isOn());
    EXPECT_EQ(log.size(), 2u);
}

TEST(Switch, ChangesFromCodeSendNothing) {
    objc::AutoreleasePool pool;
    std::vector<std::string> log;
    auto target = makeTarget("t", &log);
    auto control = UISwitch::create();
    control->addTargetActionForControlEvents(target.get(), kChanged, UIControlEventValueChanged);
    control->setOnAnimated(true, false);
    EXPECT_TRUE(control->isOn());
    control->setOn(false);
    EXPECT_FALSE(control->isOn());
    EXPECT_TRUE(log.empty());

    // A disabled switch ignores the user but not the code.
    control->setEnabled(false);
    EXPECT_FALSE(control->userToggle());
    EXPECT_FALSE(control->isOn());
    control->setOn(true);
    EXPECT_TRUE(control->isOn());
    EXPECT_TRUE(log.empty());
}

TEST(Switch, RemovedTargetsHearNothing) {
    objc::AutoreleasePool pool;
    std::vector<std::string> log;
    auto kept = makeTarget("kept", &log);
    auto removed = makeTarget("removed", &log);
    auto control = UISwitch::create();
    control->addTargetActionForControlEvents(removed.get(), kChanged, UIControlEventValueChanged);
    control->addTargetActionForControlEvents(kept.get(), kChanged, UIControlEventValueChanged);
    control->removeTargetActionForControlEvents(removed.get(), kChanged,
                                                UIControlEventValueChanged);
    EXPECT_EQ(control->registrationCount(), 1u);
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
    EXPECT_EQ(control->allControlEvents(),
              UIControlEventValueChanged | UIControlEventTouchUpInside);

    // A nil target removes the action for everybody.
    control->removeTargetActionForControlEvents(nullptr, nullptr, UIControlEventAllEvents);
    EXPECT_EQ(control->registrationCount(), 0u);
}

TEST(Switch, TargetsAreNotRetainedAndMayLeaveDuringAnAction) {
    objc::AutoreleasePool pool;
    std::vector<std::string> log;
    auto control = UISwitch::create();
    auto leaver = makeTarget("leaver", &log);
    auto other = makeTarget("other", &log);
    const auto before = objc_retainCount(leaver.get());
    control->addTargetActionForControlEvents(leaver.get(), kChanged, UIControlEventValueChanged);
    EXPECT_EQ(objc_retainCount(leaver.get()), before);
    control->addTargetActionForControlEvents(other.get(), kChanged, UIControlEventValueChanged);
    // The first target unregisters the second while the actions are sent:
    // the second, though chosen before, hears nothing.
    leaver->control = control.get();
    leaver->evict = other.get();
    control->userToggle();
    control->userToggle();
    EXPECT_EQ(log, (std::vector<std::string>{"leaver:changed", "leaver:changed"}));
    EXPECT_TRUE(other->senders.empty());
}

TEST(Switch, ViewsCarryTagsAndAccessibilityTraits) {
    objc::AutoreleasePool pool;
    auto container = UIView::create(CGRectZero);
    auto control = UISwitch::create();
    control->setTag(38);
    container->addSubview(control.get());
    EXPECT_EQ(container->viewWithTag(38), control.get());
    EXPECT_EQ(container->viewWithTag(42), nullptr);
    EXPECT_EQ(control->accessibilityTraits(), UIAccessibilityTraitNone);
    control->setAccessibilityTraits(UIAccessibilityTraitButton);
    EXPECT_EQ(control->accessibilityTraits(), UIAccessibilityTraitButton);
}

}  // namespace
