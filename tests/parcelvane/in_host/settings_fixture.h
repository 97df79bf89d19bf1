// The host's Settings screen with the library: a fresh container, a system version, in navigation.
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
#include <UIKit/UINavigationController.h>
#include <UIKit/UITableViewCell.h>
#include <UIKit/device_profile.h>

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
        // Background downloads hand their result to the main queue: let them finish first.
        foundation::runMainLoopUntilIdle(true);
        // The rows' handlers hold the screen; the host lets the rows go when the screen leaves.
        if (settings) settings->sectionsArray()->removeAllObjects();
        navigation.reset();
        settings.reset();
        ::setenv("http_proxy", refusingProxy().c_str(), 1);
        uikit::configureDevice(uikit::DeviceProfile::defaultProfile());
        NSUserDefaults::resetStandardUserDefaults();
        foundation::configureProcess({});
    }

    // Shows the Settings screen (loading its view builds the table) on that system version.
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
