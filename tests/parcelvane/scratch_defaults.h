// Points the process's standard user defaults at a fresh container for the
// length of one test, and back afterwards.
#pragma once

#include <Foundation/NSUserDefaults.h>
#include <Foundation/ProcessEnvironment.h>

#include <stdlib.h>

#include <filesystem>
#include <stdexcept>
#include <string>

namespace parcelvane_testing {

class ScratchDefaults {
  public:
    ScratchDefaults() {
        std::string pattern = "/tmp/pv-parcelvane-XXXXXX";
        if (::mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("mkdtemp failed");
        home_ = pattern;
        foundation::configureProcess({home_, home_, {"en"}});
        NSUserDefaults::resetStandardUserDefaults();
    }
    ~ScratchDefaults() {
        NSUserDefaults::resetStandardUserDefaults();
        foundation::configureProcess({});
        std::error_code ignored;
        std::filesystem::remove_all(home_, ignored);
    }
    ScratchDefaults(const ScratchDefaults&) = delete;
    ScratchDefaults& operator=(const ScratchDefaults&) = delete;

    NSUserDefaults* defaults() const { return NSUserDefaults::standardUserDefaults(); }

  private:
    std::string home_;
};

}  // namespace parcelvane_testing
