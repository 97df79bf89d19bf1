// The host's debug screen: its version and what its user defaults hold.
#pragma once

#include <UIKit/UIViewController.h>

#include <string>
#include <vector>

class DebugViewController : public UIViewController {
    OBJC_CLASS(DebugViewController)

    static objc::Strong<DebugViewController> create() { return objc::make<DebugViewController>(); }

    // Read afresh on every call: "Version: <CFBundleVersion>", then one
    // "<key> = <value>" line per defaults key, sorted by key.
    std::vector<std::string> lines() const;

    DebugViewController() = default;

  private:
    void imp_viewDidLoad();
};
