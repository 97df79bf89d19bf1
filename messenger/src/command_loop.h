// Reads commands from a stream or a script file and runs them against the
// app, printing the screen in front after each one.
#pragma once

#include "app.h"
#include "commands.h"

#include <functional>
#include <istream>
#include <ostream>
#include <string>
#include <vector>

namespace messenger {

// Runs until `quit` or the end of input; answers the exit status (0). With
// `prompt` (a terminal), asks for each command with "> "; without, echoes
// each command ("> ...") before its output, as a script does. After each
// command the main queue is drained, so that work the command queued there
// has run before the screen is shown; work on other queues is not waited
// for (a later screen, or `expect`, shows what it hands back).
int runCommandLoop(App& app, const CommandTable& commands, const ScreenRenderers& renderers,
                   std::istream& in, std::ostream& out, bool prompt);

// A script's lines, read whole before the app starts; false (and `error`)
// when the file cannot be read.
bool readScript(const std::string& path, std::vector<std::string>& lines, std::string& error);

// Runs a script's lines as the terminal would, echoing each command ("> ...")
// before its output; blank lines and "#" comments are skipped. The first
// command that fails (an unmet expectation, an unknown command, a command
// that cannot do what it says, an exception) is reported to `err` as
// "FILE:LINE: why" with the screen in front, and the status is 1; else 0
// once the script ends or quits. `afterCommand`, when set, runs after every
// command that ran (numbered from 1), failed ones included.
int runScript(App& app, const CommandTable& commands, const ScreenRenderers& renderers,
              const std::string& name, const std::vector<std::string>& lines, std::ostream& out,
              std::ostream& err, const std::function<void(std::size_t)>& afterCommand = {});

}  // namespace messenger
