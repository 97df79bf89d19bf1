// How the platform's and the host's screens look as text.
#include "choices.h"
#include "screen_renderer.h"
#include "table_screens.h"

#include <Host/DebugViewController.h>
#include <Host/WAActionSheet.h>
#include <Host/WAChatListViewController.h>

#include <UIKit/UIKit.h>

namespace messenger {

namespace {

std::string utf8(NSString* text) {
    return text != nullptr ? text->utf8() : std::string();
}

std::string titleOf(UIViewController* controller) {
    const std::string title = utf8(controller->title());
    return title.empty() ? class_getName(object_getClass(controller)) : title;
}

std::vector<std::string> appended(std::vector<std::string> lines,
                                  const std::vector<Choice>& choices) {
    for (std::string& line : choiceLines(choices)) lines.push_back(std::move(line));
    return lines;
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
    if (const auto& store = list->chatStore()) {
        if (const std::string why = store->readOnlyReason(); !why.empty()) {
            text.lines.push_back("Chats cannot be saved: " + why);
        }
    }
}

void renderDebug(id object, ScreenText& text) {
    auto* debug = static_cast<DebugViewController*>(object);
    text.title = titleOf(debug);
    text.lines = debug->lines();
}

void renderAlert(id object, ScreenText& text) {
    auto* alert = static_cast<UIAlertView*>(object);
    text.title = "Alert: " + utf8(alert->title());
    const std::string message = utf8(alert->message());
    if (!message.empty()) text.lines.push_back(message);
    if (const auto choices = choicesOf(alert)) text.lines = appended(text.lines, *choices);
}

void renderActionSheet(id object, ScreenText& text) {
    auto* sheet = static_cast<WAActionSheet*>(object);
    const std::string title = utf8(sheet->title());
    text.title = title.empty() ? "Menu" : "Menu: " + title;
    if (const auto choices = choicesOf(sheet)) text.lines = appended(text.lines, *choices);
}

}  // namespace

ScreenRenderers standardRenderers() {
    ScreenRenderers renderers;
    renderers.add("UIViewController", &renderController);
    renderers.add("WAChatListViewController", &renderChatList);
    renderers.add("DebugViewController", &renderDebug);
    renderers.add("UIAlertView", &renderAlert);
    renderers.add("WAActionSheet", &renderActionSheet);
    addChatRenderers(renderers);
    addTableRenderers(renderers);
    return renderers;
}

}  // namespace messenger
