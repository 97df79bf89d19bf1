// The checks a script makes on what is in front. Work a command starts may
// finish later on the main run loop (a transition's completion, a download
// handed back to the main queue), so the checks run the loop while they wait.
#include "choices.h"
#include "commands.h"

#include <Foundation/NSRunLoop.h>

#include <charconv>
#include <chrono>

namespace messenger {

namespace {

using namespace std::chrono_literals;

constexpr auto kExpectPatience = 3s;
constexpr auto kExpectPoll = 20ms;

bool shows(CommandContext& c, const std::string& text) {
    return renderFront(c.app, c.renderers).find(text) != std::string::npos;
}

void expect(CommandContext& c, const std::string& argument) {
    c.showScreen = false;
    const std::string text = unquoted(argument);
    if (text.empty()) {
        c.fail("usage: expect TEXT");
        return;
    }
    const auto deadline = std::chrono::steady_clock::now() + kExpectPatience;
    while (!shows(c, text)) {
        if (std::chrono::steady_clock::now() >= deadline) {
            c.fail("expected \"" + text + "\"");
            return;
        }
        NSRunLoop::mainRunLoop()->runFor(kExpectPoll);
    }
}

void expectNot(CommandContext& c, const std::string& argument) {
    c.showScreen = false;
    const std::string text = unquoted(argument);
    if (text.empty()) {
        c.fail("usage: expect-not TEXT");
        return;
    }
    // What the app is still doing (a transition, a download handed back to
    // the main queue) gets the same patience as expect.
    foundation::runMainLoopUntilIdle(std::chrono::steady_clock::now() + kExpectPatience);
    if (shows(c, text)) c.fail("expected no \"" + text + "\"");
}

void wait(CommandContext& c, const std::string& argument) {
    c.showScreen = false;
    long milliseconds = -1;
    const auto [end, error] =
        std::from_chars(argument.data(), argument.data() + argument.size(), milliseconds);
    if (error != std::errc() || end != argument.data() + argument.size() || milliseconds < 0) {
        c.fail("usage: wait MS (milliseconds)");
        return;
    }
    NSRunLoop::mainRunLoop()->runFor(std::chrono::milliseconds(milliseconds));
}

}  // namespace

void addScriptCommands(CommandTable& table) {
    table.add({"expect", "TEXT", "check that what is in front shows TEXT (waits up to 3 s for it)",
               &expect});
    table.add({"expect-not", "TEXT",
               "check that what is in front does not show TEXT (once pending work has run, up "
               "to 3 s)",
               &expectNot});
    table.add({"wait", "MS", "let the app run for MS milliseconds", &wait});
}

}  // namespace messenger
