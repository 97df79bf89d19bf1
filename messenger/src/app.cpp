#include "app.h"

#include <Foundation/NSRunLoop.h>

#include <TolbrennDevTools/ParcelvaneFileBrowserViewController.h>

#include <algorithm>
#include <cctype>

namespace messenger {

namespace {

std::string lower(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return text;
}

// A first run finds a few conversations, as a restored phone would.
void seedChats(host::ChatStore& store) {
    if (!store.chatNames().empty() || !store.readOnlyReason().empty()) return;
    store.append("Alice", host::Message::incomingText("Hi! Did you get the report?"));
    store.append("Alice", host::Message::outgoingText("Not yet, can you send it again?"));
    store.append("Bob", host::Message::incomingText("Lunch tomorrow?"));
    store.append("Family", host::Message::incomingText("Photos from the weekend are coming."));
}

}  // namespace

App::App() : store_(host::defaultChatStore()) {
    seedChats(*store_);
    chats_ = WAChatListViewController::create(store_);
    navigation_ = UINavigationController::create(chats_.get());
    window_ = UIWindow::create();
    window_->setRootViewController(navigation_.get());
    window_->makeKeyAndVisible();
    foundation::runMainLoopUntilIdle(false);
}

App::~App() {
    for (UIAlertView* alert : UIAlertView::visibleAlerts()) {
        alert->dismissWithClickedButtonIndex(alert->cancelButtonIndex(), false);
    }
    for (UIPopoverController* popover : UIPopoverController::visiblePopovers()) {
        popover->dismissPopoverAnimated(false);
    }
    showChats();
    window_->setRootViewController(nullptr);
    foundation::runMainLoopUntilIdle(false);
}

UIViewController* App::topController() {
    UIViewController* top = navigation_->visibleViewController();
    // A presented navigation controller (the file browser's) shows its own top.
    while (auto* nested = objc::cast<UINavigationController>(top)) {
        UIViewController* inner = nested->visibleViewController();
        if (nested == navigation_.get() || inner == nullptr || inner == top) break;
        top = inner;
    }
    return top;
}

WAChatSessionViewController* App::openChatScreen() {
    return objc::cast<WAChatSessionViewController>(navigation_->topViewController());
}

App::Front App::front() {
    if (UIAlertView* alert = UIAlertView::topVisibleAlert()) {
        return {Front::Kind::Alert, alert};
    }
    if (auto* chat = objc::cast<WAChatSessionViewController>(topController())) {
        if (WAActionSheet* sheet = chat->visibleActionSheet()) {
            return {Front::Kind::ActionSheet, sheet};
        }
    }
    if (UIPopoverController* popover = UIPopoverController::topVisiblePopover()) {
        return {Front::Kind::Popover, popover};
    }
    return {Front::Kind::Screen, topController()};
}

id App::frontContent() {
    const Front shown = front();
    if (shown.kind == Front::Kind::Popover) {
        return static_cast<UIPopoverController*>(shown.object)->contentViewController();
    }
    return shown.object;
}

void App::dismissPresented() {
    for (const auto& controller : std::vector(navigation_->childList())) {
        if (auto* chat = objc::cast<WAChatSessionViewController>(controller.get())) {
            if (WAActionSheet* sheet = chat->visibleActionSheet()) sheet->cancel();
        }
        if (controller->presentedController() != nullptr) {
            controller->dismissViewControllerAnimated(false, nullptr);
        }
    }
    if (navigation_->presentedController() != nullptr) {
        navigation_->dismissViewControllerAnimated(false, nullptr);
    }
    for (UIPopoverController* popover : UIPopoverController::visiblePopovers()) {
        popover->dismissPopoverAnimated(false);
    }
}

void App::showChats() {
    dismissPresented();
    navigation_->popToRootViewControllerAnimated(false);
    foundation::runMainLoopUntilIdle(false);
}

WAChatSessionViewController* App::openChat(const std::string& name) {
    std::string match;
    for (const std::string& chat : store_->chatNames()) {
        if (lower(chat) == lower(name)) match = chat;
    }
    if (match.empty()) return nullptr;
    showChats();
    WAChatSessionViewController* chat = chats_->openChat(match);
    foundation::runMainLoopUntilIdle(false);
    return chat;
}

WASettingsViewController* App::openSettings() {
    showChats();
    auto settings = WASettingsViewController::create();
    navigation_->pushViewController(settings.get(), true);
    foundation::runMainLoopUntilIdle(false);
    return settings.get();
}

std::string App::back() {
    const Front shown = front();
    std::string what;
    switch (shown.kind) {
        case Front::Kind::Alert: {
            auto* alert = static_cast<UIAlertView*>(shown.object);
            const NSInteger cancel = alert->cancelButtonIndex();
            alert->tapButton(cancel >= 0 ? cancel : 0);
            what = "Closed the alert.";
            break;
        }
        case Front::Kind::ActionSheet:
            static_cast<WAActionSheet*>(shown.object)->cancel();
            what = "Closed the menu.";
            break;
        case Front::Kind::Popover:
            static_cast<UIPopoverController*>(shown.object)->dismissByUser();
            what = "Closed the popover.";
            break;
        case Front::Kind::Screen: {
            auto* top = static_cast<UIViewController*>(shown.object);
            if (auto* browser = objc::cast<ParcelvaneFileBrowserViewController>(top)) {
                // Up a folder; at the top the browser is given up, through its
                // cancel block as the user's cancel button would.
                if (browser->goUp()) {
                    what = "Went up to " + browser->currentPath() + ".";
                } else {
                    browser->cancel();
                    what = "Closed the file browser.";
                }
            } else if (top != nullptr && top->presentingViewController() != nullptr) {
                if (auto* menu = objc::cast<UIDocumentMenuViewController>(top)) {
                    menu->cancel();
                } else if (auto* picker = objc::cast<UIDocumentPickerViewController>(top)) {
                    picker->cancel();
                } else {
                    top->dismissViewControllerAnimated(true, nullptr);
                }
                what = "Closed the screen.";
            } else if (navigation_->popViewControllerAnimated(true) != nullptr) {
                what = "Went back.";
            } else {
                what = "Already at the first screen.";
            }
            break;
        }
    }
    foundation::runMainLoopUntilIdle(false);
    return what;
}

}  // namespace messenger
