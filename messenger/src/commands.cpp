#include "commands.h"

#include "defaults_value.h"
#include "screenshot.h"
#include "table_screens.h"

#include <Foundation/NSDate.h>
#include <Foundation/NSDictionary.h>
#include <Foundation/NSRunLoop.h>
#include <Foundation/NSUserDefaults.h>
#include <Foundation/dispatch.h>

#include <algorithm>
#include <chrono>
#include <memory>
#include <optional>
#include <utility>

namespace messenger {

void CommandTable::add(Command command) {
    const auto it = std::find_if(commands_.begin(), commands_.end(),
                                 [&](const Command& c) { return c.name == command.name; });
    if (it != commands_.end()) {
        *it = std::move(command);
    } else {
        commands_.push_back(std::move(command));
    }
}

const Command* CommandTable::find(const std::string& name) const {
    const auto it = std::find_if(commands_.begin(), commands_.end(),
                                 [&](const Command& c) { return c.name == name; });
    return it == commands_.end() ? nullptr : &*it;
}

std::string renderFront(App& app, const ScreenRenderers& renderers) {
    const App::Front front = app.front();
    id shown = front.object;
    std::string prefix;
    if (front.kind == App::Front::Kind::Popover) {
        shown = static_cast<UIPopoverController*>(front.object)->contentViewController();
        prefix = "Popover: ";
    }
    auto text = renderers.render(shown);
    if (!text) return "== (nothing on screen) ==\n";
    text->title = prefix + text->title;
    return formatScreen(*text);
}

std::string commandHelp(const CommandTable& table) {
    std::string text = "Commands:\n";
    for (const Command& c : table.commands()) {
        std::string usage = c.name + (c.arguments.empty() ? "" : " " + c.arguments);
        usage.resize(std::max<std::size_t>(usage.size() + 2, 18), ' ');
        text += "  " + usage + c.summary + "\n";
    }
    return text;
}

namespace {

void help(CommandContext& context, const CommandTable& table) {
    context.out << commandHelp(table);
    context.showScreen = false;
}

void listDefaults(CommandContext& context) {
    objc::AutoreleasePool pool;
    std::vector<std::pair<std::string, std::string>> entries;
    NSDictionary* all = NSUserDefaults::standardUserDefaults()->dictionaryRepresentation();
    if (all != nullptr) {
        all->forEach([&](id key, id value) {
            entries.emplace_back(describeDefaultsValue(key), describeDefaultsValue(value));
        });
    }
    std::sort(entries.begin(), entries.end());
    if (entries.empty()) context.out << "(no defaults)\n";
    for (const auto& [key, value] : entries) {
        context.out << printable(key) << " = " << printable(value) << "\n";
    }
    context.showScreen = false;
}

// How long `set` waits to learn whether its value reached the disk. The app
// runs meanwhile; a slower disk finishes in the background.
constexpr auto kSavePatience = std::chrono::seconds(2);

// Saves the defaults on a worker thread while the main loop keeps running;
// answers why they could not be saved, or nothing (saved, or still saving).
std::optional<std::string> waitForSave(NSUserDefaults* defaults) {
    struct Outcome {
        bool done = false;  // these are touched on the main thread only
        std::string problem;
    };
    const auto outcome = std::make_shared<Outcome>();
    dispatch_async(dispatch_get_global_queue(0, 0), [defaults, outcome] {
        std::string problem;
        if (!defaults->synchronize()) {
            problem = defaults->lastSaveError();
            if (problem.empty()) problem = "unknown error";
        }
        dispatch_async(dispatch_get_main_queue(), [outcome, problem = std::move(problem)] {
            outcome->problem = problem;
            outcome->done = true;
        });
    });
    const auto deadline = std::chrono::steady_clock::now() + kSavePatience;
    NSRunLoop* loop = NSRunLoop::mainRunLoop();
    for (auto now = std::chrono::steady_clock::now(); !outcome->done && now < deadline;
         now = std::chrono::steady_clock::now()) {
        const std::chrono::duration<double> left = deadline - now;
        objc::AutoreleasePool pool;
        loop->runModeBeforeDate(NSDefaultRunLoopMode,
                                NSDate::dateWithTimeIntervalSinceNow(left.count()));
    }
    if (!outcome->done || outcome->problem.empty()) return std::nullopt;
    return outcome->problem;
}

void setDefault(CommandContext& context, const std::string& argument) {
    const auto space = argument.find(' ');
    if (argument.empty() || space == std::string::npos) {
        context.fail("usage: set KEY VALUE");
        return;
    }
    objc::AutoreleasePool pool;
    const std::string key = argument.substr(0, space);
    const std::string text = argument.substr(argument.find_first_not_of(' ', space));
    const objc::Strong<objc_object> value = parseDefaultsValue(text);
    NSUserDefaults* defaults = NSUserDefaults::standardUserDefaults();
    defaults->setObjectForKey(value.get(), NSString::create(key).get());
    context.out << printable(key) << " = " << printable(describeDefaultsValue(value.get()));
    if (const auto problem = waitForSave(defaults)) {
        context.out << " (not saved: " << printable(*problem)
                    << "; it is saved as soon as that works)";
    }
    context.out << "\n";
}

}  // namespace

CommandTable standardCommands() {
    CommandTable table;
    table.add({"help", "", "list the commands",
               [](CommandContext& c, const std::string&) { help(c, c.commands); }});
    table.add(
        {"screen", "", "show the screen in front", [](CommandContext&, const std::string&) {}});
    table.add({"chats", "", "go to the chats list",
               [](CommandContext& c, const std::string&) { c.app.showChats(); }});
    table.add(
        {"chat", "NAME", "open the chat with NAME", [](CommandContext& c, const std::string& name) {
             if (name.empty() || c.app.openChat(name) == nullptr) {
                 std::string why = "No chat named '" + name + "'. Chats:";
                 for (const std::string& n : c.app.store().chatNames()) why += " " + n;
                 c.fail(why);
             }
         }});
    table.add({"settings", "", "open the Settings screen",
               [](CommandContext& c, const std::string&) { c.app.openSettings(); }});
    table.add(
        {"back", "", "close what is in front, or go back one screen",
         [](CommandContext& c, const std::string&) { c.out << printable(c.app.back()) << "\n"; }});
    table.add({"defaults", "", "list the user defaults",
               [](CommandContext& c, const std::string&) { listDefaults(c); }});
    table.add({"set", "KEY VALUE",
               "write a user default (true/false, an integer, a real or text; \"...\" for "
               "text as is)",
               [](CommandContext& c, const std::string& argument) { setDefault(c, argument); }});
    table.add({"screenshot", "FILE.png",
               "write a picture of the screen in front (device size and scale)",
               [](CommandContext& c, const std::string& path) {
                   if (path.empty()) return c.fail("screenshot needs a file name.");
                   if (const std::string why = writeScreenshot(c.app, path); !why.empty()) {
                       return c.fail(why);
                   }
                   c.out << "Wrote " << printable(path) << "\n";
                   c.showScreen = false;
               }});
    addChatCommands(table);
    addTableCommands(table);
    addScriptCommands(table);
    table.add({"quit", "", "leave the app", [](CommandContext& c, const std::string&) {
                   c.quit = true;
                   c.showScreen = false;
               }});
    return table;
}

}  // namespace messenger
