// Handing outside bytes to libplist: its readers accept dictionary keys that
// hold a NUL character, and its key accessors then abort the process on an
// assertion, so such input is refused before any key is read.
#pragma once

#include <objc/result.h>

#include <memory>
#include <string>
#include <string_view>

namespace foundation::detail {

struct PlistNodeDeleter {
    void operator()(void* node) const;
};
using PlistNode = std::unique_ptr<void, PlistNodeDeleter>;

// The tree of a binary or XML property list; *binary (when given) tells which
// format was read.
objc::Result<PlistNode> readPlist(std::string_view bytes, bool* binary = nullptr);

}  // namespace foundation::detail
