// The top of a view tree. One window at a time is the key window; the app
// (not the window list) owns its windows, so the key window is remembered
// without a reference and forgotten when that window goes away.
#pragma once

#include <UIKit/UIView.h>

class UIViewController;

class PV_EXPORT UIWindow : public UIView {
    OBJC_CLASS(UIWindow)

    // A new window the size of the screen, hidden, owned by the caller.
    static objc::Strong<UIWindow> create();

    // The key window, or nil. A class method only: instances answer
    // isKeyWindow, and the class itself has no rootViewController.
    static UIWindow* keyWindow() {
        return objc::msgSend<UIWindow*>(objcClass(), objc::sel<"keyWindow">());
    }

    // Shows the window and makes it the key window; its root controller
    // appears.
    void makeKeyAndVisible() { objc::msgSend<void>(this, objc::sel<"makeKeyAndVisible">()); }
    void makeKeyWindow() { objc::msgSend<void>(this, objc::sel<"makeKeyWindow">()); }
    bool isKeyWindow() { return objc::msgSend<bool>(this, objc::sel<"isKeyWindow">()); }

    // The controller whose view fills the window; setting it replaces the
    // previous one's view.
    UIViewController* rootViewController() {
        return objc::msgSend<UIViewController*>(this, objc::sel<"rootViewController">());
    }
    void setRootViewController(UIViewController* controller) {
        objc::msgSend<void>(this, objc::sel<"setRootViewController:">(), controller);
    }

    UIWindow() = default;
    ~UIWindow() override;

  private:
    static UIWindow* imp_keyWindow(Class cls);
    UIWindow* imp_initWithFrame(CGRect frame);
    void imp_makeKeyAndVisible();
    void imp_makeKeyWindow();
    bool imp_isKeyWindow() const;
    UIViewController* imp_rootViewController() const { return root_.get(); }
    void imp_setRootViewController(UIViewController* controller);
    void imp_setHidden(bool hidden);

    objc::Strong<UIViewController> root_;
};
