#include "file_browser_classes.h"

#include <array>

namespace tolbrenn::detail {

std::span<const objc::ClassFunction> fileBrowserClasses() {
    // The browser's view controllers join this list as they are written
    // (ParcelvaneFileBrowserViewController and the screens it pushes), so
    // that preparing the browser creates every one of them.
    static constexpr std::array<objc::ClassFunction, 0> classes{};
    return classes;
}

}  // namespace tolbrenn::detail
