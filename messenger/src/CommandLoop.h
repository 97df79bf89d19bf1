// Reads commands from a stream and runs them against the app, printing the
// screen in front after each one.
#pragma once

#include "App.h"
#include "Commands.h"

#include <istream>
#include <ostream>

namespace messenger {

// Runs until `quit` or the end of input; answers the exit status (0). With
// `prompt`, asks for each command with "> ". The main run loop is drained
// after each command, so that work the command queued has run before the
// screen is shown.
int runCommandLoop(App& app, const CommandTable& commands, const ScreenRenderers& renderers,
                   std::istream& in, std::ostream& out, bool prompt);

}  // namespace messenger
