// Child for the defaults persistence tests: `FILE set KEY=VALUE... [-KEY]` stores and exit()s
// without synchronize; `FILE loop` increments `counter`, synchronizing and printing each value.
#include <Foundation/NSNumber.h>
#include <Foundation/NSUserDefaults.h>

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

namespace {

void say(const std::string& line) {
    // One unbuffered write per line: the parent sees exactly what was acknowledged.
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
    // exit() leaves the defaults alive: the exit-time flush writes what is pending.
    if (std::strcmp(argv[2], "set") == 0) std::exit(set(defaults, argc, argv));
    if (std::strcmp(argv[2], "loop") == 0) loop(defaults);
    return 2;
}
