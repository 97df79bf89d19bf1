// A child process for the user-defaults persistence tests.
//   defaults_writer FILE set KEY=VALUE...   stores strings (-KEY: removes the
//                                           key) and exits normally (exit()),
//                                           without synchronize
//   defaults_writer FILE loop               stores counter = previous + 1, 2...
//                                           forever, synchronizing each and
//                                           printing each acknowledged value
#include <Foundation/NSNumber.h>
#include <Foundation/NSUserDefaults.h>

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

namespace {

void say(const std::string& line) {
    // One write per line, unbuffered: the parent must see exactly what was
    // acknowledged before it kills us.
    const std::string text = line + "\n";
    if (::write(STDOUT_FILENO, text.data(), text.size()) < 0) std::_Exit(3);
}

int set(NSUserDefaults* defaults, int argc, char** argv) {
    for (int i = 3; i < argc; ++i) {
        const std::string pair = argv[i];
        if (pair.rfind('-', 0) == 0) {
            defaults->removeObjectForKey(NSString::create(pair.substr(1)));
            continue;
        }
        const auto eq = pair.find('=');
        if (eq == std::string::npos) return 2;
        defaults->setObjectForKey(NSString::create(pair.substr(eq + 1)),
                                  NSString::create(pair.substr(0, eq)));
    }
    return 0;
}

[[noreturn]] void loop(NSUserDefaults* defaults) {
    // Some bulk, so that each write takes a while and a kill can land inside one.
    const auto padding = NSString::create(std::string(4096, 'x'));
    for (NSInteger counter = defaults->integerForKey(NSSTR("counter")) + 1;; ++counter) {
        objc::AutoreleasePool pool;
        defaults->setIntegerForKey(counter, NSSTR("counter"));
        defaults->setObjectForKey(padding, NSSTR("padding"));
        if (defaults->synchronize()) say(std::to_string(counter));
    }
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 3) {
        std::fprintf(stderr, "usage: %s FILE set KEY=VALUE... | %s FILE loop\n", argv[0], argv[0]);
        return 2;
    }
    objc::AutoreleasePool pool;
    const auto defaults = NSUserDefaults::create(argv[1]);
    // exit() leaves the defaults alive, as the process-wide ones always are:
    // what is pending is written by the exit-time flush.
    if (std::strcmp(argv[2], "set") == 0) std::exit(set(defaults, argc, argv));
    if (std::strcmp(argv[2], "loop") == 0) loop(defaults);
    return 2;
}
