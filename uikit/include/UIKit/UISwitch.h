// An on/off switch. Setting the value from code sends no action, as on the
// platform; only the user's toggle (userToggle) reports
// UIControlEventValueChanged to the targets.
#pragma once

#include <UIKit/UIControl.h>

class PV_EXPORT UISwitch : public UIControl {
    OBJC_CLASS(UISwitch)

    // An owned switch, off, at the platform's size (+new does the same).
    static objc::Strong<UISwitch> create() {
        return objc::adopt(objc::msgSend<UISwitch*>(objcClass(), objc::sel<"new">()));
    }

    bool isOn() { return objc::msgSend<bool>(this, objc::sel<"isOn">()); }
    void setOn(bool on) { objc::msgSend<void>(this, objc::sel<"setOn:">(), on); }
    void setOnAnimated(bool on, bool animated) {
        objc::msgSend<void>(this, objc::sel<"setOn:animated:">(), on, animated);
    }

    // The user flips the switch: the value changes and the targets hear
    // UIControlEventValueChanged. Answers false, changing nothing, when the
    // switch is disabled.
    bool userToggle() { return objc::msgSend<bool>(this, objc::sel<"_userToggle">()); }

    UISwitch() = default;

  private:
    UISwitch* imp_initWithFrame(CGRect frame);
    void imp_setOnAnimated(bool on, bool animated);
    bool imp_userToggle();
    void imp_drawRect(CGRect rect);

    bool on_ = false;
};
