// Document providers: the places outside the app's container that the
// document menu offers (iCloud Drive and the like). On this platform a
// provider is a folder of the device; the device profile lists them.
#pragma once

#include <objc/export.h>

#include <string>
#include <vector>

namespace uikit {

struct PV_EXPORT DocumentProvider {
    std::string name;  // what the menu shows, "iCloud Drive"
    // The provider's folder. Empty: the standard place for a provider of
    // that name, defaultDocumentProviderFolder(name).
    std::string folder;

    bool operator==(const DocumentProvider&) const = default;
};

// The providers a device has unless configured otherwise: iCloud Drive.
PV_EXPORT std::vector<DocumentProvider> defaultDocumentProviders();

// "<device>/DocumentProviders/<name>", where <device> is the folder that
// holds the app's container (NSHomeDirectory()): beside the container, never
// in it, as a provider's files are the user's and not the app's. The folder
// follows the configured container.
PV_EXPORT std::string defaultDocumentProviderFolder(const std::string& name);

// The provider's folder, the default one when it names none.
PV_EXPORT std::string documentProviderFolder(const DocumentProvider& provider);

// The current device's providers (DeviceProfile::documentProviders).
PV_EXPORT std::vector<DocumentProvider> currentDocumentProviders();

}  // namespace uikit
