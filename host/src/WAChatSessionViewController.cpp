#include <Host/WAChatSessionViewController.h>

#include "WAChatMessagesView.h"

#include <Host/document_types.h>
#include <Host/host_strings.h>

#include <Foundation/NSArray.h>
#include <Foundation/NSPathUtilities.h>
#include <Foundation/NSURL.h>

#include <UIKit/UIAlertView.h>
#include <UIKit/UIDocumentMenuViewController.h>
#include <UIKit/UIScreen.h>

#include <objc/image.h>

#include <cstdio>
#include <exception>
#include <filesystem>
#include <optional>
#include <system_error>

OBJC_DEFINE_CLASS(WAChatSessionViewController, UIViewController, "WAChatSessionViewController")
OBJC_REGISTER_CLASS(WAChatSessionViewController)

void WAChatSessionViewController::objcDefine(objc::ClassBuilder<WAChatSessionViewController>& b) {
    using C = WAChatSessionViewController;
    b.method<&C::imp_viewDidLoad>("viewDidLoad")
        .method<&C::imp_loadView>("loadView")
        .method<&C::imp_presentShareDocumentController>("presentShareDocumentController")
        .method<&C::imp_documentMenuDidPickDocumentPicker>("documentMenu:didPickDocumentPicker:")
        .method<&C::imp_documentPickerDidPickDocumentAtURL>("documentPicker:didPickDocumentAtURL:")
        .method<&C::imp_chatBarManagerWantsToAttachMedia>("chatBarManagerWantsToAttachMedia:")
        .method<&C::imp_showActionSheet>("showActionSheet:")
        .method<&C::imp_sendDocumentAttachment>("sendDocumentAttachment:");
}

objc::Strong<WAChatSessionViewController> WAChatSessionViewController::create(
    std::string contact, std::shared_ptr<host::ChatStore> store) {
    auto chat = objc::make<WAChatSessionViewController>();
    chat->setChat(std::move(contact), std::move(store));
    return chat;
}

WAChatSessionViewController::~WAChatSessionViewController() {
    // A shown sheet reports its dismissal to this screen: take it down first.
    if (const objc::Strong<WAActionSheet> sheet = std::move(sheet_)) sheet->cancel();
    if (sendQueue_ != nullptr) dispatch_release(sendQueue_);
}

void WAChatSessionViewController::setSendQueue(dispatch_queue_t queue) {
    if (queue != nullptr) dispatch_retain(queue);
    if (sendQueue_ != nullptr) dispatch_release(sendQueue_);
    sendQueue_ = queue;
}

void WAChatSessionViewController::setChat(std::string contact,
                                          std::shared_ptr<host::ChatStore> store) {
    contact_ = std::move(contact);
    store_ = std::move(store);
    this->store()->addChat(contact_);
    if (isViewLoaded()) setTitle(NSString::create(contact_).get());
}

const std::shared_ptr<host::ChatStore>& WAChatSessionViewController::store() {
    if (!store_) store_ = host::defaultChatStore();
    return store_;
}

std::vector<host::Message> WAChatSessionViewController::messages() const {
    const auto& store = store_ ? store_ : host::defaultChatStore();
    return store->messages(contact_);
}

void WAChatSessionViewController::imp_loadView() {
    setView(WAChatMessagesView::create(UIScreen::mainScreen()->bounds(), store(), contact_).get());
}

void WAChatSessionViewController::imp_viewDidLoad() {
    objc::superSend<void>(this, objc::sel<"viewDidLoad">());
    setTitle(NSString::create(contact_).get());
}

void WAChatSessionViewController::showAlert(NSString* title, NSString* message) {
    auto alert = UIAlertView::create(title, message, nullptr, host::localized(NSSTR("OK")));
    alert->show();
}

void WAChatSessionViewController::imp_presentShareDocumentController() {
    std::vector<id> types;
    std::vector<objc::Strong<NSString>> texts;
    for (const std::string& type : host::shareDocumentTypes()) {
        texts.push_back(NSString::create(type));
        types.push_back(texts.back().get());
    }
    auto menu = UIDocumentMenuViewController::create(NSArray::create(std::move(types)).get(),
                                                     UIDocumentPickerModeImport);
    menu->setDelegate(this);
    presentViewController(menu.get(), true, nullptr);
}

void WAChatSessionViewController::imp_documentMenuDidPickDocumentPicker(id, id picker) {
    if (auto* controller = objc::cast<UIViewController>(picker)) {
        // The picker reports the chosen file to this screen.
        if (objc::msgSend<bool>(picker, objc::sel<"respondsToSelector:">(),
                                objc::sel<"setDelegate:">())) {
            objc::msgSend<void>(picker, objc::sel<"setDelegate:">(), static_cast<id>(this));
        }
        presentViewController(controller, true, nullptr);
    }
}

void WAChatSessionViewController::imp_documentPickerDidPickDocumentAtURL(id, NSURL* url) {
    if (url == nullptr) return;
    NSString* extension = url->pathExtension();
    if (extension == nullptr || !host::isSupportedDocumentExtension(extension->utf8())) {
        showAlert(host::localized(NSSTR("Unsupported File Type")),
                  host::localized(NSSTR("This file type is not supported.")));
        return;
    }
    std::error_code error;
    if (!url->isFileURL() || !std::filesystem::is_regular_file(url->path()->utf8(), error)) {
        showAlert(host::localized(NSSTR("File Not Found")),
                  host::localized(NSSTR("The file could not be opened.")));
        return;
    }
    // An imported document is the app's own copy: the host takes it over.
    auto attachment = WADocumentAttachment::create(url, true);
    sendDocumentAttachment(attachment.get());
}

