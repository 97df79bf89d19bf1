// A modal alert with a title, a message and buttons, reporting to a delegate
// (not retained).
//
// The platform's initializer takes a nil-terminated C list of further button
// titles after the first one; a C variadic list cannot travel through a typed
// message send, so the selector is registered with a fixed signature that
// takes the first other title only. Callers that need more buttons add them
// with addButtonWithTitle:.
//
// A shown alert keeps itself alive in the process's list of visible alerts
// until it is dismissed; the C++ side reads that list to find what is on
// screen and taps buttons through tapButton().
#pragma once

#include <objc/object.h>
#include <objc/string.h>

#include <string>
#include <vector>

enum UIAlertViewStyle : NSInteger {
    UIAlertViewStyleDefault = 0,
    UIAlertViewStyleSecureTextInput = 1,
    UIAlertViewStylePlainTextInput = 2,
    UIAlertViewStyleLoginAndPasswordInput = 3,
};

class PV_EXPORT UIAlertView : public NSObject {
    OBJC_CLASS(UIAlertView)

    // initWithTitle:message:delegate:cancelButtonTitle:otherButtonTitles:,
    // with at most one other title (see above). The cancel button, when
    // given, has index 0; the other buttons follow in order.
    UIAlertView* initWithTitle(NSString* title, NSString* message, id delegate,
                               NSString* cancelButtonTitle, NSString* otherButtonTitle) {
        return objc::msgSend<UIAlertView*>(
            this,
            objc::sel<"initWithTitle:message:delegate:cancelButtonTitle:otherButtonTitles:">(),
            title, message, delegate, cancelButtonTitle, otherButtonTitle);
    }
    static objc::Strong<UIAlertView> create(NSString* title, NSString* message, id delegate,
                                            NSString* cancelButtonTitle,
                                            NSString* otherButtonTitle = nullptr) {
        return objc::adopt(objc::alloc<UIAlertView>()->initWithTitle(
            title, message, delegate, cancelButtonTitle, otherButtonTitle));
    }

    // Answers the new button's index.
    NSInteger addButtonWithTitle(NSString* title) {
        return objc::msgSend<NSInteger>(this, objc::sel<"addButtonWithTitle:">(), title);
    }
    // Shows the alert: it becomes the visible one, and the delegate hears
    // willPresentAlertView: then didPresentAlertView:.
    void show() { objc::msgSend<void>(this, objc::sel<"show">()); }
    // Takes the alert away as if the button had been chosen, without the
    // click: the delegate hears alertView:willDismissWithButtonIndex: and
    // alertView:didDismissWithButtonIndex:.
    void dismissWithClickedButtonIndex(NSInteger index, bool animated) {
        objc::msgSend<void>(this, objc::sel<"dismissWithClickedButtonIndex:animated:">(), index,
                            animated);
    }
    NSInteger numberOfButtons() {
        return objc::msgSend<NSInteger>(this, objc::sel<"numberOfButtons">());
    }
    // nil for an index out of range.
    NSString* buttonTitleAtIndex(NSInteger index) {
        return objc::msgSend<NSString*>(this, objc::sel<"buttonTitleAtIndex:">(), index);
    }
    // -1 when there is no cancel button.
    NSInteger cancelButtonIndex() {
        return objc::msgSend<NSInteger>(this, objc::sel<"cancelButtonIndex">());
    }
    void setCancelButtonIndex(NSInteger index) {
        objc::msgSend<void>(this, objc::sel<"setCancelButtonIndex:">(), index);
    }
    // -1 when there is no button other than the cancel one.
    NSInteger firstOtherButtonIndex() {
        return objc::msgSend<NSInteger>(this, objc::sel<"firstOtherButtonIndex">());
    }
    bool isVisible() { return objc::msgSend<bool>(this, objc::sel<"isVisible">()); }
    NSString* title() { return objc::msgSend<NSString*>(this, objc::sel<"title">()); }
    void setTitle(NSString* title) { objc::msgSend<void>(this, objc::sel<"setTitle:">(), title); }
    NSString* message() { return objc::msgSend<NSString*>(this, objc::sel<"message">()); }
    void setMessage(NSString* message) {
        objc::msgSend<void>(this, objc::sel<"setMessage:">(), message);
    }
    id delegate() { return objc::msgSend<id>(this, objc::sel<"delegate">()); }
    void setDelegate(id delegate) {
        objc::msgSend<void>(this, objc::sel<"setDelegate:">(), delegate);
    }
    UIAlertViewStyle alertViewStyle() {
        return objc::msgSend<UIAlertViewStyle>(this, objc::sel<"alertViewStyle">());
    }
    void setAlertViewStyle(UIAlertViewStyle style) {
        objc::msgSend<void>(this, objc::sel<"setAlertViewStyle:">(), style);
    }

    // The user taps the button at `index` of a visible alert: the delegate
    // hears alertView:clickedButtonAtIndex:, then the alert is dismissed with
    // that index (willDismiss, didDismiss), each only where the delegate
    // responds. False (and nothing happens) when the alert is not visible
    // or has no such button.
    bool tapButton(NSInteger index);

    // The buttons' titles in index order, without messages.
    std::vector<std::string> buttonTitles() const;

    // The visible alerts, oldest first, and the newest one (or null).
    static std::vector<UIAlertView*> visibleAlerts();
    static UIAlertView* topVisibleAlert();

    UIAlertView() = default;

  private:
    UIAlertView* imp_initWithTitle(NSString* title, NSString* message, id delegate,
                                   NSString* cancelButtonTitle, NSString* otherButtonTitle);
    NSInteger imp_addButtonWithTitle(NSString* title);
    void imp_show();
    void imp_dismissWithClickedButtonIndex(NSInteger index, bool animated);
    NSInteger imp_numberOfButtons() const { return static_cast<NSInteger>(buttons_.size()); }
    NSString* imp_buttonTitleAtIndex(NSInteger index) const;
    NSInteger imp_firstOtherButtonIndex() const;

    // Sends an optional delegate message (alert, and the index if any).
    void tellDelegate(SEL sel);
    void tellDelegate(SEL sel, NSInteger index);

    objc::Strong<NSString> title_;
    objc::Strong<NSString> message_;
    id delegate_ = nullptr;  // not retained
    std::vector<objc::Strong<NSString>> buttons_;
    NSInteger cancelIndex_ = -1;
    UIAlertViewStyle style_ = UIAlertViewStyleDefault;
    bool visible_ = false;
};
