// A view that reports user interaction to targets through actions.
//
// Each registration is a (target, action, events) triple; the target is not
// retained, as on the platform, so a target must unregister (or outlive the
// control). Actions take the control as their one argument ("v@:@").
#pragma once

#include <UIKit/UIView.h>

#include <objc/options.h>

#include <cstddef>
#include <vector>

enum UIControlEvents : NSUInteger {
    UIControlEventTouchDown = 1 << 0,
    UIControlEventTouchUpInside = 1 << 6,
    UIControlEventTouchUpOutside = 1 << 7,
    UIControlEventTouchCancel = 1 << 8,
    UIControlEventValueChanged = 1 << 12,
    UIControlEventEditingDidBegin = 1 << 16,
    UIControlEventEditingChanged = 1 << 17,
    UIControlEventEditingDidEnd = 1 << 18,
    UIControlEventAllTouchEvents = 0x00000FFF,
    UIControlEventAllEditingEvents = 0x000F0000,
    UIControlEventAllEvents = 0xFFFFFFFF,
};
OBJC_OPTIONS(UIControlEvents);

class PV_EXPORT UIControl : public UIView {
    OBJC_CLASS(UIControl)

    // Registering the same target and action again adds the events to the
    // existing registration.
    void addTargetActionForControlEvents(id target, SEL action, UIControlEvents events) {
        objc::msgSend<void>(this, objc::sel<"addTarget:action:forControlEvents:">(), target, action,
                            events);
    }
    // Removes the events from matching registrations; a nil target matches
    // every target and a null action every action.
    void removeTargetActionForControlEvents(id target, SEL action, UIControlEvents events) {
        objc::msgSend<void>(this, objc::sel<"removeTarget:action:forControlEvents:">(), target,
                            action, events);
    }
    // Sends each action registered for any of the events to its target, in
    // registration order, with the control as the argument. Registrations
    // with a nil target are skipped: there is no responder chain to search.
    void sendActionsForControlEvents(UIControlEvents events) {
        objc::msgSend<void>(this, objc::sel<"sendActionsForControlEvents:">(), events);
    }
    // The events of every registration, OR-ed together.
    UIControlEvents allControlEvents() {
        return objc::msgSend<UIControlEvents>(this, objc::sel<"allControlEvents">());
    }

    // A disabled control ignores the user; code can still change it.
    bool isEnabled() { return objc::msgSend<bool>(this, objc::sel<"isEnabled">()); }
    void setEnabled(bool enabled) {
        objc::msgSend<void>(this, objc::sel<"setEnabled:">(), enabled);
    }
    bool isSelected() { return objc::msgSend<bool>(this, objc::sel<"isSelected">()); }
    void setSelected(bool selected) {
        objc::msgSend<void>(this, objc::sel<"setSelected:">(), selected);
    }
    bool isHighlighted() { return objc::msgSend<bool>(this, objc::sel<"isHighlighted">()); }
    void setHighlighted(bool highlighted) {
        objc::msgSend<void>(this, objc::sel<"setHighlighted:">(), highlighted);
    }

    // The number of registrations, without a message.
    std::size_t registrationCount() const noexcept { return registrations_.size(); }

    UIControl() = default;

  private:
    struct Registration {
        id target;  // not retained
        SEL action;
        UIControlEvents events;
    };

    void imp_addTargetActionForControlEvents(id target, SEL action, UIControlEvents events);
    void imp_removeTargetActionForControlEvents(id target, SEL action, UIControlEvents events);
    void imp_sendActionsForControlEvents(UIControlEvents events);
    UIControlEvents imp_allControlEvents() const;

    std::vector<Registration> registrations_;
    bool enabled_ = true;
    bool selected_ = false;
    bool highlighted_ = false;
};
