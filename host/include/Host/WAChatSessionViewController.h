// A chat with one contact: its messages, the attach menu and the sharing of
// documents.
//
// Messages live in a host::ChatStore (the process's default one unless the
// screen is given another). The attach menu is a WAActionSheet shown through
// showActionSheet:; sharing a document goes through the system document menu
// with the host's own document types.
#pragma once

#include <Host/WAActionSheet.h>
#include <Host/WADocumentAttachment.h>
#include <Host/chat_store.h>

#include <Foundation/dispatch.h>

#include <UIKit/UIViewController.h>

#include <memory>
#include <string>
#include <vector>

class NSURL;

class WAChatSessionViewController : public UIViewController {
    OBJC_CLASS(WAChatSessionViewController)

    // A chat screen for the contact, on the given store (null: the default).
    static objc::Strong<WAChatSessionViewController> create(
        std::string contact, std::shared_ptr<host::ChatStore> store = nullptr);

    // Opens the document menu for the host's document types, modally.
    void presentShareDocumentController() {
        objc::msgSend<void>(this, objc::sel<"presentShareDocumentController">());
    }
    // UIDocumentMenuDelegate: presents the picker of the chosen provider.
    void documentMenuDidPickDocumentPicker(id menu, id picker) {
        objc::msgSend<void>(this, objc::sel<"documentMenu:didPickDocumentPicker:">(), menu, picker);
    }
    // UIDocumentPickerDelegate: sends the file when the host sends its type,
    // otherwise tells the user (an alert) and sends nothing.
    void documentPickerDidPickDocumentAtURL(id picker, NSURL* url) {
        objc::msgSend<void>(this, objc::sel<"documentPicker:didPickDocumentAtURL:">(), picker, url);
    }
    // The chat bar's attach button: builds the attach menu and shows it.
    void chatBarManagerWantsToAttachMedia(id manager) {
        objc::msgSend<void>(this, objc::sel<"chatBarManagerWantsToAttachMedia:">(), manager);
    }
    // Shows the sheet; one sheet at a time (a shown one is cancelled).
    void showActionSheet(WAActionSheet* sheet) {
        objc::msgSend<void>(this, objc::sel<"showActionSheet:">(), sheet);
    }
    // Records the document as sending and returns at once; its file is
    // copied on the send queue, then the message becomes sent, or failed
    // with the reason, on the main queue. A store that cannot record it
    // gets an alert saying why.
    void sendDocumentAttachment(WADocumentAttachment* attachment) {
        objc::msgSend<void>(this, objc::sel<"sendDocumentAttachment:">(), attachment);
    }

    // C++ side.
    const std::string& contactName() const noexcept { return contact_; }
    std::vector<host::Message> messages() const;
    WAActionSheet* visibleActionSheet() const noexcept { return sheet_.get(); }
    // Points the screen at a chat; for screens made by alloc/init.
    void setChat(std::string contact, std::shared_ptr<host::ChatStore> store);
    // Where documents are copied: a global queue unless set (the screen
    // retains the queue).
    void setSendQueue(dispatch_queue_t queue);

    WAChatSessionViewController() = default;
    ~WAChatSessionViewController() override;

  private:
    void imp_viewDidLoad();
    // The view shows the messages as bubbles.
    void imp_loadView();
    void imp_presentShareDocumentController();
    void imp_documentMenuDidPickDocumentPicker(id menu, id picker);
    void imp_documentPickerDidPickDocumentAtURL(id picker, NSURL* url);
    void imp_chatBarManagerWantsToAttachMedia(id manager);
    void imp_showActionSheet(WAActionSheet* sheet);
    void imp_sendDocumentAttachment(WADocumentAttachment* attachment);

    const std::shared_ptr<host::ChatStore>& store();
    void showAlert(NSString* title, NSString* message);

    std::string contact_;
    std::shared_ptr<host::ChatStore> store_;
    objc::Strong<WAActionSheet> sheet_;
    dispatch_queue_t sendQueue_ = nullptr;
};
