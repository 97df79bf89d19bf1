#include "CommandLoop.h"

#include <Foundation/NSRunLoop.h>

#include <objc/exception.h>

#include <string>

namespace messenger {

namespace {

std::string trim(const std::string& text) {
    const auto first = text.find_first_not_of(" \t\r");
    if (first == std::string::npos) return {};
    const auto last = text.find_last_not_of(" \t\r");
    return text.substr(first, last - first + 1);
}

}  // namespace

int runCommandLoop(App& app, const CommandTable& commands, const ScreenRenderers& renderers,
                   std::istream& in, std::ostream& out, bool prompt) {
    out << renderFront(app, renderers) << std::flush;
    std::string line;
    while (true) {
        if (prompt) out << "> " << std::flush;
        if (!std::getline(in, line)) break;
        line = trim(line);
        if (line.empty() || line.front() == '#') continue;
        const auto space = line.find(' ');
        const std::string name = line.substr(0, space);
        const std::string argument = space == std::string::npos ? "" : trim(line.substr(space));

        const Command* command = commands.find(name);
        if (command == nullptr) {
            out << "Unknown command '" << name << "' (type 'help' for the list).\n" << std::flush;
            continue;
        }
        CommandContext context{app, commands, renderers, out};
        try {
            objc::AutoreleasePool pool;
            command->run(context, argument);
            foundation::runMainLoopUntilIdle();
        } catch (const objc::Exception& e) {
            // On the device this would end the app; here the user may go on.
            out << "*** " << e.name() << ": " << e.reason() << "\n";
        }
        if (context.quit) break;
        if (context.showScreen) out << renderFront(app, renderers);
        out << std::flush;
    }
    return 0;
}

}  // namespace messenger
