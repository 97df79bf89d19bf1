#include "command_loop.h"

#include "terminal_text.h"

#include <Foundation/NSRunLoop.h>

#include <objc/exception.h>

#include <fstream>
#include <string>

namespace messenger {

namespace {

std::string trim(const std::string& text) {
    const auto first = text.find_first_not_of(" \t\r");
    if (first == std::string::npos) return {};
    const auto last = text.find_last_not_of(" \t\r");
    return text.substr(first, last - first + 1);
}

struct Outcome {
    bool skipped = false;  // blank or a comment
    bool quit = false;
    bool showScreen = false;
    std::string failure;  // empty: it went well
};

// Runs one line; the main loop is drained before it returns.
Outcome execute(App& app, const CommandTable& commands, const ScreenRenderers& renderers,
                const std::string& text, std::ostream& out, bool echo) {
    const std::string line = trim(text);
    Outcome outcome;
    if (line.empty() || line.front() == '#') {
        outcome.skipped = true;
        return outcome;
    }
    if (echo) out << "> " << printable(line) << "\n";
    const auto space = line.find(' ');
    const std::string name = line.substr(0, space);
    const std::string argument = space == std::string::npos ? "" : trim(line.substr(space));

    const Command* command = commands.find(name);
    if (command == nullptr) {
        const std::string why = "Unknown command '" + name + "' (type 'help' for the list).";
        outcome.failure = printable(why);
        out << outcome.failure << "\n" << std::flush;
        return outcome;
    }
    CommandContext context{app, commands, renderers, out, false, true, {}};
    try {
        objc::AutoreleasePool pool;
        command->run(context, argument);
        // What is ready on the main queue runs now; background work (a
        // download) is not waited for: its result shows in a later screen.
        foundation::runMainLoopUntilIdle(false);
    } catch (const objc::Exception& e) {
        // On the device this would end the app; here the user may go on.
        context.fail("*** " + e.name() + ": " + e.reason());
    }
    outcome.quit = context.quit;
    outcome.showScreen = context.showScreen;
    outcome.failure = context.failure;
    return outcome;
}

}  // namespace

int runCommandLoop(App& app, const CommandTable& commands, const ScreenRenderers& renderers,
                   std::istream& in, std::ostream& out, bool prompt) {
    out << renderFront(app, renderers) << std::flush;
    std::string line;
    while (true) {
        if (prompt) out << "> " << std::flush;
        if (!std::getline(in, line)) break;
        // Typed at a terminal, the command is already on the screen; read
        // from a pipe, it is echoed as a script's is.
        const Outcome outcome = execute(app, commands, renderers, line, out, !prompt);
        if (outcome.quit) break;
        if (outcome.showScreen) out << renderFront(app, renderers);
        out << std::flush;
    }
    return 0;
}

bool readScript(const std::string& path, std::vector<std::string>& lines, std::string& error) {
    std::ifstream in(path);
    if (!in) {
        error = "cannot read the script " + path;
        return false;
    }
    for (std::string line; std::getline(in, line);) lines.push_back(line);
    if (in.bad()) {
        error = "cannot read the script " + path;
        return false;
    }
    return true;
}

int runScript(App& app, const CommandTable& commands, const ScreenRenderers& renderers,
              const std::string& name, const std::vector<std::string>& lines, std::ostream& out,
              std::ostream& err, const std::function<void(std::size_t)>& afterCommand) {
    out << renderFront(app, renderers) << std::flush;
    std::size_t ran = 0;
    for (std::size_t i = 0; i < lines.size(); ++i) {
        const Outcome outcome = execute(app, commands, renderers, lines[i], out, true);
        if (outcome.skipped) continue;
        if (afterCommand) afterCommand(++ran);
        if (!outcome.failure.empty()) {
            out << std::flush;
            err << printable(name) << ":" << i + 1 << ": " << outcome.failure << "\n"
                << renderFront(app, renderers) << std::flush;
            return 1;
        }
        if (outcome.quit) break;
        if (outcome.showScreen) out << renderFront(app, renderers);
        out << std::flush;
    }
    return 0;
}

}  // namespace messenger
