// The library's hooks, in the order they are installed.
#pragma once

#include "hooks/hook_installation.h"

#include <span>
#include <vector>

namespace parcelvane::hooks {

std::span<const HookRow> hookTable();

// What loading the library does: prepares the tools' file browser, then
// installs the table. Answers one result per row of hookTable().
[[nodiscard]] std::vector<HookResult> installParcelvane();

}  // namespace parcelvane::hooks
