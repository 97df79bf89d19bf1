// Installs the library once the host's classes exist, before the first test, as the messenger
// does; http_proxy points at a refusing loopback port, so no test reaches the network.
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
