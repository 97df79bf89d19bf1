#include "options.h"

#include <iterator>
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

// Keeps empty parts: "9..3" has three.
std::vector<std::string_view> splitDots(std::string_view text) {
    std::vector<std::string_view> parts;
    for (;;) {
        const auto dot = text.find('.');
        parts.push_back(text.substr(0, dot));
        if (dot == std::string_view::npos) return parts;
        text.remove_prefix(dot + 1);
    }
}

// The iOS releases from 4 to 9, the range the library tells apart: for each
// minor version, the highest patch number that shipped.
struct Release {
    int major, minor, lastPatch;
};
constexpr Release kReleases[] = {{4, 0, 2}, {4, 1, 0}, {4, 2, 10}, {4, 3, 5}, {5, 0, 1},
                                 {5, 1, 1}, {6, 0, 2}, {6, 1, 6},  {7, 0, 6}, {7, 1, 2},
                                 {8, 0, 2}, {8, 1, 3}, {8, 2, 0},  {8, 3, 0}, {8, 4, 1},
                                 {9, 0, 2}, {9, 1, 0}, {9, 2, 1},  {9, 3, 6}};

// "4.0-4.3, 5.0-5.1, ..., 9.0-9.3"
std::string releaseRanges() {
    std::string text;
    for (std::size_t i = 0; i < std::size(kReleases); ++i) {
        const Release& r = kReleases[i];
        const bool first = i == 0 || kReleases[i - 1].major != r.major;
        const bool last = i + 1 == std::size(kReleases) || kReleases[i + 1].major != r.major;
        const std::string version = std::to_string(r.major) + "." + std::to_string(r.minor);
        if (first) text += (text.empty() ? "" : ", ") + version;
        if (last && !first) text += "-" + version;
    }
    return text;
}

// Digits only, no leading zero, at most two of them.
std::optional<int> smallNumber(std::string_view text) {
    if (text.empty() || text.size() > 2 || (text.size() == 2 && text[0] == '0')) return {};
    int value = 0;
    for (char c : text) {
        if (c < '0' || c > '9') return {};
        value = value * 10 + (c - '0');
    }
    return value;
}

// MAJOR.MINOR or MAJOR.MINOR.PATCH of a release some device had.
bool isShippedVersion(std::string_view version) {
    std::vector<std::optional<int>> parts;
    for (const std::string_view part : splitDots(version)) parts.push_back(smallNumber(part));
    if (parts.size() < 2 || parts.size() > 3) return false;
    for (const auto& part : parts) {
        if (!part) return false;
    }
    const int patch = parts.size() == 3 ? *parts[2] : 0;
    for (const Release& r : kReleases) {
        if (r.major == *parts[0] && r.minor == *parts[1]) return patch <= r.lastPatch;
    }
    return false;
}

// Bare names are files in the current folder, as any other path: dlopen
// alone would search the system's library folders for them.
std::string libraryPath(const std::string& name) {
    return name.find('/') == std::string::npos ? "./" + name : name;
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
    if (insertLibraries != nullptr) {
        for (const std::string& name : splitColons(insertLibraries)) {
            options.libraries.push_back(libraryPath(name));
        }
    }
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
            injected.push_back(libraryPath(text));
        } else if (arg == "--device") {
            if (!value(options.device)) return {{}, "--device needs iphone or ipad"};
            if (!uikit::DeviceProfile::named(options.device)) {
                return {{}, "unknown device '" + options.device + "'"};
            }
        } else if (arg == "--ios") {
            if (!value(options.systemVersion) || !isShippedVersion(options.systemVersion)) {
                return {{},
                        "--ios needs an iOS version that devices had: " + releaseRanges() +
                            " (MAJOR.MINOR, or with a patch number that shipped, as 9.3.5); not '" +
                            options.systemVersion + "'"};
            }
        } else if (arg == "--language") {
            if (!value(options.language) || !isLanguageCode(options.language)) {
                return {{}, "--language needs a language code such as en, fr or ar"};
            }
        } else if (arg == "--describe-class") {
            if (!value(options.describeClass) || options.describeClass.empty()) {
                return {{}, "--describe-class needs a class name"};
            }
        } else if (arg == "--screenshots") {
            if (!value(options.screenshots) || options.screenshots.empty()) {
                return {{}, "--screenshots needs a folder"};
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
        << "  --home DIR              the device's data, all of it inside DIR: the app's\n"
        << "                          container DIR/Container and the document providers'\n"
        << "                          folders, \"DIR/DocumentProviders/iCloud Drive\" (default\n"
        << "                          ${XDG_STATE_HOME:-$HOME/.local/state}/parcelvane-messenger)\n"
        << "  --inject PATH           load a library file at start-up (repeatable; a bare\n"
        << "                          name is a file in the current folder); the\n"
        << "                          MESSENGER_INSERT_LIBRARIES variable (colon-separated)\n"
        << "                          names libraries loaded before these\n"
        << "  --device NAME           iphone or ipad, or a model:";
    for (const std::string& name : uikit::DeviceProfile::knownNames()) out << ' ' << name;
    out << "\n"
        << "  --ios VERSION           the system version (default 9.3): an iOS release from\n"
        << "                          " << releaseRanges() << ",\n"
        << "                          optionally with a patch number that shipped (9.3.5)\n"
        << "  --language CODE         the user's language (default: the locale's)\n"
        << "  --describe-class NAME   print the class's own methods and where they live\n"
        << "  --script FILE           run the commands in FILE (blank lines and # comments\n"
        << "                          skipped), echoing each, then quit; the first failed\n"
        << "                          command or expectation ends it with status 1\n"
        << "  --screenshots DIR       with --script, a picture of the screen after each\n"
        << "                          command: DIR/001.png, DIR/002.png, ...\n"
        << "  --help                  this text\n";
    return out.str();
}

}  // namespace messenger
