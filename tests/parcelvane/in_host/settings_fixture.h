// The host's Settings screen with the library loaded: a fresh container
// (which is also the main bundle), a chosen system version, and the screen
// at the root of a navigation controller.
#pragma once

#include "parcelvane/in_host/library_loader.h"
#include "support/scratch_folder.h"

#include <Host/WASettingsViewController.h>
#include <Host/WATableRow.h>
#include <Host/WATableSection.h>

#include <Foundation/NSArray.h>
#include <Foundation/NSRunLoop.h>
#include <Foundation/NSUserDefaults.h>
#include <Foundation/process_environment.h>
#include <UIKit/device_profile.h>
#include <UIKit/UINavigationController.h>
#include <UIKit/UITableViewCell.h>

#include <objc/strong.h>

#include <gtest/gtest.h>

#include <stdlib.h>

#include <filesystem>
#include <stdexcept>
#include <string>

namespace testsupport {

class SettingsScreenTest : public ::testing::Test {
  protected:
    SettingsScreenTest() {
        foundation::configureProcess({scratch_.path(), scratch_.path(), {"en"}});
        NSUserDefaults::resetStandardUserDefaults();
    }

    ~SettingsScreenTest() override {
        // Background downloads hand their result to the main queue: let
        // them finish before the screen goes.
        foundation::runMainLoopUntilIdle(true);
        // The rows' handlers hold the screen; the host lets the rows go when
        // the screen leaves, which this stands for.
        if (settings) settings->sectionsArray()->removeAllObjects();
        navigation.reset();
        settings.reset();
        ::setenv("http_proxy", refusingProxy().c_str(), 1);
        uikit::configureDevice(uikit::DeviceProfile::defaultProfile());
        NSUserDefaults::resetStandardUserDefaults();
        foundation::configureProcess({});
    }

    // Shows the Settings screen (its view loads, which builds the table) on
    // a device with the system version.
    void open(const std::string& systemVersion) {
        auto profile = uikit::DeviceProfile::defaultProfile();
        profile.systemVersion = systemVersion;
        uikit::configureDevice(profile);
        settings = WASettingsViewController::create();
        navigation = UINavigationController::create(settings.get());
        settings->view();
    }

    WATableSection* librarySection() const { return settings->sectionList().at(1); }
    UITableViewCell* cellAt(std::size_t index) const {
        return objc::cast<UITableViewCell>(librarySection()->rowList().at(index)->cell());
    }

    objc::AutoreleasePool pool;
    objc::Strong<WASettingsViewController> settings;
    objc::Strong<UINavigationController> navigation;

  private:
    const ScratchFolder scratch_{"pv-settings"};
};

}  // namespace testsupport
