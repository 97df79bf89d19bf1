// The chat's flows at the terminal: the attach menu, the share-document
// action, and the choosing, browsing and cancelling in whatever they put in
// front (an action sheet, the document menu, a document picker, the file
// browser, an alert).
#include "choices.h"
#include "commands.h"

#include <TolbrennDevTools/ParcelvaneFileBrowserViewController.h>

#include <UIKit/UIKit.h>

#include <objc/object.h>

namespace messenger {

namespace {

// The chat's own buttons can be tapped only while the chat is in front.
WAChatSessionViewController* requireChat(CommandContext& c) {
    WAChatSessionViewController* chat = c.app.openChatScreen();
    if (chat == nullptr) {
        c.fail("Open a chat first (chat NAME).");
    } else if (c.app.frontContent() != static_cast<id>(chat)) {
        c.fail("The chat is covered: choose or cancel what is in front first.");
        chat = nullptr;
    }
    return chat;
}

void attach(CommandContext& c, const std::string&) {
    // The chat bar's attach button; the host ignores which bar sent it.
    if (WAChatSessionViewController* chat = requireChat(c)) {
        chat->chatBarManagerWantsToAttachMedia(nullptr);
    }
}

void share(CommandContext& c, const std::string&) {
    if (WAChatSessionViewController* chat = requireChat(c)) chat->presentShareDocumentController();
}

void choose(CommandContext& c, const std::string& argument) {
    if (argument.empty()) {
        c.fail("usage: choose N or choose \"TITLE\"");
        return;
    }
    const auto choices = choicesOf(c.app.frontContent());
    if (!choices) {
        c.fail("Nothing to choose from here.");
        return;
    }
    const Choice* choice = findChoice(*choices, argument);
    if (choice == nullptr) {
        c.fail("No choice " + argument + " here.");
        return;
    }
    if (const std::string error = choice->choose(); !error.empty()) c.fail(error);
}

void up(CommandContext& c, const std::string&) {
    const id front = c.app.frontContent();
    if (auto* browser = objc::cast<ParcelvaneFileBrowserViewController>(front)) {
        if (!browser->goUp()) c.fail("Already at " + browser->currentPath() + ".");
    } else if (auto* picker = objc::cast<UIDocumentPickerViewController>(front)) {
        if (!picker->openParentFolder()) c.fail("Already at the provider's top folder.");
    } else {
        c.fail("No folder to go up from here.");
    }
}

void openFolder(CommandContext& c, const std::string& argument) {
    const std::string path = unquoted(argument);
    if (path.empty()) {
        c.fail("usage: open PATH");
        return;
    }
    auto* browser = objc::cast<ParcelvaneFileBrowserViewController>(c.app.frontContent());
    if (browser == nullptr) {
        c.fail("No file browser in front.");
        return;
    }
    objc::AutoreleasePool pool;
    if (!browser->openPath(NSString::create(path).get())) c.fail(browser->errorText());
}

void cancel(CommandContext& c, const std::string&) {
    const id front = c.app.frontContent();
    if (auto* alert = objc::cast<UIAlertView>(front)) {
        const NSInteger index = alert->cancelButtonIndex();
        if (index < 0 || !alert->tapButton(index)) c.fail("The alert has no cancel button.");
    } else if (auto* sheet = objc::cast<WAActionSheet>(front)) {
        sheet->cancel();
    } else if (auto* menu = objc::cast<UIDocumentMenuViewController>(front)) {
        menu->cancel();
    } else if (auto* picker = objc::cast<UIDocumentPickerViewController>(front)) {
        picker->cancel();
    } else if (auto* browser = objc::cast<ParcelvaneFileBrowserViewController>(front)) {
        browser->cancel();
    } else {
        c.fail("Nothing to cancel here.");
    }
}

}  // namespace

void addChatCommands(CommandTable& table) {
    table.add({"attach", "", "the open chat's attach button (its menu of attachments)", &attach});
    table.add({"share", "", "the open chat's share-document action", &share});
    table.add({"choose", "N|\"TITLE\"",
               "choose in what is in front: a menu entry, a document provider, a file (a "
               "folder opens), an alert button",
               &choose});
    table.add(
        {"up", "", "file browser or document picker: the folder enclosing the one shown", &up});
    table.add({"open", "PATH",
               "file browser: go to the folder at PATH (a relative one from the folder shown)",
               &openFolder});
    table.add({"cancel", "", "cancel what is in front (menu, picker, browser, alert)", &cancel});
}

}  // namespace messenger
