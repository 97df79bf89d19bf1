#include <UIKit/document_provider.h>

#include <UIKit/device_profile.h>

#include <Foundation/NSPathUtilities.h>

#include <objc/strong.h>

#include <filesystem>

namespace uikit {

std::vector<DocumentProvider> defaultDocumentProviders() {
    return {{"iCloud Drive", ""}};
}

std::string defaultDocumentProviderFolder(const std::string& name) {
    objc::AutoreleasePool pool;
    std::filesystem::path home(NSHomeDirectory()->utf8());
    // "<home>/" would make the parent the home itself; the container's
    // parent is the device's folder.
    if (!home.has_filename()) home = home.parent_path();
    return (home.parent_path() / "DocumentProviders" / name).string();
}

std::string documentProviderFolder(const DocumentProvider& provider) {
    return provider.folder.empty() ? defaultDocumentProviderFolder(provider.name) : provider.folder;
}

std::vector<DocumentProvider> currentDocumentProviders() {
    return currentDeviceProfile().documentProviders;
}

}  // namespace uikit
