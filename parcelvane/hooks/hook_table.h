// The library's hooks, in the order they are installed.
#pragma once

#include "hooks/hook_installation.h"

#include <span>

namespace parcelvane::hooks {

std::span<const HookRow> hookTable();

}  // namespace parcelvane::hooks
