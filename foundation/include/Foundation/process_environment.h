// What the host process tells Foundation about itself before it loads any
// library: its container, its main bundle and the user's languages.
#pragma once

#include <objc/export.h>

#include <string>
#include <vector>

namespace foundation {

struct PV_EXPORT ProcessEnvironment {
    // The app's container: NSHomeDirectory(). Empty: the HOME variable.
    std::string homeDirectory;
    // The main bundle's folder. Empty: the executable's folder.
    std::string mainBundlePath;
    // Language codes in order of preference ("fr-CA", "en"). Empty: taken from
    // LANGUAGE / LC_ALL / LC_MESSAGES / LANG, else "en".
    std::vector<std::string> preferredLanguages;
};

// Replaces the process's settings; empty fields take their defaults. Call it
// before the first use of the settings: references that earlier readers got
// stay valid but keep the old values.
PV_EXPORT void configureProcess(ProcessEnvironment environment);

// The current settings, with every default filled in. Safe from any thread.
PV_EXPORT const ProcessEnvironment& processEnvironment();

}  // namespace foundation
