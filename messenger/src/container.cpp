#include "container.h"

#include <Host/media_copy.h>

#include <UIKit/document_provider.h>

#include <cstdlib>
#include <filesystem>
#include <system_error>

namespace messenger {

namespace fs = std::filesystem;

std::string defaultHome() {
    const char* state = std::getenv("XDG_STATE_HOME");
    fs::path base;
    if (state != nullptr && *state != '\0') {
        base = state;
    } else {
        const char* home = std::getenv("HOME");
        base = fs::path(home != nullptr && *home != '\0' ? home : ".") / ".local" / "state";
    }
    return (base / "parcelvane-messenger").string();
}

std::string containerFolder(const std::string& home) {
    std::error_code error;
    const fs::path root = fs::absolute(home, error);
    return ((error ? fs::path(home) : root) / "Container").lexically_normal().string();
}

std::string createContainer(const std::string& container) {
    std::error_code error;
    const fs::path root = fs::absolute(container, error);
    if (error) return container + ": " + error.message();
    for (const fs::path sub : {"Documents", "Library/Caches", "tmp"}) {
        fs::create_directories(root / sub, error);
        if (error) return (root / sub).string() + ": " + error.message();
    }
    // Not needed to run: the user defaults make it when they save, and say
    // so when they cannot.
    fs::create_directories(root / "Library/Preferences", error);
    // Before anything can send: copies a killed run left unfinished.
    host::removeLeftoverCopies(root / "Library" / "Media");
    return {};
}

std::string createDocumentProviderFolders() {
    for (const uikit::DocumentProvider& provider : uikit::currentDocumentProviders()) {
        const fs::path folder = uikit::documentProviderFolder(provider);
        std::error_code error;
        fs::create_directories(folder, error);
        if (error) return folder.string() + ": " + error.message();
    }
    return {};
}

std::string findBundle() {
    std::error_code error;
    const fs::path exe = fs::read_symlink("/proc/self/exe", error);
    if (!error) {
        const fs::path beside =
            exe.parent_path().parent_path() / "share" / "messenger" / "WhatsApp.app";
        if (fs::exists(beside / "Info.plist", error)) return beside.string();
    }
    return MESSENGER_BUNDLE_SOURCE;
}

}  // namespace messenger
