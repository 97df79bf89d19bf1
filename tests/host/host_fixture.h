// The host's tests run as the app would: its bundle as main bundle, own container, English, iOS 9.
#pragma once

#include "scratch_folder.h"

#include <Host/chat_store.h>

#include <Foundation/NSRunLoop.h>
#include <Foundation/process_environment.h>

#include <UIKit/UIKit.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

namespace testsupport {

// The program's one container, in a device folder beside the providers, made before any test.
inline const std::filesystem::path& container() {
    static const ScratchFolder device("host-tests");
    static const std::filesystem::path path = [] {
        const std::filesystem::path home = std::filesystem::path(device.path()) / "Container";
        for (const char* folder : {"Library/Preferences", "Documents", "tmp"}) {
            std::filesystem::create_directories(home / folder);
        }
        foundation::configureProcess({home.string(), HOST_BUNDLE_DIR, {"en"}});
        return home;
    }();
    return path;
}

// A file with `size` bytes in the container's Documents folder, or another.
inline std::string makeFile(const std::string& name, std::size_t size,
                            const std::filesystem::path& folder = container() / "Documents") {
    return writeFile(folder / name, std::string(size, 'x'));
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

}  // namespace testsupport
