// The messenger: the host app on a simulated device, with the libraries named
// on the command line loaded before it builds any screen.
#include "app.h"
#include "command_loop.h"
#include "commands.h"
#include "container.h"
#include "describe_class.h"
#include "injection.h"
#include "options.h"
#include "screen_renderer.h"
#include "screenshot.h"
#include "terminal_text.h"

#include <Foundation/NSRunLoop.h>
#include <Foundation/NSThread.h>
#include <Foundation/NSUserDefaults.h>
#include <Foundation/process_environment.h>

#include <UIKit/device_profile.h>

#include <objc/exception.h>
#include <objc/strong.h>

#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <iostream>
#include <string>
#include <vector>

namespace {

constexpr auto kExitPatience = std::chrono::seconds(3);

int run(int argc, char** argv) {
    const std::string program = std::filesystem::path(argv[0]).filename().string();
    const messenger::ParseResult parsed =
        messenger::parseOptions(argc, argv, std::getenv("MESSENGER_INSERT_LIBRARIES"));
    if (!parsed.options) {
        std::cerr << program << ": " << messenger::printable(parsed.error) << "\n"
                  << messenger::usage(program);
        return 2;
    }
    const messenger::Options& options = *parsed.options;
    if (options.help) {
        std::cout << messenger::usage(program) << "\n"
                  << messenger::commandHelp(messenger::standardCommands());
        return 0;
    }
    if (!options.screenshots.empty()) {
        std::error_code failed;
        if (options.script.empty()) {
            std::cerr << program << ": --screenshots needs --script\n";
            return 2;
        }
        std::filesystem::create_directories(options.screenshots, failed);
        if (failed) {
            std::cerr << program << ": cannot make " << options.screenshots << ": "
                      << failed.message() << "\n";
            return 1;
        }
    }
    std::vector<std::string> script;
    if (!options.script.empty()) {
        if (std::string error; !messenger::readScript(options.script, script, error)) {
            std::cerr << program << ": " << error << "\n";
            return 2;
        }
    }

    // The process and the device, before any library can ask about them.
    const std::string home = options.home.empty() ? messenger::defaultHome() : options.home;
    const std::string container = messenger::containerFolder(home);
    if (const std::string error = messenger::createContainer(container); !error.empty()) {
        std::cerr << program << ": cannot make the container: " << error << "\n";
        return 1;
    }
    foundation::ProcessEnvironment environment;
    environment.homeDirectory = container;
    environment.mainBundlePath = messenger::findBundle();
    if (!options.language.empty()) environment.preferredLanguages = {options.language};
    foundation::configureProcess(environment);
    uikit::DeviceProfile device = messenger::deviceProfile(options);
    device.languages = foundation::processEnvironment().preferredLanguages;
    uikit::configureDevice(device);
    if (const std::string error = messenger::createDocumentProviderFolders(); !error.empty()) {
        std::cerr << program << ": cannot make the document providers' folders: " << error << "\n";
        return 1;
    }

    // This thread is the app's main thread: its run loop drains the main queue.
    if (!foundation::isMainThread() || NSRunLoop::mainRunLoop() == nullptr) {
        std::cerr << program << ": not started on the main thread\n";
        return 1;
    }

    objc::AutoreleasePool pool;
    if (!messenger::injectLibraries(options.libraries)) return 1;

    if (!options.describeClass.empty()) {
        return messenger::describeClass(options.describeClass, std::cout, std::cerr);
    }

    int status = 0;
    bool backgroundDone = true;
    {
        messenger::App app;
        if (const std::string why = app.store().readOnlyReason(); !why.empty()) {
            std::cerr << program << ": chats cannot be saved: " << why << "\n";
        }
        const messenger::CommandTable commands = messenger::standardCommands();
        const messenger::ScreenRenderers renderers = messenger::standardRenderers();
        if (!options.script.empty()) {
            std::function<void(std::size_t)> picture;
            if (!options.screenshots.empty()) {
                picture = [&](std::size_t number) {
                    char name[16];
                    std::snprintf(name, sizeof name, "%03zu.png", number);
                    const std::string path = options.screenshots + "/" + name;
                    if (const std::string why = messenger::writeScreenshot(app, path);
                        !why.empty()) {
                        std::cerr << program << ": " << why << "\n";
                    }
                };
            }
            status = messenger::runScript(app, commands, renderers, options.script, script,
                                          std::cout, std::cerr, picture);
        } else {
            status = messenger::runCommandLoop(app, commands, renderers, std::cin, std::cout,
                                               isatty(STDIN_FILENO) != 0);
        }
        // Work still under way (a copy, a download) gets a moment to finish
        // on the live screens; a server that never answers does not hold
        // the user back.
        backgroundDone =
            foundation::runMainLoopUntilIdle(std::chrono::steady_clock::now() + kExitPatience);
    }
    if (NSUserDefaults* defaults = NSUserDefaults::standardUserDefaults();
        !defaults->synchronize()) {
        std::cerr << program << ": the settings could not be saved: " << defaults->lastSaveError()
                  << "\n";
    }
    if (!backgroundDone) {
        // Leaving normally would join the workers and wait out their
        // time-outs; the defaults are written, the output goes out.
        std::cout.flush();
        std::cerr.flush();
        std::fflush(nullptr);
        std::_Exit(status);
    }
    return status;
}

}  // namespace

int main(int argc, char** argv) {
    try {
        return run(argc, argv);
    } catch (const objc::Exception& e) {
        std::cerr << "*** Terminating app due to uncaught exception '" << e.name() << "', reason: '"
                  << e.reason() << "'\n";
        return 1;
    }
}