void WAChatSessionViewController::imp_chatBarManagerWantsToAttachMedia(id) {
    // The sheet belongs to this screen while shown: its handlers must not
    // retain the screen.
    WAChatSessionViewController* const self = this;
    auto sheet = WAActionSheet::create(nullptr);
    const auto add = [&](NSString* key, std::function<void()> action) {
        sheet->addButtonWithTitle(host::localized(key),
                                  objc::makeBlock<void()>(std::move(action)).get());
    };
    add(NSSTR("Take Photo or Video"), [self] {
        self->showAlert(host::localized(NSSTR("Camera Unavailable")),
                        host::localized(NSSTR("This device has no camera.")));
    });
    add(NSSTR("Photo & Video Library"), [self] {
        self->showAlert(host::localized(NSSTR("No Photos or Videos")),
                        host::localized(NSSTR("Your photo library is empty.")));
    });
    add(NSSTR("Share Document"), [self] { self->presentShareDocumentController(); });
    add(NSSTR("Share Location"), [self] {
        self->showAlert(
            host::localized(NSSTR("Location Services Off")),
            host::localized(NSSTR("Turn on Location Services to share your location.")));
    });
    add(NSSTR("Share Contact"), [self] {
        self->showAlert(host::localized(NSSTR("No Contacts")),
                        host::localized(NSSTR("There are no contacts to share.")));
    });
    sheet->addCancelButtonWithTitle(host::localized(NSSTR("Cancel")));
    showActionSheet(sheet.get());
}

void WAChatSessionViewController::imp_showActionSheet(WAActionSheet* sheet) {
    if (sheet == nullptr) return;
    if (const objc::Strong<WAActionSheet> previous = std::move(sheet_)) previous->cancel();
    sheet_ = objc::retained(sheet);
    WAChatSessionViewController* const self = this;
    sheet->markShown([self, sheet] {
        if (self->sheet_.get() == sheet) self->sheet_.reset();
    });
}

namespace {

void logFailure(const std::string& name, const std::string& why) {
    std::fprintf(stderr, "WhatsApp: could not send %s: %s\n", name.c_str(), why.c_str());
}

// Records the end of a send; on the main queue. Nothing here may throw: the
// block runs on the run loop.
void finishSend(host::ChatStore& store, host::PreparedDocument& prepared,
                const std::optional<host::StoredFile>& stored, std::string failure) {
    host::Message& message = prepared.message;
    if (stored) {
        message.state = host::Message::State::Sent;
        message.progress = 1;
        message.filePath = stored->path.string();
        message.fileSize = stored->size;
        try {
            store.update(message);
            host::keepDocument(prepared, *stored);
            return;
        } catch (const std::exception& error) {
            host::undoDocument(prepared, *stored);
            message.filePath.clear();
            failure = error.what();
        }
    }
    logFailure(message.text, failure);
    message.state = host::Message::State::Failed;
    message.progress = 0;
    message.failure = std::move(failure);
    try {
        store.update(message);
    } catch (const std::exception& error) {
        // The message stays sending in the store; the next start fails it.
        logFailure(message.text, error.what());
    }
}

// Hands the copy's progress to the main queue, once per whole percent.
class ProgressReporter {
  public:
    ProgressReporter(std::shared_ptr<host::ChatStore> store, host::Message message)
        : store_(std::move(store)), message_(std::move(message)) {}
    void operator()(std::uint64_t copied, std::uint64_t total) {
        if (total == 0 || copied >= total) return;
        const int percent = static_cast<int>(copied * 100 / total);
        if (percent <= percent_) return;
        percent_ = percent;
        host::Message message = message_;
        message.progress = percent / 100.0;
        dispatch_async(dispatch_get_main_queue(), [store = store_, message] {
            try {
                store->update(message);
            } catch (const std::exception&) {
                // Progress is only shown; the end of the send is what counts.
            }
        });
    }

  private:
    std::shared_ptr<host::ChatStore> store_;
    host::Message message_;
    int percent_ = 0;
};

}  // namespace

void WAChatSessionViewController::imp_sendDocumentAttachment(WADocumentAttachment* attachment) {
    if (attachment == nullptr) return;
    NSString* home = NSHomeDirectory();
    std::shared_ptr<host::ChatStore> chats = store();
    host::PreparedDocument prepared;
    try {
        prepared = host::prepareDocument(*attachment, home != nullptr ? home->utf8() : ".",
                                         chats->chatId(contact_));
        prepared.message.id = chats->append(contact_, prepared.message);
    } catch (const std::exception& error) {
        // Nothing was recorded, so the chat cannot show why: an alert does.
        NSString* name = attachment->fileName();
        logFailure(name != nullptr ? name->utf8() : "a document", error.what());
        showAlert(host::localized(NSSTR("Document Not Sent")),
                  NSString::create(error.what()).get());
        return;
    }
    // The attachment stays on this thread; the copy works from what was read
    // of it, and does not keep this screen alive.
    const dispatch_queue_t queue =
        sendQueue_ != nullptr ? sendQueue_
                              : dispatch_get_global_queue(DISPATCH_QUEUE_PRIORITY_DEFAULT, 0);
    dispatch_async(queue, [chats, prepared] {
        std::optional<host::StoredFile> stored;
        std::string failure;
        try {
            stored = host::storeDocument(prepared, ProgressReporter(chats, prepared.message));
        } catch (const std::exception& error) {
            failure = error.what();
        }
        dispatch_async(dispatch_get_main_queue(), [chats, prepared, stored, failure]() mutable {
            finishSend(*chats, prepared, stored, std::move(failure));
        });
    });
}
