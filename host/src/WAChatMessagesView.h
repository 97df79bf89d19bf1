// A chat's messages as bubbles on the chat's background: incoming ones on
// the left in white, outgoing ones on the right in green, one line each;
// the texts are labels. The messages are read from the store when drawn.
#pragma once

#include <Host/chat_store.h>

#include <UIKit/UIView.h>

#include <memory>
#include <string>
#include <vector>

class WAChatMessagesView : public UIView {
    OBJC_CLASS(WAChatMessagesView)

    static objc::Strong<WAChatMessagesView> create(CGRect frame,
                                                   std::shared_ptr<host::ChatStore> store,
                                                   std::string contact);

    // Where each message's bubble was last drawn, oldest first.
    const std::vector<CGRect>& bubbles() const noexcept { return bubbles_; }

    WAChatMessagesView() = default;

  private:
    void imp_drawRect(CGRect rect);

    std::shared_ptr<host::ChatStore> store_;
    std::string contact_;
    std::vector<CGRect> bubbles_;
};
