#include <UIKit/UIControl.h>

#include <objc/image.h>

#include <algorithm>

OBJC_DEFINE_CLASS(UIControl, UIView, "UIControl")
OBJC_REGISTER_CLASS(UIControl)

void UIControl::objcDefine(objc::ClassBuilder<UIControl>& b) {
    using C = UIControl;
    b.method<&C::imp_addTargetActionForControlEvents>("addTarget:action:forControlEvents:")
        .method<&C::imp_removeTargetActionForControlEvents>("removeTarget:action:forControlEvents:")
        .method<&C::imp_sendActionsForControlEvents>("sendActionsForControlEvents:")
        .method<&C::imp_allControlEvents>("allControlEvents")
        .property<&C::enabled_>("enabled", objc::Nonatomic | objc::getter("isEnabled"))
        .property<&C::selected_>("selected", objc::Nonatomic | objc::getter("isSelected"))
        .property<&C::highlighted_>("highlighted", objc::Nonatomic | objc::getter("isHighlighted"));
}

void UIControl::imp_addTargetActionForControlEvents(id target, SEL action, UIControlEvents events) {
    if (action == nullptr || events == 0) return;
    for (Registration& entry : registrations_) {
        if (entry.target == target && entry.action == action) {
            entry.events |= events;
            return;
        }
    }
    registrations_.push_back({target, action, events});
}

void UIControl::imp_removeTargetActionForControlEvents(id target, SEL action,
                                                       UIControlEvents events) {
    for (Registration& entry : registrations_) {
        const bool targetMatches = target == nullptr || entry.target == target;
        const bool actionMatches = action == nullptr || entry.action == action;
        if (targetMatches && actionMatches) entry.events &= ~events;
    }
    std::erase_if(registrations_, [](const Registration& entry) { return entry.events == 0; });
}

void UIControl::imp_sendActionsForControlEvents(UIControlEvents events) {
    // An action may add or remove registrations (or release a target that
    // then unregisters): send to the registrations as they were.
    std::vector<Registration> matching;
    for (const Registration& entry : registrations_) {
        if ((entry.events & events) != 0) matching.push_back(entry);
    }
    const objc::Strong<UIControl> keep = objc::retained(this);
    for (const Registration& entry : matching) {
        // A target that unregistered during an earlier action hears nothing.
        const bool stillThere =
            std::any_of(registrations_.begin(), registrations_.end(), [&](const auto& now) {
                return now.target == entry.target && now.action == entry.action &&
                       (now.events & events) != 0;
            });
        if (!stillThere || entry.target == nullptr) continue;
        objc::msgSend<void>(entry.target, entry.action, static_cast<id>(this));
    }
}

UIControlEvents UIControl::imp_allControlEvents() const {
    UIControlEvents all{};
    for (const Registration& entry : registrations_) all |= entry.events;
    return all;
}
