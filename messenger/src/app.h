// The running app: its window, the navigation stack (the chats list at the
// root) and the ways the user moves between screens.
#pragma once

#include <Host/chat_store.h>
#include <Host/WAChatListViewController.h>
#include <Host/WAChatSessionViewController.h>
#include <Host/WASettingsViewController.h>

#include <UIKit/UIKit.h>

#include <memory>
#include <string>

namespace messenger {

class App {
  public:
    // Builds the window and the chats list; call after the libraries are loaded.
    App();
    // Takes every screen down (so that nothing on screen holds on to itself).
    ~App();
    App(const App&) = delete;
    App& operator=(const App&) = delete;

    // What is in front, topmost first: an alert, the top screen's action
    // sheet, a popover, else the top screen.
    struct Front {
        enum class Kind { Alert, ActionSheet, Popover, Screen };
        Kind kind = Kind::Screen;
        id object = nullptr;
    };
    Front front();
    // What the user acts on in front: a popover's content in place of the
    // popover, else front().object.
    id frontContent();
    // The controller at the top of the navigation stack and what it presents
    // (inside a presented navigation controller, its top controller).
    UIViewController* topController();
    // The chat at the top of the navigation stack, whatever it presents; null
    // when the top screen is no chat.
    WAChatSessionViewController* openChatScreen();

    // Closes whatever is presented and returns to the chats list.
    void showChats();
    // Opens the chat with that name (case-insensitive); null when unknown.
    WAChatSessionViewController* openChat(const std::string& name);
    WASettingsViewController* openSettings();
    // Goes back one step; answers what happened, for the user.
    std::string back();

    WAChatListViewController* chatList() const noexcept { return chats_.get(); }
    host::ChatStore& store() const noexcept { return *store_; }

  private:
    void dismissPresented();

    std::shared_ptr<host::ChatStore> store_;
    objc::Strong<UIWindow> window_;
    objc::Strong<UINavigationController> navigation_;
    objc::Strong<WAChatListViewController> chats_;
};

}  // namespace messenger
