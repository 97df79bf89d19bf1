// The messenger's command line.
#pragma once

#include <UIKit/device_profile.h>

#include <optional>
#include <string>
#include <vector>

namespace messenger {

struct Options {
    std::string home;                    // empty: the default container
    std::vector<std::string> libraries;  // to inject, in load order
    std::string device = "iphone";
    std::string systemVersion = "9.3";
    std::string language;       // empty: from the environment's locale
    std::string describeClass;  // non-empty: describe and exit
    std::string script;         // non-empty: run the commands of this file, then quit
    std::string screenshots;    // non-empty: a picture after each script command, here
    bool help = false;
};

struct ParseResult {
    std::optional<Options> options;
    std::string error;  // set when options is empty
};

// Reads argv; `insertLibraries` is MESSENGER_INSERT_LIBRARIES (may be null),
// whose colon-separated libraries load before those given with --inject.
ParseResult parseOptions(int argc, const char* const* argv, const char* insertLibraries);

// The device to simulate, from the options (already validated).
uikit::DeviceProfile deviceProfile(const Options& options);

// The options; the caller appends the commands' help.
std::string usage(const std::string& program);

}  // namespace messenger
