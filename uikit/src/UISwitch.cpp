#include <UIKit/UISwitch.h>

#include <objc/image.h>

OBJC_DEFINE_CLASS(UISwitch, UIControl, "UISwitch")
OBJC_REGISTER_CLASS(UISwitch)

namespace {

// A switch is always drawn at the platform's size, whatever frame it gets.
constexpr CGSize kSwitchSize{51, 31};

}  // namespace

void UISwitch::objcDefine(objc::ClassBuilder<UISwitch>& b) {
    b.method<&UISwitch::imp_initWithFrame>("initWithFrame:")
        .property<&UISwitch::on_>("on", objc::Nonatomic | objc::getter("isOn"))
        .method<&UISwitch::imp_setOnAnimated>("setOn:animated:")
        .method<&UISwitch::imp_userToggle>("_userToggle");
}

UISwitch* UISwitch::imp_initWithFrame(CGRect frame) {
    frame.size = kSwitchSize;
    objc::superSend<UIView*>(this, objc::sel<"initWithFrame:">(), frame);
    return this;
}

void UISwitch::imp_setOnAnimated(bool on, bool /*animated*/) {
    setOn(on);
}

bool UISwitch::imp_userToggle() {
    if (!isEnabled()) return false;
    setOnAnimated(!isOn(), true);
    sendActionsForControlEvents(UIControlEventValueChanged);
    return true;
}
