// The commands the user types, one per line: a table of names, each with
// its argument text, a summary and the code that runs it. Later commands
// are added to standardCommands() (or to a table of their own) without
// touching the loop that reads them.
#pragma once

#include "app.h"
#include "screen_renderer.h"
#include "terminal_text.h"

#include <functional>
#include <ostream>
#include <string>
#include <vector>

namespace messenger {

class CommandTable;

struct CommandContext {
    App& app;
    const CommandTable& commands;
    const ScreenRenderers& renderers;
    std::ostream& out;
    bool quit = false;
    bool showScreen = true;  // print the screen after the command
    // Set by fail(): the command could not do what it was asked. A session
    // at the terminal goes on; a script stops there.
    std::string failure;

    // Says why on the output and marks the command failed (no screen
    // follows). The text may quote what the user typed: it is escaped.
    void fail(const std::string& why) {
        failure = printable(why);
        out << failure << "\n";
        showScreen = false;
    }
};

struct Command {
    std::string name;
    std::string arguments;  // "NAME", "KEY VALUE", or empty
    std::string summary;
    // `argument` is the rest of the line after the name, trimmed.
    std::function<void(CommandContext& context, const std::string& argument)> run;
};

class CommandTable {
  public:
    // Replaces a command of the same name.
    void add(Command command);
    const Command* find(const std::string& name) const;
    const std::vector<Command>& commands() const noexcept { return commands_; }

  private:
    std::vector<Command> commands_;
};

// Every command: the basic ones, the chat's and the scripts' checks.
CommandTable standardCommands();
// The chat flows: attach, share, choose, up, open, cancel.
void addChatCommands(CommandTable& table);
// The checks a script makes: expect, expect-not, wait.
void addScriptCommands(CommandTable& table);

// "Commands:" and one line per command: its usage and summary.
std::string commandHelp(const CommandTable& table);

// The text of what is in front (screen, alert, menu or popover).
std::string renderFront(App& app, const ScreenRenderers& renderers);

}  // namespace messenger
