// The list of chats; opening one pushes its chat screen.
#pragma once

#include <Host/WAChatSessionViewController.h>
#include <Host/chat_store.h>

#include <UIKit/UIViewController.h>

#include <memory>
#include <string>
#include <vector>

class WAChatListViewController : public UIViewController {
    OBJC_CLASS(WAChatListViewController)

    static objc::Strong<WAChatListViewController> create(
        std::shared_ptr<host::ChatStore> store = nullptr);

    std::vector<std::string> chatNames() const;
    // Pushes a chat screen for the chat (made if it does not exist) on the
    // navigation controller and answers it; null without a navigation
    // controller.
    WAChatSessionViewController* openChat(const std::string& name);
    const std::shared_ptr<host::ChatStore>& chatStore() const noexcept { return store_; }

    WAChatListViewController() = default;

  private:
    void imp_viewDidLoad();
    // The view is a plain table of the chats, read from the store when drawn.
    void imp_loadView();

    std::shared_ptr<host::ChatStore> store_;
};
