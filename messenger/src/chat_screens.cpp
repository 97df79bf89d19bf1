// How the chat and what it presents look as text: the messages, the document
// menu, the document picker and the file browser, each with how it is shown
// (a popover's anchor or a modal presentation's style).
#include "choices.h"
#include "screen_renderer.h"

#include <Host/WAChatSessionViewController.h>

#include <TolbrennDevTools/ParcelvaneFileBrowserViewController.h>

#include <UIKit/UIKit.h>

#include <objc/runtime.h>

#include <cstdio>

namespace messenger {

namespace {

std::string number(CGFloat value) {
    char text[32];
    std::snprintf(text, sizeof text, "%g", static_cast<double>(value));
    return text;
}

std::string arrowNames(UIPopoverArrowDirection arrows) {
    if (arrows == UIPopoverArrowDirectionAny) return "any";
    if (arrows == UIPopoverArrowDirectionUnknown) return "unknown";
    std::string names;
    const std::pair<UIPopoverArrowDirection, const char*> each[] = {
        {UIPopoverArrowDirectionUp, "up"},
        {UIPopoverArrowDirectionDown, "down"},
        {UIPopoverArrowDirectionLeft, "left"},
        {UIPopoverArrowDirectionRight, "right"}};
    for (const auto& [bit, name] : each) {
        if ((arrows & bit) != 0) names += (names.empty() ? "" : ",") + std::string(name);
    }
    return names.empty() ? "none" : names;
}

std::string styleName(UIModalPresentationStyle style) {
    switch (style) {
        case UIModalPresentationFullScreen:
            return "full screen";
        case UIModalPresentationPageSheet:
            return "page sheet";
        case UIModalPresentationFormSheet:
            return "form sheet";
        case UIModalPresentationCurrentContext:
            return "current context";
        case UIModalPresentationCustom:
            return "custom";
        case UIModalPresentationOverFullScreen:
            return "over full screen";
        case UIModalPresentationOverCurrentContext:
            return "over current context";
        case UIModalPresentationPopover:
            return "popover";
        case UIModalPresentationNone:
            return "none";
        default:
            return "unknown";
    }
}

// "Presented: popover from {x, y, w, h} in UIView arrows any", or
// "Presented: modal, form sheet (style 2)"; nothing for a screen that is
// neither (pushed, or the root).
std::string presentation(UIViewController* controller) {
    UIViewController* outer = controller;
    while (UIViewController* parent = outer->parentViewController()) outer = parent;
    for (UIPopoverController* popover : UIPopoverController::visiblePopovers()) {
        UIViewController* content = popover->contentViewController();
        if (content != controller && content != outer) continue;
        const CGRect r = popover->presentedRect();
        UIView* view = popover->presentedInView();
        return "Presented: popover from {" + number(r.origin.x) + ", " + number(r.origin.y) + ", " +
               number(r.size.width) + ", " + number(r.size.height) + "} in " +
               (view != nullptr ? object_getClassName(view) : "nil") + " arrows " +
               arrowNames(popover->permittedArrowDirections());
    }
    if (outer->presentingViewController() == nullptr) return {};
    const UIModalPresentationStyle style = outer->modalPresentationStyle();
    return "Presented: modal, " + styleName(style) + " (style " + std::to_string(style) + ")";
}

void addPresentation(UIViewController* controller, ScreenText& text) {
    if (std::string line = presentation(controller); !line.empty()) {
        text.lines.push_back(std::move(line));
    }
}

void addChoices(id object, ScreenText& text, const char* whenEmpty) {
    const auto choices = choicesOf(object);
    if (!choices || choices->empty()) {
        text.lines.push_back(whenEmpty);
        return;
    }
    for (std::string& line : choiceLines(*choices)) text.lines.push_back(std::move(line));
}

std::string typeList(const std::vector<std::string>& types) {
    std::string list;
    for (const std::string& type : types) list += (list.empty() ? "" : ", ") + type;
    return list.empty() ? "(none)" : list;
}

std::string modeName(UIDocumentPickerMode mode) {
    static const char* const kModes[] = {"import", "open", "export to service", "move to service"};
    return mode < 4 ? kModes[mode] : "unknown";
}

void renderChat(id object, ScreenText& text) {
    auto* chat = static_cast<WAChatSessionViewController*>(object);
    text.title = chat->contactName();
    for (const host::Message& m : chat->messages()) {
        const std::string who = m.outgoing ? "You" : chat->contactName();
        if (m.kind != host::Message::Kind::Document) {
            text.lines.push_back(who + ": " + m.text);
            continue;
        }
        const std::string line = who + ": [document] " + m.text;
        switch (m.state) {
            case host::Message::State::Sending:
                text.lines.push_back(line + " … sending " +
                                     std::to_string(static_cast<int>(m.progress * 100)) + "%");
                break;
            case host::Message::State::Failed:
                text.lines.push_back(line + " … not sent: " + m.failure);
                break;
            case host::Message::State::Sent:
                text.lines.push_back(line + " (" + std::to_string(m.fileSize) + " bytes, " +
                                     m.uniformType + ", " + m.mimeType.value_or("no MIME type") +
                                     ")");
                break;
        }
    }
    if (text.lines.empty()) text.lines.push_back("(no messages)");
}

void renderDocumentMenu(id object, ScreenText& text) {
    auto* menu = static_cast<UIDocumentMenuViewController*>(object);
    text.title = "Document Menu";
    text.lines.push_back("Types: " + typeList(menu->typeList()));
    text.lines.push_back("Mode: " + modeName(menu->mode()));
    addPresentation(menu, text);
    addChoices(menu, text, "(no options)");
}

void renderDocumentPicker(id object, ScreenText& text) {
    auto* picker = static_cast<UIDocumentPickerViewController*>(object);
    text.title = "Document Picker: " + picker->provider().name;
    text.lines.push_back("Folder: " + picker->currentFolder());
    text.lines.push_back("Types: " + typeList(picker->typeList()));
    text.lines.push_back("Mode: " + modeName(picker->mode()));
    addPresentation(picker, text);
    addChoices(picker, text, "(no documents)");
}

void renderFileBrowser(id object, ScreenText& text) {
    auto* browser = static_cast<ParcelvaneFileBrowserViewController*>(object);
    text.title = "File Browser";
    const auto& entries = browser->entries();  // reads the folder on first use
    text.lines.push_back("Path: " + browser->currentPath());
    if (!browser->errorText().empty()) text.lines.push_back("Error: " + browser->errorText());
    addPresentation(browser, text);
    if (entries.empty()) {
        text.lines.push_back("(empty folder)");
    } else {
        addChoices(browser, text, "(empty folder)");
    }
}

}  // namespace

void addChatRenderers(ScreenRenderers& renderers) {
    renderers.add("WAChatSessionViewController", &renderChat);
    renderers.add("UIDocumentMenuViewController", &renderDocumentMenu);
    renderers.add("UIDocumentPickerViewController", &renderDocumentPicker);
    renderers.add("ParcelvaneFileBrowserViewController", &renderFileBrowser);
}

}  // namespace messenger
