// The commands the user types, one per line: a table of names, each with
// its argument text, a summary and the code that runs it. Later commands
// are added to standardCommands() (or to a table of their own) without
// touching the loop that reads them.
#pragma once

#include "App.h"
#include "ScreenRenderer.h"

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

CommandTable standardCommands();

// The text of what is in front (screen, alert, menu or popover).
std::string renderFront(App& app, const ScreenRenderers& renderers);

}  // namespace messenger
