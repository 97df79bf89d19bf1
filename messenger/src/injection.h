// Loading the libraries named on the command line into the process.
#pragma once

#include <string>
#include <vector>

namespace messenger {

// dlopen()s each library, in order, with RTLD_NOW | RTLD_GLOBAL; their
// load-time initialisers run now. On the first failure prints dlerror() to
// standard error and answers false.
bool injectLibraries(const std::vector<std::string>& paths);

}  // namespace messenger
