// Points the standard user defaults (and main bundle) at a fresh container for one test.
#pragma once

#include "scratch_folder.h"

#include <Foundation/NSUserDefaults.h>
#include <Foundation/process_environment.h>

namespace testsupport {

class ScratchDefaults {
  public:
    ScratchDefaults() {
        foundation::configureProcess({home_.path(), home_.path(), {"en"}});
        NSUserDefaults::resetStandardUserDefaults();
    }
    ~ScratchDefaults() {
        NSUserDefaults::resetStandardUserDefaults();
        foundation::configureProcess({});
    }
    ScratchDefaults(const ScratchDefaults&) = delete;
    ScratchDefaults& operator=(const ScratchDefaults&) = delete;

    NSUserDefaults* defaults() const { return NSUserDefaults::standardUserDefaults(); }
    const std::string& home() const { return home_.path(); }

  private:
    const ScratchFolder home_{"pv-defaults"};
};

}  // namespace testsupport
