// The library's code in a process that has the host's own classes, installed
// as loading the library into the messenger installs it: once the host's
// classes exist, by the test program's environment, before the first test.
//
// No test may reach the network: the environment points http_proxy at a
// loopback port that refuses every connection, so a download the library
// starts fails at once unless a test points the proxy at a server of its own.
#pragma once

#include "hooks/hook_installation.h"

#include <string>
#include <vector>

namespace testsupport {

// What installing the library's hook table answered, row by row.
const std::vector<parcelvane::hooks::HookResult>& installResults();

// "http://127.0.0.1:PORT" of a port that refuses connections.
const std::string& refusingProxy();

}  // namespace testsupport
