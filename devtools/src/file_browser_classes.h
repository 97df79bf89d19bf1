// The classes that make up the file browser.
#pragma once

#include <objc/image.h>

#include <span>

namespace tolbrenn::detail {

// Each function creates its class on first call (and answers it).
std::span<const objc::ClassFunction> fileBrowserClasses();

}  // namespace tolbrenn::detail
