#include "choices.h"

#include "terminal_text.h"

#include <Host/WAActionSheet.h>

#include <TolbrennDevTools/ParcelvaneFileBrowserViewController.h>

#include <UIKit/UIKit.h>

#include <objc/object.h>

#include <algorithm>
#include <filesystem>
#include <system_error>

namespace messenger {

namespace {

std::vector<Choice> alertChoices(UIAlertView* alert) {
    std::vector<Choice> list;
    const auto titles = alert->buttonTitles();
    const objc::Strong<UIAlertView> keep = objc::retained(alert);
    for (std::size_t i = 0; i < titles.size(); ++i) {
        list.push_back({titles[i], titles[i], {}, true, [keep, i]() -> std::string {
                            if (keep->tapButton(static_cast<NSInteger>(i))) return {};
                            return "The alert is gone.";
                        }});
    }
    return list;
}

std::vector<Choice> sheetChoices(WAActionSheet* sheet) {
    std::vector<Choice> list;
    const objc::Strong<WAActionSheet> keep = objc::retained(sheet);
    const auto titles = sheet->entryTitles();
    for (std::size_t i = 0; i < titles.size(); ++i) {
        list.push_back({titles[i], titles[i], {}, true, [keep, i]() -> std::string {
                            if (keep->choose(i)) return {};
                            return "The menu is gone.";
                        }});
    }
    if (sheet->hasCancelButton()) {
        const std::string cancel = sheet->cancelTitle();
        list.push_back({cancel, cancel, {}, false, [keep]() -> std::string {
                            keep->cancel();
                            return {};
                        }});
    }
    return list;
}

// The menu's own options marked "first", the device's providers, then the
// options marked "last", as the platform's menu shows them.
std::vector<Choice> menuChoices(UIDocumentMenuViewController* menu) {
    std::vector<Choice> list;
    const objc::Strong<UIDocumentMenuViewController> keep = objc::retained(menu);
    const auto options = menu->orderedOptions();
    const auto addOptions = [&](UIDocumentMenuOrder order) {
        for (std::size_t i = 0; i < options.size(); ++i) {
            if (options[i]->order != order) continue;
            list.push_back(
                {options[i]->title, options[i]->title, {}, true, [keep, i]() -> std::string {
                     if (keep->chooseOption(i)) return {};
                     return "The option is gone.";
                 }});
        }
    };
    addOptions(UIDocumentMenuOrderFirst);
    const auto providers = menu->providers();
    for (std::size_t i = 0; i < providers.size(); ++i) {
        list.push_back(
            {providers[i].name, providers[i].name, "(provider)", true, [keep, i]() -> std::string {
                 if (keep->chooseProvider(i)) return {};
                 return "The provider is gone.";
             }});
    }
    addOptions(UIDocumentMenuOrderLast);
    return list;
}

std::vector<Choice> pickerChoices(UIDocumentPickerViewController* picker) {
    std::vector<Choice> list;
    const objc::Strong<UIDocumentPickerViewController> keep = objc::retained(picker);
    const auto entries = picker->entries();
    for (std::size_t i = 0; i < entries.size(); ++i) {
        const auto& entry = entries[i];
        if (entry.isFolder) {
            list.push_back({entry.name, entry.name + "/", {}, true, [keep, i]() -> std::string {
                                if (keep->openFolderAtIndex(i)) return {};
                                return "Cannot open that folder.";
                            }});
            continue;
        }
        std::error_code error;
        const auto size = std::filesystem::file_size(entry.path, error);
        std::string detail =
            "— " + (error ? std::string("size unknown") : std::to_string(size) + " bytes");
        detail += ", " + entry.type;
        list.push_back({entry.name, entry.name, detail, true, [keep, i]() -> std::string {
                            if (keep->pickFileAtIndex(i)) return {};
                            return "Cannot pick that file.";
                        }});
    }
    return list;
}

std::vector<Choice> browserChoices(ParcelvaneFileBrowserViewController* browser) {
    using Kind = ParcelvaneFileBrowserViewController::Entry::Kind;
    std::vector<Choice> list;
    const objc::Strong<ParcelvaneFileBrowserViewController> keep = objc::retained(browser);
    const auto entries = browser->entries();  // a copy: choosing reloads the list
    for (std::size_t i = 0; i < entries.size(); ++i) {
        const auto& entry = entries[i];
        Choice choice{entry.name, entry.name, {}, true, {}};
        const std::string link = entry.isSymbolicLink ? "link, " : "";
        switch (entry.kind) {
            case Kind::Folder:
                choice.label += "/";
                if (entry.isSymbolicLink) choice.detail = "(link)";
                choice.choose = [keep, i]() -> std::string {
                    if (keep->openEntryAtIndex(static_cast<NSUInteger>(i))) return {};
                    return keep->errorText();
                };
                break;
            case Kind::File:
            case Kind::BrokenLink:
                choice.detail =
                    entry.kind == Kind::File ? "— " + link + entry.sizeText : "(broken link)";
                choice.choose = [keep, i]() -> std::string {
                    if (keep->chooseEntryAtIndex(static_cast<NSUInteger>(i))) return {};
                    return keep->errorText();
                };
                break;
        }
        list.push_back(std::move(choice));
    }
    return list;
}

}  // namespace

std::optional<std::vector<Choice>> choicesOf(id object) {
    if (auto* alert = objc::cast<UIAlertView>(object)) return alertChoices(alert);
    if (auto* sheet = objc::cast<WAActionSheet>(object)) return sheetChoices(sheet);
    if (auto* menu = objc::cast<UIDocumentMenuViewController>(object)) return menuChoices(menu);
    if (auto* picker = objc::cast<UIDocumentPickerViewController>(object)) {
        return pickerChoices(picker);
    }
    if (auto* browser = objc::cast<ParcelvaneFileBrowserViewController>(object)) {
        return browserChoices(browser);
    }
    return std::nullopt;
}

std::vector<std::string> choiceLines(const std::vector<Choice>& choices) {
    std::vector<std::string> lines;
    std::size_t n = 0;
    for (const Choice& choice : choices) {
        std::string line = choice.numbered ? std::to_string(++n) + ". " : "   ";
        line += choice.label;
        if (!choice.detail.empty()) line += " " + choice.detail;
        lines.push_back(std::move(line));
    }
    return lines;
}

std::string unquoted(const std::string& text) {
    if (text.size() >= 2 && text.front() == '"' && text.back() == '"') {
        return text.substr(1, text.size() - 2);
    }
    return text;
}

const Choice* findChoice(const std::vector<Choice>& choices, const std::string& argument) {
    const bool number =
        !argument.empty() && argument.size() < 10 &&
        std::all_of(argument.begin(), argument.end(), [](char c) { return c >= '0' && c <= '9'; });
    if (number) {
        std::size_t wanted = std::stoul(argument);
        for (const Choice& choice : choices) {
            if (choice.numbered && --wanted == 0) return &choice;
        }
        return nullptr;
    }
    const std::string title = unquoted(argument);
    for (const Choice& choice : choices) {
        if (choice.title == title) return &choice;
    }
    for (const Choice& choice : choices) {
        if (choice.label == title) return &choice;
    }
    // A name with control characters, typed as the screen shows it.
    for (const Choice& choice : choices) {
        if (printable(choice.title) == title) return &choice;
    }
    return nullptr;
}

}  // namespace messenger
