// A clean UI state per test: the default device, nothing on screen, the main queue drained.
#pragma once

#include "recorders.h"

#include <Foundation/NSRunLoop.h>

#include <gtest/gtest.h>

class UIKitTest : public ::testing::Test {
  protected:
    void SetUp() override { uikit::configureDevice(uikit::DeviceProfile::defaultProfile()); }
    void TearDown() override {
        for (UIAlertView* alert : UIAlertView::visibleAlerts()) {
            alert->dismissWithClickedButtonIndex(0, false);
        }
        for (UIPopoverController* popover : UIPopoverController::visiblePopovers()) {
            popover->dismissPopoverAnimated(false);
        }
        foundation::runMainLoopUntilIdle();
        uikit::configureDevice(uikit::DeviceProfile::defaultProfile());
    }

    static void drain() { foundation::runMainLoopUntilIdle(); }

    objc::AutoreleasePool pool;
};
