// How the platform's and the host's screens look as text.
#include "ScreenRenderer.h"

#include <Host/DebugViewController.h>
#include <Host/WAActionSheet.h>
#include <Host/WAChatListViewController.h>
#include <Host/WAChatSessionViewController.h>
#include <Host/WAStaticTableViewController.h>

#include <UIKit/UIKit.h>

#include <cstdio>

namespace messenger {

namespace {

std::string utf8(NSString* text) {
    return text != nullptr ? text->utf8() : std::string();
}

std::string titleOf(UIViewController* controller) {
    const std::string title = utf8(controller->title());
    return title.empty() ? class_getName(object_getClass(controller)) : title;
}

std::string byteCount(std::uint64_t bytes) {
    char text[32];
    if (bytes < 1024) {
        std::snprintf(text, sizeof text, "%llu bytes", static_cast<unsigned long long>(bytes));
    } else if (bytes < 1024 * 1024) {
        std::snprintf(text, sizeof text, "%.1f KB", static_cast<double>(bytes) / 1024);
    } else {
        std::snprintf(text, sizeof text, "%.1f MB", static_cast<double>(bytes) / (1024 * 1024));
    }
    return text;
}

// A row's text: the host's own title, else what its cell's label shows.
std::string rowText(WATableRow* row) {
    std::string text = utf8(row->title());
    if (text.empty()) {
        const id cell = row->cell();
        if (cell != nullptr && objc::msgSend<bool>(cell, objc::sel<"respondsToSelector:">(),
                                                   objc::sel<"textLabel">())) {
            const id label = objc::msgSend<id>(cell, objc::sel<"textLabel">());
            if (label != nullptr && objc::msgSend<bool>(label, objc::sel<"respondsToSelector:">(),
                                                        objc::sel<"text">())) {
                text = utf8(objc::msgSend<NSString*>(label, objc::sel<"text">()));
            }
        }
    }
    const std::string detail = utf8(row->detailText());
    if (!detail.empty()) text += " — " + detail;
    return text.empty() ? "(row)" : text;
}

void renderController(id object, ScreenText& text) {
    text.title = titleOf(static_cast<UIViewController*>(object));
}

void renderChatList(id object, ScreenText& text) {
    auto* list = static_cast<WAChatListViewController*>(object);
    text.title = titleOf(list);
    int n = 0;
    for (const std::string& name : list->chatNames()) {
        text.lines.push_back(std::to_string(++n) + ". " + name);
    }
    if (n == 0) text.lines.push_back("(no chats)");
}

void renderChat(id object, ScreenText& text) {
    auto* chat = static_cast<WAChatSessionViewController*>(object);
    text.title = chat->contactName();
    for (const host::Message& m : chat->messages()) {
        const std::string who = m.outgoing ? "You" : chat->contactName();
        if (m.kind == host::Message::Kind::Document) {
            text.lines.push_back(who + ": [document] " + m.text + " (" + byteCount(m.fileSize) +
                                 ")");
        } else {
            text.lines.push_back(who + ": " + m.text);
        }
    }
    if (text.lines.empty()) text.lines.push_back("(no messages)");
}

void renderStaticTable(id object, ScreenText& text) {
    auto* table = static_cast<WAStaticTableViewController*>(object);
    text.title = titleOf(table);
    const auto selected = table->selectedRow();
    std::size_t s = 0;
    for (WATableSection* section : table->sectionList()) {
        ++s;
        const std::string header = utf8(section->headerText());
        text.lines.push_back("[" + (header.empty() ? "section " + std::to_string(s) : header) +
                             "]");
        std::size_t r = 0;
        for (const auto& row : section->rowList()) {
            ++r;
            const bool on = selected && selected->first == s - 1 && selected->second == r - 1;
            text.lines.push_back((on ? "> " : "  ") + std::to_string(s) + "." + std::to_string(r) +
                                 " " + rowText(row.get()));
        }
        const std::string footer = utf8(section->footerText());
        if (!footer.empty()) text.lines.push_back("  (" + footer + ")");
    }
}

void renderDebug(id object, ScreenText& text) {
    auto* debug = static_cast<DebugViewController*>(object);
    text.title = titleOf(debug);
    text.lines = debug->lines();
}

void renderDocumentMenu(id object, ScreenText& text) {
    auto* menu = static_cast<UIDocumentMenuViewController*>(object);
    text.title = "Document Menu";
    static const char* const kModes[] = {"import", "open", "export to service", "move to service"};
    const std::string mode = menu->mode() < 4 ? kModes[menu->mode()] : "unknown";
    std::string types;
    for (const std::string& type : menu->typeList()) types += (types.empty() ? "" : ", ") + type;
    text.lines.push_back("Types: " + (types.empty() ? std::string("(none)") : types));
    text.lines.push_back("Mode: " + mode);
    std::size_t n = 0;
    for (const auto* option : menu->orderedOptions()) {
        text.lines.push_back(std::to_string(++n) + ". " + option->title);
    }
}

void renderAlert(id object, ScreenText& text) {
    auto* alert = static_cast<UIAlertView*>(object);
    text.title = "Alert: " + utf8(alert->title());
    const std::string message = utf8(alert->message());
    if (!message.empty()) text.lines.push_back(message);
    const auto titles = alert->buttonTitles();
    for (std::size_t i = 0; i < titles.size(); ++i) {
        text.lines.push_back("[" + std::to_string(i) + "] " + titles[i]);
    }
}

void renderActionSheet(id object, ScreenText& text) {
    auto* sheet = static_cast<WAActionSheet*>(object);
    const std::string title = utf8(sheet->title());
    text.title = title.empty() ? "Menu" : "Menu: " + title;
    const auto entries = sheet->entryTitles();
    for (std::size_t i = 0; i < entries.size(); ++i) {
        text.lines.push_back(std::to_string(i + 1) + ". " + entries[i]);
    }
    if (sheet->hasCancelButton()) text.lines.push_back("   " + sheet->cancelTitle());
}

}  // namespace

ScreenRenderers standardRenderers() {
    ScreenRenderers renderers;
    renderers.add("UIViewController", &renderController);
    renderers.add("WAChatListViewController", &renderChatList);
    renderers.add("WAChatSessionViewController", &renderChat);
    renderers.add("WAStaticTableViewController", &renderStaticTable);
    renderers.add("DebugViewController", &renderDebug);
    renderers.add("UIDocumentMenuViewController", &renderDocumentMenu);
    renderers.add("UIAlertView", &renderAlert);
    renderers.add("WAActionSheet", &renderActionSheet);
    return renderers;
}

}  // namespace messenger
