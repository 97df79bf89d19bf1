#include "Options.h"

#include <sstream>
#include <string_view>

namespace messenger {

namespace {

std::vector<std::string> splitColons(std::string_view text) {
    std::vector<std::string> parts;
    while (!text.empty()) {
        const auto colon = text.find(':');
        const std::string_view part = text.substr(0, colon);
        if (!part.empty()) parts.emplace_back(part);
        if (colon == std::string_view::npos) break;
        text.remove_prefix(colon + 1);
    }
    return parts;
}

bool isLanguageCode(const std::string& code) {
    if (code.empty() || code.size() > 16) return false;
    for (char c : code) {
        const bool ok = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '-' || c == '_';
        if (!ok) return false;
    }
    return true;
}

}  // namespace

ParseResult parseOptions(int argc, const char* const* argv, const char* insertLibraries) {
    Options options;
    if (insertLibraries != nullptr) options.libraries = splitColons(insertLibraries);
    std::vector<std::string> injected;
    for (int i = 1; i < argc; ++i) {
        const std::string arg = argv[i];
        const auto value = [&](std::string& out) -> bool {
            if (i + 1 >= argc) return false;
            out = argv[++i];
            return true;
        };
        std::string text;
        if (arg == "--help" || arg == "-h") {
            options.help = true;
        } else if (arg == "--home") {
            if (!value(options.home) || options.home.empty()) return {{}, "--home needs a folder"};
        } else if (arg == "--inject") {
            if (!value(text) || text.empty()) return {{}, "--inject needs a library path"};
            injected.push_back(text);
        } else if (arg == "--device") {
            if (!value(options.device)) return {{}, "--device needs iphone or ipad"};
            if (!uikit::DeviceProfile::named(options.device)) {
                return {{}, "unknown device '" + options.device + "'"};
            }
        } else if (arg == "--ios") {
            if (!value(options.systemVersion)) return {{}, "--ios needs a version such as 9.3"};
            if (!uikit::isValidSystemVersion(options.systemVersion)) {
                return {{}, "not a system version: '" + options.systemVersion + "'"};
            }
        } else if (arg == "--language") {
            if (!value(options.language) || !isLanguageCode(options.language)) {
                return {{}, "--language needs a language code such as en, fr or ar"};
            }
        } else if (arg == "--describe-class") {
            if (!value(options.describeClass) || options.describeClass.empty()) {
                return {{}, "--describe-class needs a class name"};
            }
        } else if (arg == "--script") {
            if (!value(options.script) || options.script.empty()) {
                return {{}, "--script needs a file of commands"};
            }
        } else {
            return {{}, "unknown option '" + arg + "'"};
        }
    }
    options.libraries.insert(options.libraries.end(), injected.begin(), injected.end());
    return {options, {}};
}

uikit::DeviceProfile deviceProfile(const Options& options) {
    uikit::DeviceProfile profile = uikit::DeviceProfile::named(options.device)
                                       .value_or(uikit::DeviceProfile::defaultProfile());
    profile.systemVersion = options.systemVersion;
    return profile;
}

std::string usage(const std::string& program) {
    std::ostringstream out;
    out << "usage: " << program << " [options]\n"
        << "\n"
        << "The WhatsApp messenger, simulated on a headless iOS device. Commands are read\n"
        << "from standard input, one per line, or from a script file (--script).\n"
        << "\n"
        << "options:\n"
        << "  --home DIR              the app's container (default\n"
        << "                          ${XDG_STATE_HOME:-$HOME/.local/state}/parcelvane-messenger)\n"
        << "  --inject PATH           load a library at start-up (repeatable); the\n"
        << "                          MESSENGER_INSERT_LIBRARIES variable (colon-separated)\n"
        << "                          names libraries loaded before these\n"
        << "  --device NAME           iphone or ipad, or a model:";
    for (const std::string& name : uikit::DeviceProfile::knownNames()) out << ' ' << name;
    out << "\n"
        << "  --ios VERSION           the system version (default 9.3)\n"
        << "  --language CODE         the user's language (default: the locale's)\n"
        << "  --describe-class NAME   print the class's own methods and where they live\n"
        << "  --script FILE           run the commands in FILE (blank lines and # comments\n"
        << "                          skipped), echoing each, then quit; the first failed\n"
        << "                          command or expectation ends it with status 1\n"
        << "  --help                  this text\n";
    return out.str();
}

}  // namespace messenger
