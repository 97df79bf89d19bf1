// The host's static tables (Settings and its pages) on the terminal: each
// row with what its cell shows (title, switch state, disclosure mark, image),
// and the commands that tap a row or flip its switch.
#pragma once

#include "commands.h"
#include "screen_renderer.h"

namespace messenger {

// Renders WAStaticTableViewController and its subclasses.
void addTableRenderers(ScreenRenderers& renderers);
// tap ROW, toggle ROW.
void addTableCommands(CommandTable& table);

}  // namespace messenger
