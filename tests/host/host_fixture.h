// The host's tests run as the app would: the app bundle as the main bundle,
// a container of their own, English, an iPhone on iOS 9.
#pragma once

#include <Host/ChatStore.h>

#include <Foundation/NSRunLoop.h>
#include <Foundation/ProcessEnvironment.h>

#include <UIKit/UIKit.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

namespace hosttest {

// One container for the test program, made before any test touches the
// user defaults or the main bundle.
inline const std::filesystem::path& container() {
    static const std::filesystem::path path = [] {
        std::string pattern =
            (std::filesystem::temp_directory_path() / "host-tests-XXXXXX").string();
        const char* made = mkdtemp(pattern.data());
        const std::filesystem::path home = made != nullptr ? made : pattern;
        std::filesystem::create_directories(home / "Library" / "Preferences");
        std::filesystem::create_directories(home / "Documents");
        std::filesystem::create_directories(home / "tmp");
        foundation::configureProcess({home.string(), HOST_BUNDLE_DIR, {"en"}});
        return home;
    }();
    return path;
}

// A file with `size` bytes in the container's Documents folder, or another.
inline std::string makeFile(const std::string& name, std::size_t size,
                            const std::filesystem::path& folder = container() / "Documents") {
    std::filesystem::create_directories(folder);
    const auto path = folder / name;
    std::ofstream(path, std::ios::binary) << std::string(size, 'x');
    return path.string();
}

class HostTest : public ::testing::Test {
  protected:
    void SetUp() override {
        container();
        uikit::configureDevice(uikit::DeviceProfile::defaultProfile());
        store = std::make_shared<host::MemoryChatStore>();
    }
    void TearDown() override {
        for (UIAlertView* alert : UIAlertView::visibleAlerts()) {
            alert->dismissWithClickedButtonIndex(0, false);
        }
        foundation::runMainLoopUntilIdle();
    }
    static void drain() { foundation::runMainLoopUntilIdle(); }

    objc::AutoreleasePool pool;
    std::shared_ptr<host::MemoryChatStore> store;
};

}  // namespace hosttest
